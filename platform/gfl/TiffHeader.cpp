#include "FileHeaders.h"

#include "QuietTiff.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace {

/// How much of a file is read. Tags may all point at the same bytes, so that only what is read
/// bounds what libtiff keeps.
constexpr std::uint64_t kLongestHeader = 1 << 20;
constexpr tmsize_t kLongestTag = 1 << 20;

constexpr int kMostSamples = 64;
constexpr int kMostBits = 64;

struct Source
{
    explicit Source(const FileSlice &slice)
        : file(slice)
    {}

    FileSlice file;
    std::uint64_t position = 0;
    std::uint64_t left = kLongestHeader;
};

tmsize_t readBytes(thandle_t handle, void *bytes, tmsize_t count)
{
    auto *const source = static_cast<Source *>(handle);
    const std::uint64_t size = source->file.size();
    const std::uint64_t there = size - std::min(size, source->position);
    const std::uint64_t wanted = std::min({std::uint64_t(count), there, source->left});
    if (!source->file.read(source->position, bytes, wanted))
        return 0;
    source->position += wanted;
    source->left -= wanted;
    return tmsize_t(wanted);
}

tmsize_t writeNothing(thandle_t, void *, tmsize_t)
{
    return 0;
}

toff_t seek(thandle_t handle, toff_t offset, int whence)
{
    auto *const source = static_cast<Source *>(handle);
    const std::uint64_t base = whence == SEEK_CUR ? source->position
        : whence == SEEK_END                      ? source->file.size()
                                                  : 0;
    return source->position = base + offset;
}

int closeNothing(thandle_t)
{
    return 0;
}

toff_t size(thandle_t handle)
{
    return static_cast<Source *>(handle)->file.size();
}

} // namespace

std::optional<GflFileInformation> FileHeaders::tiff(const FileSlice &file)
{
    const TiffOptions options = quietTiffOptions(kLongestTag);
    if (!options)
        return std::nullopt;
    Source source(file);
    // "m": not mapped, "D": without the places of the pixels.
    const std::unique_ptr<TIFF, decltype(&TIFFClose)>
        tiff(TIFFClientOpenExt("", "rmD", &source, readBytes, writeNothing, seek, closeNothing,
                               size, nullptr, nullptr, options.get()),
             TIFFClose);
    if (!tiff)
        return std::nullopt;

    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t samples = 1;
    std::uint16_t bits = 1;
    std::uint16_t photometric = PHOTOMETRIC_MINISWHITE;
    TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height);
    TIFFGetFieldDefaulted(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetFieldDefaulted(tiff.get(), TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetField(tiff.get(), TIFFTAG_PHOTOMETRIC, &photometric);
    if (width == 0 || width > INT32_MAX || height == 0 || height > INT32_MAX || samples == 0
        || samples > kMostSamples || bits == 0 || bits > kMostBits)
        return std::nullopt;

    GflFileInformation information;
    information.width = int(width);
    information.height = int(height);
    information.componentsPerPixel = samples;
    information.bitsPerComponent = bits;
    information.description = TIFFIsTiled(tiff.get()) ? "TIFF tiled" : "TIFF";
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
        information.colorModel = GflColorModel::Gray;
        break;
    case PHOTOMETRIC_PALETTE:
        information.componentsPerPixel = 3;
        break;
    case PHOTOMETRIC_SEPARATED:
        information.colorModel = GflColorModel::Cmyk;
        break;
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
    case PHOTOMETRIC_ITULAB:
        information.colorModel = GflColorModel::Lab;
        break;
    default:
        break;
    }
    return information;
}
