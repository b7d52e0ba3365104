#pragma once

#include <QtGlobal>

#include <optional>

/// Counts frames by whole seconds of the clock. One thread calls it.
class FrameCounter
{
public:
    /// A frame was shown at `epochMs`, milliseconds since the epoch. When it opens a new second,
    /// the result is the number of frames since the last such turn, this one included.
    std::optional<int> frameShown(qint64 epochMs);

private:
    qint64 m_second = 0;
    int m_frames = 0;
};
