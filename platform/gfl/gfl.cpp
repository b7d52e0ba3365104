#include "gfl.h"

#include "AllocationBudget.h"
#include "BitmapMemory.h"
#include "BoundedFile.h"
#include "ExifItems.h"
#include "FileHeaders.h"
#include "SphericalNote.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>

#include <exiv2/bmffimage.hpp>
#include <exiv2/error.hpp>
#include <exiv2/image.hpp>
#include <exiv2/xmp_exiv2.hpp>

#include <cmath>
#include <cstring>
#include <memory>
#include <mutex>
#include <utility>

namespace {

constexpr qint64 kMostPixels = 1 << 29; // decoded for a thumbnail

/// What Exiv2 may allocate for one file.
constexpr std::size_t kMostMemory = 32u << 20U;

/// Exiv2's reader of XMP is not thread-safe.
std::mutex g_exiv2;

GflBytes copied(const Exiv2::byte *bytes, long size)
{
    return size > 0 ? GflBytes(bytes, bytes + size) : GflBytes();
}

using Exiv2Image = std::unique_ptr<Exiv2::Image>;

/// The file's metadata up to the first fault; null for a file that Exiv2 does not know. To be
/// called with g_exiv2 locked and a budget.
Exiv2Image readImage(const RegularFile &file)
{
    Exiv2Image image;
    try {
        const std::string path = "/proc/self/fd/" + std::to_string(file.descriptor());
        auto bounded = Exiv2::ImageFactory::createIo(path); // of the pointer type that Exiv2 has
        bounded.reset(new BoundedFile(path));
        image.reset(Exiv2::ImageFactory::open(bounded).release());
        if (image)
            image->readMetadata();
    } catch (const std::exception &) {
        return image;
    }
    return image;
}

/// The file's header, from Exiv2 for a format that the others do not know.
std::optional<GflFileInformation> informationOf(const RegularFile &file)
{
    const std::optional<GflFileInformation> known = FileHeaders::any(FileSlice(file));
    if (known)
        return known;
    const std::lock_guard<std::mutex> lock(g_exiv2);
    const AllocationBudget budget(kMostMemory);
    const Exiv2Image image = readImage(file);
    if (!image || image->pixelWidth() <= 0 || image->pixelHeight() <= 0)
        return std::nullopt;
    GflFileInformation information;
    information.width = image->pixelWidth();
    information.height = image->pixelHeight();
    information.componentsPerPixel = 3;
    information.bitsPerComponent = 8;
    information.description = image->mimeType();
    return information;
}

GflMetadata readMetadata(const RegularFile &file)
{
    GflMetadata metadata;
    const std::lock_guard<std::mutex> lock(g_exiv2);
    const AllocationBudget budget(kMostMemory);
    const Exiv2Image image = readImage(file);
    if (!image)
        return metadata;
    try {
        ExifItems::read(image->exifData(), metadata.exif, metadata.exif2);
        if (image->iccProfileDefined())
            metadata.iccProfile = copied(image->iccProfile()->pData_, image->iccProfile()->size_);
        if (!image->iptcData().empty()) {
            const Exiv2::DataBuf iptc = Exiv2::IptcParser::encode(image->iptcData());
            metadata.iptc = copied(iptc.pData_, iptc.size_);
        }
        // As it stands in the file; of a TIFF Exiv2 keeps no more than what it has read.
        metadata.xmp = std::as_const(*image).xmpPacket();
        if (metadata.xmp.empty())
            metadata.xmp = image->xmpPacket();
    } catch (const std::exception &) {
        return metadata;
    }
    return metadata;
}

/// The small JPEG in the file's EXIF data; null if there is none.
QImage embeddedThumbnail(const RegularFile &file)
{
    constexpr int kLargestSide = 2048;
    QByteArray jpeg;
    {
        const std::lock_guard<std::mutex> lock(g_exiv2);
        const AllocationBudget budget(kMostMemory);
        const Exiv2Image image = readImage(file);
        if (!image)
            return {};
        try {
            const Exiv2::DataBuf bytes = Exiv2::ExifThumbC(image->exifData()).copy();
            jpeg = QByteArray(reinterpret_cast<const char *>(bytes.pData_), int(bytes.size_));
        } catch (const std::exception &) {
            return {};
        }
    }
    if (jpeg.isEmpty())
        return {};
    QBuffer buffer(&jpeg);
    QImageReader reader(&buffer, "jpeg");
    const QSize size = reader.size();
    if (size.width() > kLargestSide || size.height() > kLargestSide)
        return {};
    return reader.read();
}

/// Whether `picture` can stand for an image of this shape and covers `size`. Cameras pad the
/// thumbnails of long images.
bool standsFor(const QImage &picture, const GflFileInformation &image, const QSize &size)
{
    constexpr double kTolerance = 0.02;
    if (picture.width() < size.width() || picture.height() < size.height())
        return false;
    const double shape = double(image.width) / image.height;
    const double found = double(picture.width()) / picture.height();
    return std::abs(found / shape - 1) <= kTolerance;
}

qint64 pixels(const QSize &size)
{
    return qint64(size.width()) * size.height();
}

GflError toBitmap(const QImage &picture, GflBitmap *bitmap)
{
    const QImage image = picture.convertToFormat(QImage::Format_RGBA8888);
    if (image.isNull())
        return GflError::NoMemory;
    GflBitmap made;
    const GflError error = makeBitmap(std::uint64_t(image.width()), std::uint64_t(image.height()),
                                      kGflRgba, 8, &made);
    if (error != GflError::None)
        return error;
    std::memcpy(made.data, image.constBits(), std::size_t(image.sizeInBytes()));
    *bitmap = std::move(made);
    return GflError::None;
}

} // namespace

void gflLibraryInitEx()
{
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
    Exiv2::XmpParser::initialize();
    Exiv2::enableBMFF(); // HEIF, AVIF, JPEG XL and CR3
}

void gflLibraryExit()
{
    Exiv2::XmpParser::terminate();
}

GflError gflGetFileInformationExUTF8(const std::string &path, GflFileInformation *information)
{
    const std::optional<RegularFile> file = RegularFile::open(path);
    if (!file)
        return GflError::FileOpen;
    const std::optional<GflFileInformation> read = informationOf(*file);
    if (!read)
        return GflError::UnknownFormat;
    *information = *read;
    return GflError::None;
}

GflMetadata gflLoadMetadataUTF8(const std::string &path)
{
    const std::optional<RegularFile> file = RegularFile::open(path);
    if (!file)
        return {};
    GflMetadata metadata = readMetadata(*file);
    const std::optional<std::string> zenith = SphericalNote::zenith(FileSlice(*file));
    if (zenith)
        metadata.exif.push_back({GflExifEntry::MakerNote, 3, "ZenithEs", *zenith});
    return metadata;
}

GflError gflLoadThumbnailUTF8(const std::string &path, int width, int height, const GflRawOptions &,
                              GflBitmap *bitmap)
{
    const std::optional<RegularFile> file = RegularFile::open(path);
    if (!file)
        return GflError::FileOpen;
    const QSize wanted(width, height);
    if (wanted.isEmpty() || pixels(wanted) > kMostPixels)
        return GflError::BadParameters;
    const std::optional<GflFileInformation> information = informationOf(*file);
    if (!information)
        return GflError::UnknownFormat;

    QImage picture = embeddedThumbnail(*file);
    if (!standsFor(picture, *information, wanted)) {
        const QSize size(information->width, information->height);
        if (pixels(size) > kMostPixels)
            return GflError::NoMemory;
        QImageReader reader(QString::fromStdString(path));
        reader.setDecideFormatFromContent(true);
        reader.setScaledSize(size.scaled(wanted, Qt::KeepAspectRatioByExpanding).boundedTo(size));
        picture = reader.read();
        if (picture.isNull())
            return GflError::FileRead;
    }
    return toBitmap(picture, bitmap);
}
