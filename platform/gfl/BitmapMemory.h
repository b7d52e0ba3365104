#pragma once

#include "gfl.h"

#include <cstdint>

/// No image that is read takes more bytes of pixels than this.
constexpr std::uint64_t kLargestBitmap = std::uint64_t(2) << 30;

/// The bytes of `width` times `height` pixels of `bitsPerPixel`, lines without padding, or 2^64 - 1
/// where that is too much for 64 bits.
std::uint64_t bitmapBytes(std::uint64_t width, std::uint64_t height, unsigned bitsPerPixel);

/// Makes a bitmap whose lines begin at multiples of four bytes; what the pixels are is open.
/// NoMemory beyond kLargestBitmap, before anything is allocated.
GflError makeBitmap(std::uint64_t width, std::uint64_t height, unsigned type, int bitsPerComponent,
                    GflBitmap *bitmap);
