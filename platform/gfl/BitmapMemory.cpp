#include "BitmapMemory.h"

#include <climits>
#include <new>

std::uint64_t bitmapBytes(std::uint64_t width, std::uint64_t height, unsigned bitsPerPixel)
{
    std::uint64_t bits = 0;
    std::uint64_t all = 0;
    if (__builtin_mul_overflow(width, bitsPerPixel, &bits)
        || __builtin_mul_overflow(bits / 8 + (bits % 8 != 0), height, &all))
        return UINT64_MAX;
    return all;
}

GflError makeBitmap(std::uint64_t width, std::uint64_t height, unsigned type, int bitsPerComponent,
                    GflBitmap *bitmap)
{
    const unsigned bitsPerPixel = unsigned(gflComponents(type) * bitsPerComponent);
    if (width == 0 || height == 0 || bitsPerPixel == 0)
        return GflError::FileRead;
    if (width > INT_MAX || height > INT_MAX
        || bitmapBytes(width, height, bitsPerPixel) > kLargestBitmap)
        return GflError::NoMemory;

    GflBitmap made;
    made.type = type;
    made.width = int(width);
    made.height = int(height);
    made.bitsPerComponent = bitsPerComponent;
    made.bytesPerLine = (bitmapBytes(width, 1, bitsPerPixel) + 3) / 4 * 4;
    made.owned.reset(new (std::nothrow) unsigned char[made.bytesPerLine * height]);
    made.data = made.owned.get();
    if (made.data == nullptr)
        return GflError::NoMemory;
    *bitmap = std::move(made);
    return GflError::None;
}
