#include "FrameWatcher.h"

#include "Screen.h"

using namespace std::chrono_literals;

void FrameWatcher::stop()
{
    m_stop = true;
    if (m_thread.joinable())
        m_thread.join();
}

void FrameWatcher::watch(Screen *screen)
{
    for (; !m_stop; ++m_looks) {
        if (const std::optional<int> number = screen->frameNumber()) {
            std::optional<Clock::time_point> &seen = m_seen[size_t(*number)];
            if (!seen)
                seen = Clock::now();
            m_newest = *number;
        }
        std::this_thread::sleep_for(1ms);
    }
}
