#pragma once

#include <cstddef>
#include <memory>
#include <vector>

/// What a bitmap's type may be; its samples stand in the order of the name. The other bits of the
/// masks below are types of which only the count of components is known.
enum GflBitmapType : unsigned {
    kGflGrey = 0x0002,
    kGflRgb = 0x0010,
    kGflRgba = 0x0020,
};

/// The components of a bitmap's type: 1, 3 or 4; 0 for a type that is not one of them.
constexpr int gflComponents(unsigned type)
{
    const bool isOneBit = type != 0 && (type & (type - 1)) == 0;
    if (!isOneBit)
        return 0;
    if (type & 0x0007u)
        return 1;
    if (type & 0x1050u)
        return 3;
    return type & 0x27A0u ? 4 : 0;
}

/// A rectangle of pixels, from the top left, components interleaved. A sample is an unsigned
/// integer of 8 or 16 bits in the machine's byte order, the whole range from black to white, or a
/// float of 32 bits from 0 to 1, more for a light that is brighter than white.
struct GflBitmap
{
    unsigned type = 0;
    int width = 0;
    int height = 0;
    int bitsPerComponent = 0;     ///< 8, 16 or 32
    std::size_t bytesPerLine = 0; ///< from a line's start to the next's
    unsigned char *data = nullptr;
    /// Null where the pixels belong to someone else.
    std::unique_ptr<unsigned char[]> owned;

    unsigned char *line(int y) const { return data + std::size_t(y) * bytesPerLine; }
};
