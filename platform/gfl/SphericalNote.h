#pragma once

#include "FileSlice.h"

#include <optional>
#include <string>

/// The maker's note of the spherical cameras that Exiv2 leaves as it is: one that begins "Ricoh"
/// and three zeros. An image file directory follows whose tag 0x4001 leads to another; there the
/// tag 3 has the two angles of the camera to the zenith, signed rationals. Pure but for reading the
/// file.
namespace SphericalNote {

/// "first second" in degrees of a JPEG file or a file that is built on TIFF; nothing if there is no
/// such note.
std::optional<std::string> zenith(const FileSlice &file);

} // namespace SphericalNote
