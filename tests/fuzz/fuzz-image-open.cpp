// Any bytes as an image file: sizes that can be, metadata of bounded size, finite numbers.
#include "ExifMapping.h"
#include "gfl.h"

#include <QCoreApplication>

#include <sys/mman.h>
#include <unistd.h>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    QCoreApplication::setLibraryPaths({}); // Qt's readers of images are not what is tried here
    gflLibraryInitEx();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr size_t kMostMetadata = 64u << 20U;

    const int file = memfd_create("image", MFD_CLOEXEC);
    if (file < 0 || write(file, data, size) != ssize_t(size))
        std::abort();
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    GflFileInformation information;
    if (gflGetFileInformationExUTF8(path, &information) == GflError::None
        && (information.width <= 0 || information.height <= 0 || information.componentsPerPixel <= 0
            || information.bitsPerComponent <= 0 || information.description.empty()))
        std::abort();
    const GflMetadata metadata = gflLoadMetadataUTF8(path);
    close(file);

    size_t bytes = metadata.iccProfile.size() + metadata.iptc.size() + metadata.xmp.size();
    for (const GflExifEntry &item : metadata.exif)
        bytes += item.name.size() + item.value.size();
    for (const GflExif2Entry &item : metadata.exif2)
        bytes += item.value.size();
    if (bytes > kMostMetadata)
        std::abort();

    const auto noCrop = [](const QString &, const QString &) { return -1.0; };
    const ImageMetadata m = ExifMapping::map(metadata.exif, metadata.exif2, noCrop).metadata;
    for (const double number :
         {m.exposureTime, m.exposureValue, m.focalLength35mm, m.scaleFactor, m.latitude,
          m.longitude, m.imageDirection, m.zenithPitch, m.zenithRoll}) {
        if (!std::isfinite(number))
            std::abort();
    }
    return 0;
}
