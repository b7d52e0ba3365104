#pragma once

#include "gfl.h"

#include <cstdint>

/// The pixels of TIFF files, at their own depth. The files are open for reading, or for reading and
/// writing, at their start and stay open. Nothing is printed.

/// UnknownFormat where the file is no TIFF, or one of the many kinds that are left to other
/// readers: what is read here lies in strips, has samples of 8 or 16 bits or floats, and is gray,
/// RGB or RGB with an alpha that the colours are not multiplied by.
GflError readTiffPixels(int file, std::uint64_t fileSize, GflBitmap *bitmap);

/// Writes a bitmap that isWritable.
GflError writeTiffPixels(int file, const GflBitmap &bitmap);

/// Whether the bitmap has pixels, a known count of components and 8, 16 or 32 bits each.
bool isWritable(const GflBitmap &bitmap);
