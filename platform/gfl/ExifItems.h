#pragma once

#include "GflExif.h"

namespace Exiv2 {
class ExifData;
}

/// The EXIF data that Exiv2 has read as items for people: those of the image itself, of its camera
/// and its place, and the maker's note's lens as "LensID". Items of more than 4 KiB are left out,
/// thumbnails have none. Throws what Exiv2 throws.
namespace ExifItems {

GflExifData readable(const Exiv2::ExifData &exif);

/// The items of the image and its camera as they stand in the file; the user's comment without the
/// name of its character set.
GflExif2Data raw(const Exiv2::ExifData &exif);

} // namespace ExifItems
