#pragma once

#include <QSize>
#include <QString>

/// What it costs to bring the frames of a video up to where they can be drawn: seconds of the
/// processors a decoded frame, 0 if none was decoded.
namespace FramePath {

/// The player's own item in a small window that has nothing else to draw. Runs an event loop.
double ofItem(const QString &clip);

/// libVLC into one block of memory, over and over.
double ofLibVlc(const QString &clip, const QSize &size);

/// ffmpeg with two threads, which drops the frames.
double ofFfmpeg(const QString &clip);

} // namespace FramePath
