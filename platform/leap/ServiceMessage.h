#pragma once

#include "FrameData.h"

#include <QByteArray>
#include <QString>

#include <variant>

/// The messages of the tracking service: one JSON object each.
namespace Leap {

constexpr int kMaxMessageBytes = 1024 * 1024;

/// The first message of a connection.
struct ServiceVersion
{
    int version = 0;
};

/// A device was plugged in or out, or began or ceased to send.
struct DeviceEvent
{
    QString id;
    QString type;
    bool isAttached = false;
    bool isStreaming = false;
};

/// A message of a kind that later services may know.
struct UnknownMessage
{
};

struct MessageError
{
    QString reason; ///< one of a fixed few
};

using ServiceMessage =
    std::variant<UnknownMessage, ServiceVersion, DeviceEvent, FrameData, MessageError>;

/// Reads what may come from anywhere. A frame has an id and a timestamp; all else may be missing or
/// null. It keeps at most 20 hands, 120 fingers and tools, and 100 gestures, the first of each.
/// A hand, finger or gesture with a field of the wrong kind or with a number that no device gives
/// is left out. Directions come out with length 1, shares from 0 to 1, sizes and times at least 0.
ServiceMessage parseServiceMessage(const QByteArray &json);

} // namespace Leap
