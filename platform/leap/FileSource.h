#pragma once

#include "FrameSource.h"
#include "MessageStream.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTimer>

#include <optional>

/// Hands that are played from a file. Each line of it, of up to 1 MiB in UTF-8, is a message as the
/// tracking service sends it, a JSON object; blank lines and lines that begin with # are skipped:
///
///     # A device is plugged in; without such lines it comes with the first frame.
///     {"event": {"type": "deviceEvent", "state": {"id": "1", "attached": true, "streaming":
///     true}}}
///     {"id": 1, "timestamp": 1000000, "hands": [], "pointables": []}
///     {"id": 2, "timestamp": 1009000, "hands": [{"id": 7, "type": "right", "palmPosition":
///         [0, 200, 0]}], "pointables": []}      (in one line)
///     {"event": {"type": "deviceEvent", "state": {"id": "1", "attached": false}}}
///
/// A frame has rising whole numbers as id and timestamp, in µs: the first frame plays at once, each
/// other as long after it as the timestamps say. A device event plays with the frame before it.
/// Every other field may be missing:
///
///     currentFrameRate    Hz
///     hands[]             id, type ("left" or "right"), palmPosition, palmVelocity, palmNormal,
///                         direction, palmWidth, grabStrength, pinchStrength, confidence,
///                         timeVisible (seconds), stabilizedPalmPosition, r, s, t
///     pointables[]        id, handId, type (0 thumb to 4 little finger), tool, extended, length,
///                         width, timeVisible, direction, tipPosition, tipVelocity, carpPosition,
///                         mcpPosition, pipPosition, dipPosition, btipPosition,
///                         stabilizedTipPosition, touchZone ("none", "hovering", "touching"),
///                         touchDistance (1 to -1)
///     gestures[]          id, type ("circle", "swipe", "keyTap", "screenTap"), state ("start",
///                         "update", "stop"), duration (µs), handIds, pointableIds, center, normal,
///                         progress, radius, startPosition, position, direction, speed
///     interactionBox      center, size
///     r, s, t             of all hands: how far they have turned (3 rows), spread (natural
///                         logarithm) and moved since the counting began
///
/// Points are [x, y, z] in mm from the device: to the right, up, towards the user; velocities in
/// mm/s. Gestures and whatever else a file leaves out is computed from the hands.
///
/// After the last line no more frames come; the device stays.
class FileSource : public FrameSource
{
    Q_OBJECT

public:
    explicit FileSource(const QString &path);

    void start() override;

private:
    void step();
    std::int64_t dueInUs(const Leap::FrameData &frame) const;
    void readLine();
    void play(const Leap::ServiceMessage &message);
    void warnOnce(const QString &reason);

    QFile m_file;
    int m_line = 0;
    bool m_isInLongLine = false;
    QTimer m_timer;
    QElapsedTimer m_clock;
    std::optional<Leap::FrameData> m_next; ///< what is read and not yet due
    /// The last frame that counted, and when it was due: µs of the clock.
    std::optional<std::int64_t> m_timestamp;
    std::int64_t m_due = 0;
    QSet<QString> m_warnings;
    Leap::MessageStream m_stream;
};
