// Writes small image files with metadata into a folder, for the fuzzer of image files to begin
// with.
#include "ImageFiles.h"

#include <QDir>
#include <QTextStream>

#include <cstdio>

using namespace ImageFiles;

int main(int argc, char **argv)
{
    if (argc != 2)
        return EXIT_FAILURE;
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    QString errors;
    for (const char *const name :
         {"a.jpg", "a.png", "a.tif", "a.psd", "a.bmp", "a.webp", "a.gif"}) {
        const QString path = folder.filePath(QLatin1String(name));
        errors += run(QStringLiteral("convert"),
                      {QStringLiteral("-size"), QStringLiteral("8x4"), QStringLiteral("xc:red"),
                       QStringLiteral("-type"), QStringLiteral("TrueColor"), path});
        if (path.endsWith(QLatin1String(".bmp")) || path.endsWith(QLatin1String(".gif")))
            continue; // no place for EXIF
        errors += run(QStringLiteral("exiftool"),
                      {QStringLiteral("-overwrite_original"), QStringLiteral("-Make=Maker"),
                       QStringLiteral("-ExposureTime=1/250"), QStringLiteral("-GPSLatitude=48.86"),
                       QStringLiteral("-UserComment=FOV: 120 ~ 60 ~ 30"),
                       QStringLiteral("-XMP:Title=Title"), QStringLiteral("-IPTC:Headline=News"),
                       path});
    }
    const QByteArray jpeg = read(folder.filePath(QStringLiteral("a.jpg")));
    int number = 0;
    for (const QByteArray &exif :
         {sphericalExif(3.5, -1.25, true), sphericalExif(20, -15, false), canonExif(490, 8, false),
          nikonExif("\x26\x30\x10\x10\x30\x30", 8, true), olympusExif("LENSES", 8, false)}) {
        if (!write(folder.filePath(QString::number(++number)), withExif(jpeg, exif)))
            errors += QStringLiteral("Cannot write.");
    }
    QTextStream(stderr) << errors;
    return errors.isEmpty() ? EXIT_SUCCESS : EXIT_FAILURE;
}
