#pragma once

#include <string>
#include <vector>

/// One item of an image's EXIF data, all of it text, in the character set of the file.
struct GflExifEntry
{
    /// Which directory an item stands in.
    enum Flag : unsigned { Main = 0, Gps = 0x10, MakerNote = 0x20 };

    unsigned flag = Main;
    unsigned tag = 0;
    std::string name;  ///< such as "ExposureTime"
    std::string value; ///< for people, such as "1/250"
};

/// The items of all directories, in the order of the file.
using GflExifData = std::vector<GflExifEntry>;

/// A raw item: its text alone.
struct GflExif2Entry
{
    unsigned short tag = 0;
    std::string value;
};

using GflExif2Data = std::vector<GflExif2Entry>;
