// Describes a photograph of 20 megapixels, against Exiv2's reading of its metadata alone.
#include "ImageDef.h"
#include "OrbImageLibrary.h"
#include "RatioTable.h"

#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <exiv2/exiv2.hpp>

#include <cstdio>
#include <exception>

namespace {

/// What a camera writes: EXIF with a thumbnail, XMP, IPTC and a colour profile.
bool writePhotograph(const QString &path)
{
    QImage picture(5472, 3648, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y) {
        auto *const line = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x)
            line[x] = qRgb(x / 22, y / 15, (x ^ y) & 0xFF);
    }
    const QString thumbnail = path + QLatin1String(".small.jpg");
    if (!picture.save(path, "jpg", 90) || !picture.scaled(160, 107).save(thumbnail, "jpg", 90))
        return false;
    try {
        const std::unique_ptr<Exiv2::Image> image(
            Exiv2::ImageFactory::open(path.toStdString()).release());
        Exiv2::ExifData exif;
        exif["Exif.Image.Make"] = "Canon";
        exif["Exif.Image.Model"] = "Canon EOS 70D";
        exif["Exif.Image.Orientation"] = std::uint16_t(1);
        exif["Exif.Photo.ExposureTime"] = Exiv2::Rational(1, 250);
        exif["Exif.Photo.FNumber"] = Exiv2::Rational(28, 10);
        exif["Exif.Photo.ISOSpeedRatings"] = std::uint16_t(100);
        exif["Exif.Photo.DateTimeOriginal"] = "2021:06:15 12:00:00";
        exif["Exif.Photo.FocalLength"] = Exiv2::Rational(15, 1);
        exif["Exif.Photo.PixelXDimension"] = std::uint32_t(picture.width());
        exif["Exif.Photo.PixelYDimension"] = std::uint32_t(picture.height());
        exif["Exif.Photo.UserComment"] = "charset=Ascii FOV: 120 ~ 60 ~ 30";
        exif["Exif.GPSInfo.GPSLatitudeRef"] = "N";
        exif["Exif.GPSInfo.GPSLatitude"] = "48/1 51/1 305/10";
        Exiv2::ExifThumb(exif).setJpegThumbnail(thumbnail.toStdString());
        image->setExifData(exif);
        Exiv2::XmpData xmp;
        xmp["Xmp.dc.title"] = "A photograph";
        image->setXmpData(xmp);
        Exiv2::IptcData iptc;
        iptc["Iptc.Application2.City"] = "Paris";
        image->setIptcData(iptc);
        image->writeMetadata();
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return false;
    }
    return true;
}

/// Another path of the same file for each number, since a path is described once only.
QString pathOf(const QString &folder, unsigned number)
{
    QString path = folder + QLatin1Char('/');
    for (int bit = 0; bit < 32; ++bit)
        path += QLatin1String((number >> unsigned(bit)) & 1U ? ".//" : "./");
    return path + QLatin1String("photo.jpg");
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QTemporaryDir folder;
    const QString photograph = folder.filePath(QStringLiteral("photo.jpg"));
    if (!writePhotograph(photograph))
        return 1;
    OrbImageLibrary::start();
    ImageDef *warmUp = nullptr; // the tables of cameras and lenses are loaded once
    const bool isDescribed = ImageDef::open(photograph, &warmUp, false);
    if (!isDescribed || warmUp->metadata().horizontalFieldOfView != 120)
        return 1;
    unsigned number = 0;
    benchmark::RegisterBenchmark("describe/20-megapixels", [&](benchmark::State &state) {
        for ([[maybe_unused]] auto _ : state) {
            ImageDef *image = nullptr;
            if (!ImageDef::open(pathOf(folder.path(), number++), &image, false))
                state.SkipWithError("not described");
        }
        state.SetLabel("exiv2/20-megapixels");
    });
    benchmark::RegisterBenchmark(
        "exiv2/20-megapixels",
        [&](benchmark::State &state) {
            for ([[maybe_unused]] auto _ : state) {
                QProcess reader;
                reader.start(QStringLiteral(EXIV2_READ), {photograph, QStringLiteral("500")});
                const bool isRead = reader.waitForFinished() && reader.exitCode() == 0;
                const double seconds = isRead ? reader.readAll().trimmed().toDouble() : 0;
                if (seconds <= 0)
                    state.SkipWithError("not read");
                state.SetIterationTime(seconds);
            }
        })
        ->UseManualTime()
        ->Iterations(5);
    const int result = runBenchmarks(argc, argv);
    OrbImageLibrary::stop();
    return result;
}
