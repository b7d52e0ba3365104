#include "StartGate.h"

bool StartGate::wait()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_open || m_cancelled; });
    return !m_cancelled;
}

void StartGate::open()
{
    const std::lock_guard lock(m_mutex);
    m_open = true;
    m_changed.notify_all();
}

void StartGate::cancelWaiting()
{
    const std::lock_guard lock(m_mutex);
    m_cancelled = true;
    m_changed.notify_all();
}

void StartGate::allowWaiting()
{
    const std::lock_guard lock(m_mutex);
    m_cancelled = false;
}
