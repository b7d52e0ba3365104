#include "BenchClip.h"

#include "FrameCode.h"
#include "SphericalBox.h"

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QSaveFile>
#include <QTemporaryDir>

namespace {

constexpr int kDeadlineMs = 600000;

/// Where the number stands, in a frame of this size: with a dark rim, so that nothing bright
/// touches it, and on even pixels, as the chroma needs.
QRect codeArea(const QSize &size)
{
    const int halfWidth = size.width() * 17 / 360 / 2 * 2;
    const int halfHeight = size.height() * 12 / 180 / 2 * 2;
    return {size.width() / 2 - halfWidth, size.height() / 2 - halfHeight, 2 * halfWidth,
            2 * halfHeight};
}

QStringList arguments(const QString &path, const QSize &size, const QString &panorama)
{
    const QRect area = codeArea(size);
    const int megabits = size.width() >= 3840 ? 40 : 12;
    const QStringList options =
        QStringLiteral("-f rawvideo -pix_fmt rgb32 -s %1x%2 -r %3 -i - "
                       "-filter_complex "
                       "[0]scale=%4:%5,format=yuv420p,loop=-1:1,fps=%3,setpts=N/%3/TB,"
                       "scroll=h=0.0003,noise=alls=7:allf=t[turned];"
                       "[turned][1]overlay=%6:%7:shortest=1 "
                       "-c:v libx264 -preset superfast -b:v %8M -maxrate %8M -bufsize %8M "
                       "-g %3 -keyint_min %3 -sc_threshold 0")
            .arg(area.width())
            .arg(area.height())
            .arg(BenchClip::kFramesPerSecond)
            .arg(size.width())
            .arg(size.height())
            .arg(area.left())
            .arg(area.top())
            .arg(megabits)
            .split(QLatin1Char(' '));
    return QStringList{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y"),
                       QStringLiteral("-i"), panorama}
        + options
        << path;
}

/// What went wrong; empty if nothing did.
QString encode(const QString &path, const QSize &size, const QString &panorama)
{
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"), arguments(path, size, panorama));
    QImage frame(size, QImage::Format_RGB32);
    frame.fill(Qt::black);
    for (int i = 0; i < BenchClip::kFrames && ffmpeg.state() != QProcess::NotRunning; ++i) {
        FrameCode::draw(frame, i);
        const QImage code = frame.copy(codeArea(size));
        ffmpeg.write(reinterpret_cast<const char *>(code.constBits()), code.sizeInBytes());
        while (ffmpeg.bytesToWrite() > 0 && ffmpeg.waitForBytesWritten(kDeadlineMs)) {
        }
    }
    ffmpeg.closeWriteChannel();
    ffmpeg.waitForFinished(kDeadlineMs);
    if (ffmpeg.error() == QProcess::FailedToStart || ffmpeg.error() == QProcess::Timedout)
        return ffmpeg.errorString();
    if (ffmpeg.exitStatus() == QProcess::NormalExit && ffmpeg.exitCode() == 0)
        return {};
    return QString::fromLocal8Bit(ffmpeg.readAllStandardError());
}

} // namespace

QString BenchClip::path(const QString &folder, const QSize &size, const QString &panorama,
                        QString *failure)
{
    const QString name =
        QStringLiteral("%1/bench-play-%2x%3.mp4").arg(folder).arg(size.width()).arg(size.height());
    if (QFile::exists(name))
        return name;
    const QTemporaryDir scratch;
    QFile plain(scratch.filePath(QStringLiteral("plain.mp4")));
    *failure = encode(plain.fileName(), size, panorama);
    if (!failure->isEmpty())
        return {};
    const auto spherical = plain.open(QFile::ReadOnly) ? withSphericalBox(plain.readAll())
                                                       : std::nullopt;
    QSaveFile file(name);
    if (spherical && file.open(QFile::WriteOnly) && file.write(*spherical) == spherical->size()
        && file.commit())
        return name;
    *failure = spherical ? file.errorString() : QStringLiteral("ffmpeg wrote no sound MP4 file");
    return {};
}
