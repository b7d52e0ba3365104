#include "ClipWriter.h"

#include "FrameCode.h"

#include <QProcess>

namespace {

constexpr int kStartMs = 5000;
constexpr int kDeadlineMs = 60000;

QStringList words(const QString &text)
{
    return text.split(QLatin1Char(' '));
}

/// Fast rather than small; the quality is high enough for flat colours to come back to the step.
QStringList encoder(const Clip &clip)
{
    const int group = clip.groupOfPictures;
    switch (clip.codec) {
    case Clip::H264:
        return words(QStringLiteral("-c:v libx264 -preset ultrafast -crf 16 -g %1 -keyint_min %1 "
                                    "-sc_threshold 0")
                         .arg(group));
    case Clip::Hevc:
        return words(QStringLiteral("-c:v libx265 -preset ultrafast -crf 16 -tag:v hvc1 "
                                    "-x265-params log-level=error:keyint=%1:min-keyint=%1:"
                                    "scenecut=0")
                         .arg(group));
    case Clip::Vp9:
        return words(QStringLiteral("-c:v libvpx-vp9 -deadline realtime -cpu-used 8 -row-mt 1 "
                                    "-b:v 0 -crf 16 -g %1")
                         .arg(group));
    }
    return {};
}

/// The conversion and the flags that announce it.
QStringList colours(const Clip &clip)
{
    const bool bt709 = clip.matrix == Clip::Bt709;
    const QString flag = bt709 ? QStringLiteral("bt709") : QStringLiteral("smpte170m");
    const QString range = clip.fullRange ? QStringLiteral("pc") : QStringLiteral("tv");
    const QString filter = QStringLiteral("scale=flags=accurate_rnd+full_chroma_int:"
                                          "out_color_matrix=%1:out_range=%2,format=%3")
                               .arg(bt709 ? flag : QStringLiteral("bt601"), range,
                                    clip.pixelFormat);
    return {QStringLiteral("-vf"),
            filter,
            QStringLiteral("-colorspace"),
            flag,
            QStringLiteral("-color_primaries"),
            flag,
            QStringLiteral("-color_trc"),
            flag,
            QStringLiteral("-color_range"),
            range};
}

QStringList arguments(const QString &path, const Clip &clip)
{
    QStringList all = words(QStringLiteral("-v error -y -f rawvideo -pix_fmt bgra -s %1x%2 -r %3 "
                                           "-i -")
                                .arg(clip.size.width())
                                .arg(clip.size.height())
                                .arg(clip.framesPerSecond));
    if (clip.toneHz > 0)
        all += words(QStringLiteral("-f lavfi -i sine=frequency=%1:sample_rate=48000:duration=%2")
                         .arg(clip.toneHz)
                         .arg(double(clip.frames) / clip.framesPerSecond));
    return all + encoder(clip) + colours(clip) + clip.options << path;
}

} // namespace

QString ClipWriter::write(const QString &path, const Clip &clip)
{
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"), arguments(path, clip));
    if (!ffmpeg.waitForStarted(kStartMs))
        return ffmpeg.errorString();
    QImage frame = FrameCode::frame(clip.size, clip.firstNumber);
    for (int i = 0; i < clip.frames && ffmpeg.state() == QProcess::Running; ++i) {
        FrameCode::draw(frame, clip.firstNumber + i);
        ffmpeg.write(reinterpret_cast<const char *>(frame.constBits()), frame.sizeInBytes());
        while (ffmpeg.bytesToWrite() > 0 && ffmpeg.waitForBytesWritten(kDeadlineMs)) {
        }
    }
    ffmpeg.closeWriteChannel();
    if (!ffmpeg.waitForFinished(kDeadlineMs))
        return ffmpeg.errorString();
    if (ffmpeg.exitStatus() == QProcess::NormalExit && ffmpeg.exitCode() == 0)
        return {};
    return QStringLiteral("ffmpeg: ") + QString::fromLocal8Bit(ffmpeg.readAllStandardError());
}
