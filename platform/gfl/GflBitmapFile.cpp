#include "BitmapMemory.h"
#include "FileSlice.h"
#include "TiffPixels.h"
#include "gfl.h"

#include <QFile>
#include <QImageReader>

#include <cstring>

#include <unistd.h>

namespace {

GflError bitmapOf(QImage image, GflBitmap *bitmap)
{
    const bool isDeepGrey = image.format() == QImage::Format_Grayscale16;
    const bool isGrey = isDeepGrey || image.format() == QImage::Format_Grayscale8;
    const bool isDeep = isDeepGrey || (!isGrey && image.pixelFormat().redSize() > 8);
    const bool hasAlpha = image.hasAlphaChannel();
    if (!isGrey) {
        image = std::move(image).convertToFormat(
            hasAlpha ? (isDeep ? QImage::Format_RGBA64 : QImage::Format_RGBA8888)
                     : (isDeep ? QImage::Format_RGBX64 : QImage::Format_RGB888));
    }
    if (image.isNull())
        return GflError::NoMemory;

    const unsigned type = isGrey ? kGflGrey : hasAlpha ? kGflRgba : kGflRgb;
    GflBitmap made;
    const GflError error = makeBitmap(std::uint64_t(image.width()), std::uint64_t(image.height()),
                                      type, isDeep ? 16 : 8, &made);
    if (error != GflError::None)
        return error;
    const std::size_t pixel = std::size_t(gflComponents(type) * made.bitsPerComponent / 8);
    const std::size_t sourcePixel = std::size_t(image.depth()) / 8;
    for (int y = 0; y < made.height; ++y) {
        const unsigned char *from = image.constScanLine(y);
        unsigned char *to = made.line(y);
        if (pixel == sourcePixel) {
            std::memcpy(to, from, pixel * std::size_t(made.width));
            continue;
        }
        for (int x = 0; x < made.width; ++x, from += sourcePixel, to += pixel)
            std::memcpy(to, from, pixel);
    }
    *bitmap = std::move(made);
    return GflError::None;
}

GflError readByInstalledReader(QFile *file, GflBitmap *bitmap)
{
    QImageReader reader(file);
    if (!reader.canRead())
        return GflError::UnknownFormat;
    const QSize size = reader.size();
    const QImage::Format format = reader.imageFormat();
    const unsigned bits = format == QImage::Format_Invalid
        ? 32
        : unsigned(QImage::toPixelFormat(format).bitsPerPixel());
    if (size.isValid()
        && bitmapBytes(std::uint64_t(size.width()), std::uint64_t(size.height()), bits)
            > kLargestBitmap)
        return GflError::NoMemory;
    QImage image;
    if (!reader.read(&image))
        return reader.error() == QImageReader::UnsupportedFormatError ? GflError::UnknownFormat
                                                                      : GflError::FileRead;
    return bitmapOf(std::move(image), bitmap);
}

} // namespace

GflError gflLoadBitmapUTF8(const std::string &path, GflBitmap *bitmap)
{
    const std::optional<RegularFile> opened = RegularFile::open(path);
    QFile file(QString::fromStdString(path)); // readers look at the suffix
    if (!opened || !file.open(opened->descriptor(), QIODevice::ReadOnly))
        return GflError::FileOpen;
    const GflError error = readTiffPixels(opened->descriptor(), opened->size(), bitmap);
    if (error != GflError::UnknownFormat)
        return error;
    lseek(opened->descriptor(), 0, SEEK_SET);
    return readByInstalledReader(&file, bitmap);
}

GflError gflSaveBitmapUTF8(const std::string &path, const GflBitmap &bitmap)
{
    if (!isWritable(bitmap))
        return GflError::BadBitmap;
    std::optional<RegularFile> file = RegularFile::create(path);
    if (!file)
        return GflError::FileCreate;
    // Emptied only here, as what is no regular file is left alone.
    GflError error = ftruncate(file->descriptor(), 0) == 0
        ? writeTiffPixels(file->descriptor(), bitmap)
        : GflError::FileWrite;
    if (!file->close())
        error = GflError::FileWrite;
    if (error != GflError::None)
        unlink(path.c_str());
    return error;
}
