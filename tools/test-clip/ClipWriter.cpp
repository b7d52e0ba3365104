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
    return words(QStringLiteral("-vf scale=flags=accurate_rnd+full_chroma_int:"
                                "out_color_matrix=bt601:out_range=tv,format=%1 "
                                "-colorspace smpte170m -color_primaries smpte170m "
                                "-color_trc smpte170m -color_range tv")
                     .arg(clip.pixelFormat));
}

QStringList arguments(const QString &path, const Clip &clip)
{
    QStringList all = words(QStringLiteral("-f rawvideo -pix_fmt bgra -s %1x%2 -r %3 -i -")
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

QString ClipWriter::encode(const QStringList &arguments, int frames,
                           const std::function<QImage(int)> &frame)
{
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"), words(QStringLiteral("-v error -y")) + arguments);
    if (!ffmpeg.waitForStarted(kStartMs))
        return ffmpeg.errorString();
    for (int i = 0; i < frames && ffmpeg.state() == QProcess::Running; ++i) {
        const QImage picture = frame(i);
        ffmpeg.write(reinterpret_cast<const char *>(picture.constBits()), picture.sizeInBytes());
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

QString ClipWriter::write(const QString &path, const Clip &clip)
{
    QImage picture = FrameCode::frame(clip.size, clip.firstNumber);
    return encode(arguments(path, clip), clip.frames, [&](int i) {
        FrameCode::draw(picture, clip.firstNumber + i);
        return picture;
    });
}
