#include "BenchClip.h"

#include "ClipWriter.h"
#include "FrameCode.h"

#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QtEndian>

namespace {

/// Where the number stands, in a frame of this size: with a dark rim, so that nothing bright
/// touches it, and on even pixels, as the chroma needs.
QRect codeArea(const QSize &size)
{
    const int halfWidth = size.width() * 17 / 360 / 2 * 2;
    const int halfHeight = size.height() * 12 / 180 / 2 * 2;
    return {size.width() / 2 - halfWidth, size.height() / 2 - halfHeight, 2 * halfWidth,
            2 * halfHeight};
}

/// What went wrong; empty if nothing did.
QString encode(const QString &path, const QSize &size, const QString &panorama)
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
    QImage frame(size, QImage::Format_RGB32);
    frame.fill(Qt::black);
    return ClipWriter::encode(QStringList{QStringLiteral("-i"), panorama} + options << path,
                              BenchClip::kFrames, [&](int i) {
                                  FrameCode::draw(frame, i);
                                  return frame.copy(area);
                              });
}

/// Says in a new file of ffmpeg's that its video is a whole sphere in the equirectangular
/// projection: its track gets a `uuid` box with the metadata of Spherical Video V1
/// (https://github.com/google/spatial-media/blob/master/docs/spherical-video-rfc.md). ffmpeg writes
/// the index, `moov` with its one `trak`, behind the frames, whose offsets therefore stay (ISO/IEC
/// 14496-12). False if the file is not so.
bool addSphericalBox(QByteArray &mp4)
{
    constexpr char kUuid[] = "\xff\xcc\x82\x63\xf8\x55\x4a\x93\x88\x14\x58\x7a\x02\x52\x1f\xdd";
    constexpr char kMetadata[] =
        "<?xml version=\"1.0\"?><rdf:SphericalVideo"
        " xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\""
        " xmlns:GSpherical=\"http://ns.google.com/videos/1.0/spherical/\">"
        "<GSpherical:Spherical>true</GSpherical:Spherical>"
        "<GSpherical:Stitched>true</GSpherical:Stitched>"
        "<GSpherical:StitchingSoftware>bench-play</GSpherical:StitchingSoftware>"
        "<GSpherical:ProjectionType>equirectangular</GSpherical:ProjectionType>"
        "</rdf:SphericalVideo>";
    const auto length = [&mp4](int box) { return qFromBigEndian<int>(mp4.constData() + box); };
    const int movie = mp4.lastIndexOf("moov") - 4;
    if (movie < 0 || movie + length(movie) != mp4.size())
        return false;
    const int track = mp4.indexOf("trak", movie) - 4;
    if (track < 0)
        return false;
    QByteArray box = QByteArray(4, '\0') + "uuid" + kUuid + kMetadata;
    qToBigEndian(box.size(), box.data());
    mp4.insert(track + length(track), box);
    for (const int grown : {movie, track})
        qToBigEndian(length(grown) + box.size(), mp4.data() + grown);
    return true;
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
    QByteArray mp4 = plain.open(QFile::ReadOnly) ? plain.readAll() : QByteArray();
    QSaveFile file(name);
    if (addSphericalBox(mp4) && file.open(QFile::WriteOnly) && file.write(mp4) == mp4.size()
        && file.commit())
        return name;
    *failure = QStringLiteral("no MP4 file as expected, or no room for it in ") + folder;
    return {};
}
