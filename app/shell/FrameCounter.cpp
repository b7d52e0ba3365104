#include "FrameCounter.h"

std::optional<int> FrameCounter::frameShown(qint64 epochMs)
{
    const qint64 now = epochMs / 1000;
    if (now <= m_second) {
        ++m_frames;
        return std::nullopt;
    }
    m_second = now;
    const int frames = m_frames + 1;
    m_frames = 0;
    return frames;
}
