#pragma once

#include <QSize>
#include <QString>

/// What it costs to bring the frames of a video up to where they can be drawn.
namespace FramePath {

/// Of a decoded frame.
struct Cost
{
    double cpuSeconds = 0; ///< 0 if it could not be measured
    QString failure;       ///< why not
};

/// The player's own item in a small window that has nothing else to draw. Runs an event loop.
Cost ofItem(const QString &clip);

/// libVLC into one block of memory, over and over.
Cost ofLibVlc(const QString &clip, const QSize &size);

/// ffmpeg with two threads, which drops the frames.
Cost ofFfmpeg(const QString &clip);

} // namespace FramePath
