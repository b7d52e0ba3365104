#include "FileHeaders.h"

#include <array>
#include <cstring>

namespace {

/// An unsigned number of `count` bytes, the highest first.
unsigned bigEndian(const unsigned char *bytes, int count)
{
    unsigned value = 0;
    for (int i = 0; i < count; ++i)
        value = value << 8U | bytes[i];
    return value;
}

} // namespace

// Adobe Photoshop File Formats Specification, "File Header Section": signature, version, 6 bytes of
// 0, channels, height, width, depth, color mode.
std::optional<GflFileInformation> FileHeaders::psd(const FileSlice &file)
{
    constexpr unsigned kLargestSide = 300000; // of a PSB
    constexpr unsigned kMostChannels = 56;
    enum Mode : unsigned { Bitmap, Gray, Indexed, Rgb, Cmyk, Multichannel = 7, Duotone, Lab };

    std::array<unsigned char, 26> bytes = {};
    if (!file.read(0, bytes.data(), bytes.size()) || std::memcmp(bytes.data(), "8BPS", 4) != 0)
        return std::nullopt;
    const unsigned version = bigEndian(&bytes[4], 2);
    const unsigned channels = bigEndian(&bytes[12], 2);
    const unsigned height = bigEndian(&bytes[14], 4);
    const unsigned width = bigEndian(&bytes[18], 4);
    const unsigned depth = bigEndian(&bytes[22], 2);
    const unsigned mode = bigEndian(&bytes[24], 2);
    const bool isDepth = depth == 1 || depth == 8 || depth == 16 || depth == 32;
    if ((version != 1 && version != 2) || !isDepth || channels == 0 || channels > kMostChannels
        || width == 0 || width > kLargestSide || height == 0 || height > kLargestSide)
        return std::nullopt;

    GflFileInformation information;
    information.width = int(width);
    information.height = int(height);
    information.componentsPerPixel = int(channels);
    information.bitsPerComponent = int(depth);
    information.description = version == 1 ? "PSD" : "PSB";
    switch (mode) {
    case Bitmap:
    case Gray:
    case Duotone:
        information.colorModel = GflColorModel::Gray;
        break;
    case Cmyk:
        information.colorModel = GflColorModel::Cmyk;
        break;
    case Lab:
        information.colorModel = GflColorModel::Lab;
        break;
    case Indexed:
        information.componentsPerPixel = 3; // of the palette
        break;
    default:
        break;
    }
    return information;
}
