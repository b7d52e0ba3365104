#pragma once

#include <cstddef>

/// Conversion of pixels between 1, 3 and 4 components of 8, 16 or 32 bits, a kernel for each of the
/// 81 pairs. Pure, any thread.
///
/// Integer targets are rounded to the nearest, a half up: 8 bits become 16 times 257, 16 become 8
/// times 255 / 65535. A float is its share of the range from 0 to 1; an integer clamps it, and
/// makes 0 of "not a number". Gray becomes three equal components; red, green and blue become gray
/// by 0.299, 0.587 and 0.114 (ITU-R BT.601) of the source's samples, rounded once. A new alpha is
/// opaque.
namespace PixelKernels {

/// Converts `count` pixels. The addresses need no alignment, even for samples of several bytes. The
/// two ranges may not overlap. Writes nothing beyond the last target pixel.
using Kernel = void (*)(const unsigned char *from, unsigned char *to, std::size_t count);

struct Format
{
    int components = 0;       ///< 1, 3 or 4
    int bitsPerComponent = 0; ///< 8, 16 or 32, the last a float
};

/// Whether this processor has vectors of 32 bytes, for which every kernel exists once more.
bool isWideProcessor();

/// Null for a format that is none. Both kinds of kernels write the same.
Kernel kernel(Format from, Format to, bool isWide = isWideProcessor());

} // namespace PixelKernels
