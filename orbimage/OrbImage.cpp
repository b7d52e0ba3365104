#include "OrbImage.h"

#include "OrbException.h"
#include "PixelKernels.h"
#include "PixelReduction.h"
#include "gfl.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

#include <cstdint>
#include <cstring>
#include <new>

namespace {

QString invalidBitmap()
{
    return QCoreApplication::translate("OrbException", "Invalid Bitmap");
}

QString invalidParameter()
{
    return QCoreApplication::translate("OrbException", "Invalid Parameter");
}

QString notEnoughMemory()
{
    return QCoreApplication::translate("OrbException", "Not enough memory");
}

bool isDepth(int bitsPerComponent)
{
    return bitsPerComponent == 8 || bitsPerComponent == 16 || bitsPerComponent == 32;
}

void check(const GflBitmap &bitmap)
{
    if (!bitmap.data || !gflComponents(bitmap.type) || !isDepth(bitmap.bitsPerComponent))
        throw OrbException(invalidBitmap());
}

PixelKernels::Format formatOf(const GflBitmap &bitmap)
{
    return {gflComponents(bitmap.type), bitmap.bitsPerComponent};
}

std::size_t bytesPerPixel(const GflBitmap &bitmap)
{
    return std::size_t(gflComponents(bitmap.type)) * std::size_t(bitmap.bitsPerComponent) / 8;
}

void clearPixels(const GflBitmap &bitmap)
{
    // By the line: pixels of someone else may have more than padding between their lines.
    for (int y = 0; y < bitmap.height; ++y)
        std::memset(bitmap.line(y), 0, std::size_t(bitmap.width) * bytesPerPixel(bitmap));
}

/// A bitmap without pixels.
GflBitmap shape(int width, int height, unsigned type, int bitsPerComponent, int padding)
{
    const int components = gflComponents(type);
    if (width <= 0 || height <= 0 || padding <= 0 || !components)
        throw OrbException(invalidParameter());
    if (!isDepth(bitsPerComponent))
        throw OrbException(invalidBitmap());

    const auto pad = std::int64_t(padding); // a line has less than 2^35 bytes before padding
    const std::int64_t pixels = std::int64_t(width) * components * (bitsPerComponent / 8);
    const std::int64_t line = (pixels + pad - 1) / pad * pad;
    if (line > PTRDIFF_MAX / height)
        throw OrbException(invalidParameter());

    GflBitmap bitmap;
    bitmap.type = type;
    bitmap.width = width;
    bitmap.height = height;
    bitmap.bitsPerComponent = bitsPerComponent;
    bitmap.bytesPerLine = std::size_t(line);
    return bitmap;
}

void convert(const GflBitmap &source, const QRect &from, const GflBitmap &target, const QPoint &to)
{
    const PixelKernels::Kernel kernel = PixelKernels::kernel(formatOf(source), formatOf(target));
    for (int y = 0; y < from.height(); ++y) {
        kernel(source.line(from.y() + y) + std::size_t(from.x()) * bytesPerPixel(source),
               target.line(to.y() + y) + std::size_t(to.x()) * bytesPerPixel(target),
               std::size_t(from.width()));
    }
}

/// The mean reduction of `source` in the format and the size of `target`.
void reduce(const GflBitmap &source, const GflBitmap &target)
{
    const PixelKernels::Kernel kernel = PixelKernels::kernel({gflComponents(source.type), 32},
                                                             formatOf(target));
    try {
        PixelReduction::reduce(source, {target.width, target.height},
                               [&target, kernel](int y, const unsigned char *line) {
                                   kernel(line, target.line(y), std::size_t(target.width));
                               });
    } catch (const std::bad_alloc &) {
        throw OrbException(notEnoughMemory());
    }
}

QString writeFailure(const QString &path, std::size_t bytes)
{
    const QFileInfo file(path);
    const QStorageInfo storage(file.absolutePath());
    if (storage.isReady() && quint64(storage.bytesAvailable()) < bytes) {
        return QCoreApplication::translate("OrbException",
                                           "Not enough free space on \"%1\" to finish operation")
            .arg(storage.rootPath());
    }
    return QCoreApplication::translate("OrbException", "Cannot write into file \"%1\"")
        .arg(file.absoluteFilePath());
}

} // namespace

void OrbImage::allocate(int width, int height, unsigned type, int bitsPerComponent, bool clear,
                        unsigned char *externalData, int padding)
{
    GflBitmap bitmap = shape(width, height, type, bitsPerComponent, padding);
    const bool isKept = !externalData && m_bitmap.data && m_bitmap.width == width
        && m_bitmap.height == height && m_bitmap.type == type
        && m_bitmap.bitsPerComponent == bitsPerComponent;
    if (!isKept) {
        bitmap.data = externalData;
        if (!externalData) {
            const std::size_t bytes = bitmap.bytesPerLine * std::size_t(height);
            bitmap.owned.reset(new (std::nothrow) unsigned char[bytes]);
            bitmap.data = bitmap.owned.get();
        }
        if (!bitmap.data)
            throw OrbException(notEnoughMemory());
        m_bitmap = std::move(bitmap);
    }
    if (clear)
        clearPixels(m_bitmap);
}

void OrbImage::copy(const OrbImage &source)
{
    check(source.m_bitmap);
    check(m_bitmap);
    if (source.m_bitmap.width != m_bitmap.width || source.m_bitmap.height != m_bitmap.height)
        throw OrbException(invalidParameter());
    copy(source, {0, 0, m_bitmap.width, m_bitmap.height}, {0, 0});
}

void OrbImage::copy(const OrbImage &source, const QRect &from, const QPoint &to)
{
    check(source.m_bitmap);
    check(m_bitmap);
    const QRect all(0, 0, source.m_bitmap.width, source.m_bitmap.height);
    const bool isInside = from.isValid() && all.contains(from) && to.x() >= 0 && to.y() >= 0
        && to.x() <= m_bitmap.width - from.width() && to.y() <= m_bitmap.height - from.height();
    if (!isInside)
        throw OrbException(invalidParameter());
    if (&source != this) {
        convert(source.m_bitmap, from, m_bitmap, to);
    } else { // the rectangles may overlap
        OrbImage piece;
        piece.allocate(from.width(), from.height(), m_bitmap.type, m_bitmap.bitsPerComponent);
        convert(m_bitmap, from, piece.m_bitmap, {0, 0});
        convert(piece.m_bitmap, {QPoint(0, 0), from.size()}, m_bitmap, to);
    }
}

void OrbImage::reducedCopy(const OrbImage &source, int width, int height, unsigned type,
                           int bitsPerComponent)
{
    check(source.m_bitmap);
    const unsigned sourceType = source.m_bitmap.type;
    if (sourceType != kGflGrey && sourceType != kGflRgb && sourceType != kGflRgba)
        throw OrbException(invalidBitmap());
    if (width > source.m_bitmap.width || height > source.m_bitmap.height)
        throw OrbException(invalidParameter());
    OrbImage result;
    result.allocate(width, height, type, bitsPerComponent);
    reduce(source.m_bitmap, result.m_bitmap);
    m_bitmap = std::move(result.m_bitmap);
}

void OrbImage::ID_Read(const QString &path)
{
    if (path.isEmpty())
        throw OrbException(invalidParameter());
    const QFileInfo file(path);
    if (!file.exists()) {
        throw OrbException(QCoreApplication::translate("OrbException", "File \"%1\" is not found")
                               .arg(file.absoluteFilePath()));
    }
    GflBitmap bitmap;
    const GflError error = gflLoadBitmapUTF8(path.toStdString(), &bitmap);
    if (error != GflError::None)
        throw OrbException(error, path);
    check(bitmap);
    m_bitmap = std::move(bitmap);
}

void OrbImage::ID_WriteToCache(const QString &path) const
{
    check(m_bitmap);
    if (path.isEmpty())
        throw OrbException(invalidParameter());
    const GflError error = gflSaveBitmapUTF8(path.toStdString(), m_bitmap);
    if (error == GflError::FileCreate || error == GflError::FileWrite)
        throw OrbException(writeFailure(path, byteCount()));
    if (error != GflError::None)
        throw OrbException(error, path);
}

QImage OrbImage::toImage(const QSize &size) const
{
    check(m_bitmap);
    if (size.isEmpty())
        throw OrbException(invalidParameter());
    const QSize reduced = size.boundedTo({m_bitmap.width, m_bitmap.height});
    QImage image(reduced, QImage::Format_RGB888);
    // What Qt enlarges to has to be found possible before, as Qt makes tables of its length first.
    if (image.isNull() || (size != reduced && QImage(size, QImage::Format_RGB32).isNull()))
        throw OrbException(notEnoughMemory());
    GflBitmap view = shape(image.width(), image.height(), kGflRgb, 8, 1);
    view.bytesPerLine = std::size_t(image.bytesPerLine());
    view.data = image.bits();
    reduce(m_bitmap, view);
    if (size == reduced)
        return image;
    image = image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                .convertToFormat(QImage::Format_RGB888);
    if (image.isNull())
        throw OrbException(notEnoughMemory());
    return image;
}
