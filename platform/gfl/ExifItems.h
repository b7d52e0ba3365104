#pragma once

#include "GflExif.h"

namespace Exiv2 {
class ExifData;
}

namespace ExifItems {

/// Appends to `readable` the EXIF data that Exiv2 has read as items for people: those of the image
/// itself, of its camera and its place, and the maker's note's lens as "LensID"; to `raw` those of
/// the image and its camera as they stand in the file, the user's comment without the name of its
/// character set. Items of more than 4 KiB are left out. Throws what Exiv2 throws.
void read(const Exiv2::ExifData &exif, GflExifData &readable, GflExif2Data &raw);

} // namespace ExifItems
