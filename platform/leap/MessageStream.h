#pragma once

#include "ServiceMessage.h"

#include <QSet>

namespace Leap {

/// What the messages of one connection add up to: whether a device is there, and which frames are
/// new.
class MessageStream
{
public:
    /// Takes the next message. True for a frame to be passed on: a device is there, and the frame
    /// is newer than the one before. A service that starts to count anew is followed after ten
    /// frames.
    bool take(const ServiceMessage &message);

    /// By the service's events, or by its frames as long as it has sent no event.
    bool isConnected() const { return m_knowsDevices ? !m_devices.isEmpty() : m_hasFrames; }

private:
    struct Moment
    {
        std::int64_t id = -1;
        std::int64_t timestamp = -1;
    };

    void note(const DeviceEvent &event);
    bool isNew(const Moment &moment);

    QSet<QString> m_devices; ///< that stream
    bool m_knowsDevices = false;
    bool m_hasFrames = false;
    Moment m_newest;
    Moment m_dropped;        ///< the last of those that were not new
    int m_risingDropped = 0; ///< that came in a row, each newer than the one before it
};

} // namespace Leap
