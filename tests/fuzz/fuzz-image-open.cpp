// Any bytes as an image file: descriptions with sizes that can be, metadata of bounded size, finite
// numbers.
#include "ExifMapping.h"
#include "ImageDef.h"
#include "OrbImageLibrary.h"

#include <QCoreApplication>

#include <sys/mman.h>
#include <unistd.h>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void check(const GflMetadata &blobs, const ImageMetadata &m)
{
    constexpr size_t kMostMetadata = 32u << 20U;
    size_t bytes = blobs.iccProfile.size() + blobs.iptc.size() + blobs.xmp.size();
    for (const GflExifEntry &item : blobs.exif)
        bytes += item.name.size() + item.value.size();
    for (const GflExif2Entry &item : blobs.exif2)
        bytes += item.value.size();
    if (bytes > kMostMetadata)
        std::abort();
    for (const double number :
         {m.exposureTime, m.exposureValue, m.focalLength35mm, m.scaleFactor, m.latitude,
          m.longitude, m.imageDirection, m.zenithPitch, m.zenithRoll}) {
        if (!std::isfinite(number))
            std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    QCoreApplication::setLibraryPaths({}); // Qt's readers of images are not what is tried here
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const int file = memfd_create("image", MFD_CLOEXEC);
    if (file < 0 || write(file, data, size) != ssize_t(size))
        std::abort();
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    OrbImageLibrary::start(); // anew each time, as a path is described once only
    ImageDef *image = nullptr;
    if (ImageDef::open(QString::fromStdString(path), &image, false)) {
        if (image->width() <= 0 || image->height() <= 0 || image->componentsPerPixel() <= 0
            || image->bitsPerComponent() <= 0)
            std::abort();
        check(image->blobs(), image->metadata());
    } else { // colours that are refused: what else they say is read all the same
        const GflMetadata blobs = gflLoadMetadataUTF8(path);
        const auto noCrop = [](const QString &, const QString &) { return -1.0; };
        check(blobs, ExifMapping::map(blobs.exif, blobs.exif2, noCrop).metadata);
    }
    OrbImageLibrary::stop();
    close(file);
    return 0;
}
