#pragma once

#include <QImage>
#include <QSize>
#include <QStringList>

#include <functional>

/// What a test film is made of. Its colours are those of BT.601 in limited range: libVLC 3 converts
/// to RGB so whatever a stream announces.
struct Clip
{
    enum Codec { H264, Hevc, Vp9 };

    Codec codec = H264;
    QSize size{640, 320};
    int framesPerSecond = 25;
    int frames = 50;
    int firstNumber = 0;                             ///< of the first frame, as FrameCode reads it
    int groupOfPictures = 25;                        ///< frames from one keyframe to the next
    QString pixelFormat = QStringLiteral("yuv420p"); ///< as ffmpeg calls it
    int toneHz = 0;                                  ///< a sine beside the picture; 0: no sound
    QStringList options;                             ///< more of ffmpeg's own, for the output
};

namespace ClipWriter {

/// Writes a film of FrameCode's frames with the program ffmpeg; the suffix of `path` chooses the
/// container. Returns what went wrong, empty if nothing did. Blocks.
QString write(const QString &path, const Clip &clip = {});

/// Runs ffmpeg with these arguments and gives it pictures, from 0 on, of 32 bits a pixel and
/// without padding, on its standard input. Returns what went wrong, empty if nothing did. Blocks.
QString encode(const QStringList &arguments, int frames, const std::function<QImage(int)> &frame);

} // namespace ClipWriter
