#pragma once

#include <QSize>
#include <QStringList>

/// What a test film is made of. Its colours are written in the matrix and range that its stream
/// announces. libVLC 3 converts to RGB by BT.601 whatever is announced and at every size, and takes
/// VP9 for limited range always: the values here give their colours back through it.
struct Clip
{
    enum Codec { H264, Hevc, Vp9 };
    enum Matrix { Bt601, Bt709 };

    Codec codec = H264;
    QSize size{640, 320};
    int framesPerSecond = 25;
    int frames = 50;
    int firstNumber = 0;                             ///< of the first frame, as FrameCode reads it
    int groupOfPictures = 25;                        ///< frames from one keyframe to the next
    QString pixelFormat = QStringLiteral("yuv420p"); ///< as ffmpeg calls it
    int toneHz = 0;                                  ///< a sine beside the picture; 0: no sound
    Matrix matrix = Bt601;
    bool fullRange = false;
    QStringList options; ///< more of ffmpeg's own, for the output
};

namespace ClipWriter {

/// Writes a film of FrameCode's frames with the program ffmpeg; the suffix of `path` chooses the
/// container. Returns what went wrong, empty if nothing did. Blocks.
QString write(const QString &path, const Clip &clip = {});

} // namespace ClipWriter
