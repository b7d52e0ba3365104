#include "MessageStream.h"

namespace {

constexpr int kMaxDevices = 16;
constexpr int kRestarted = 10; // frames in a row
} // namespace

bool Leap::MessageStream::take(const ServiceMessage &message)
{
    if (const auto *event = std::get_if<DeviceEvent>(&message))
        note(*event);
    const auto *frame = std::get_if<FrameData>(&message);
    if (!frame)
        return false;
    m_hasFrames = true;
    return isConnected() && isNew({frame->id, frame->timestamp});
}

void Leap::MessageStream::note(const DeviceEvent &event)
{
    m_knowsDevices = true;
    if (!event.isAttached || !event.isStreaming)
        m_devices.remove(event.id);
    else if (m_devices.size() < kMaxDevices)
        m_devices.insert(event.id);
}

bool Leap::MessageStream::isNew(const Moment &moment)
{
    const auto isAfter = [&moment](const Moment &other) {
        return moment.id > other.id && moment.timestamp > other.timestamp;
    };
    bool isNew = isAfter(m_newest);
    if (!isNew) {
        m_risingDropped = isAfter(m_dropped) ? m_risingDropped + 1 : 1;
        m_dropped = moment;
        isNew = m_risingDropped >= kRestarted;
    }
    if (isNew) {
        m_newest = moment;
        m_dropped = {};
        m_risingDropped = 0;
    }
    return isNew;
}
