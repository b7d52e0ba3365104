#include "gfl.h"

#include "AllocationBudget.h"
#include "BitmapMemory.h"
#include "BoundedFile.h"
#include "ExifItems.h"
#include "FileHeaders.h"
#include "PacketCatcher.h"
#include "SphericalNote.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QImageReader>

#include <exiv2/bmffimage.hpp>
#include <exiv2/error.hpp>
#include <exiv2/image.hpp>

#include <cmath>
#include <cstring>
#include <mutex>
#include <utility>

namespace {

constexpr qint64 kMostPixels = 1 << 29; // decoded for a thumbnail

/// What Exiv2 may allocate for one file.
constexpr std::size_t kMostMemory = 32u << 20U;

/// Exiv2 promises little about threads.
std::mutex g_exiv2;

/// Calls `use` with the file's metadata as Exiv2 reads them, up to the first fault. What it or
/// Exiv2 throws ends it.
template <typename Use>
void withExiv2(const RegularFile &file, const Use &use)
{
    const std::lock_guard<std::mutex> lock(g_exiv2);
    const AllocationBudget budget(kMostMemory);
    try {
        const std::string path = "/proc/self/fd/" + std::to_string(file.descriptor());
        auto bounded = Exiv2::ImageFactory::createIo(path); // of the pointer type that Exiv2 has
        bounded.reset(new BoundedFile(path));
        const auto image = Exiv2::ImageFactory::open(bounded);
        if (!image.get())
            return;
        try {
            image->readMetadata();
        } catch (const std::exception &) {
            use(*image); // what was read before the fault
            return;
        }
        use(*image);
    } catch (const std::exception &) {
        return;
    }
}

/// The file's header. A format that only Exiv2 knows is taken for RGB of 8 bits.
std::optional<GflFileInformation> informationOf(const RegularFile &file)
{
    const FileSlice slice(file);
    if (FileHeaders::knows(slice))
        return FileHeaders::any(slice);
    std::optional<GflFileInformation> information;
    withExiv2(file, [&information](const Exiv2::Image &image) {
        if (image.pixelWidth() <= 0 || image.pixelHeight() <= 0)
            return;
        GflFileInformation found;
        found.width = image.pixelWidth();
        found.height = image.pixelHeight();
        found.componentsPerPixel = 3;
        found.bitsPerComponent = 8;
        found.description = image.mimeType();
        information = found;
    });
    return information;
}

GflMetadata readMetadata(const RegularFile &file)
{
    GflMetadata metadata;
    PacketCatcher packets;
    withExiv2(file, [&metadata](Exiv2::Image &image) {
        ExifItems::read(image.exifData(), metadata.exif, metadata.exif2);
        if (!image.iccProfileDefined())
            return;
        const Exiv2::DataBuf &profile = *image.iccProfile();
        metadata.iccProfile.assign(profile.pData_, profile.pData_ + profile.size_);
    });
    metadata.xmp = std::move(packets.xmp);
    metadata.iptc = std::move(packets.iptc);
    return metadata;
}

/// The small JPEG in the file's EXIF data; null if there is none.
QImage embeddedThumbnail(const RegularFile &file)
{
    constexpr int kLargestSide = 2048;
    QByteArray jpeg;
    withExiv2(file, [&jpeg](Exiv2::Image &image) {
        const Exiv2::DataBuf bytes = Exiv2::ExifThumbC(image.exifData()).copy();
        jpeg = QByteArray(reinterpret_cast<const char *>(bytes.pData_), int(bytes.size_));
    });
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
    Exiv2::enableBMFF(); // HEIF, AVIF, JPEG XL and CR3
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

GflError gflLoadThumbnailUTF8(const std::string &path, int width, int height, GflBitmap *bitmap)
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
        QFile content(QString::fromStdString(path)); // readers look at the suffix
        if (!content.open(file->descriptor(), QIODevice::ReadOnly))
            return GflError::FileOpen;
        QImageReader reader(&content);
        reader.setDecideFormatFromContent(true);
        if (pixels(reader.size()) > kMostPixels)
            return GflError::NoMemory;
        reader.setScaledSize(size.scaled(wanted, Qt::KeepAspectRatioByExpanding).boundedTo(size));
        picture = reader.read();
        if (picture.isNull())
            return GflError::FileRead;
    }
    return toBitmap(picture, bitmap);
}
