#include "FrameTurn.h"

#include <utility>

int FrameTurn::beginFrame()
{
    const std::lock_guard lock(m_mutex);
    m_frameWaiting = false; // it is overwritten
    return 1 - m_bufferIndex;
}

bool FrameTurn::endFrame()
{
    const std::lock_guard lock(m_mutex);
    m_frameReady = true;
    if (m_uploading) {
        m_frameWaiting = true;
        return false;
    }
    m_bufferIndex = 1 - m_bufferIndex;
    return !std::exchange(m_uploadAsked, true);
}

std::optional<int> FrameTurn::beginUpload()
{
    const std::lock_guard lock(m_mutex);
    m_uploadAsked = false;
    if (!m_frameReady)
        return std::nullopt;
    if (m_frameWaiting) {
        m_frameWaiting = false;
        m_bufferIndex = 1 - m_bufferIndex;
    }
    m_uploading = true;
    return m_bufferIndex;
}

bool FrameTurn::endUpload()
{
    const std::lock_guard lock(m_mutex);
    m_uploading = false;
    m_uploadAsked = m_frameWaiting;
    return m_frameWaiting;
}

void FrameTurn::forget()
{
    const std::lock_guard lock(m_mutex);
    m_frameReady = false;
    m_frameWaiting = false;
}
