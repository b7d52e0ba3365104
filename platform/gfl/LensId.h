#pragma once

#include <string>

namespace Exiv2 {
class ExifData;
}

/// The lens that the maker's note names, written as in the table of lenses (Data/lensid.txt); empty
/// if it names none.
std::string lensId(const Exiv2::ExifData &exif);
