#include "ExifItems.h"

#include "LensId.h"
#include "NumberText.h"

#include <exiv2/exif.hpp>
#include <exiv2/value.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <string_view>

namespace {

constexpr long kLongestItem = 4096; // bytes

enum Tag : unsigned {
    Orientation = 0x112,
    ShutterSpeed = 0x9201,
    FNumber = 0x829D,
    UserComment = 0x9286,
    FocalLength = 0x920A,
    FocalPlaneUnit = 0xA210,
};

enum GpsTag : unsigned {
    LatitudeReference = 1,
    Latitude = 2,
    LongitudeReference = 3,
    Longitude = 4,
    DirectionReference = 16,
    Direction = 17,
};

struct Word
{
    std::string_view value;
    std::string_view shown;
};

/// The value for people; a value that the words do not have stays as it is.
template <std::size_t Count>
std::string word(const std::array<Word, Count> &words, const std::string &value)
{
    const auto found = std::find_if(words.begin(), words.end(),
                                    [&value](const Word &w) { return w.value == value; });
    return found == words.end() ? value : std::string(found->shown);
}

// Exif 2.3, "Orientation", "FocalPlaneResolutionUnit" and what makers use beside it, GPS tags.
constexpr std::array<Word, 8> kOrientations = {{{"1", "Top-left (1)"},
                                                {"2", "Top-right (2)"},
                                                {"3", "Bottom-right (3)"},
                                                {"4", "Bottom-left (4)"},
                                                {"5", "Left-top (5)"},
                                                {"6", "Right-top (6)"},
                                                {"7", "Right-bottom (7)"},
                                                {"8", "Left-bottom (8)"}}};
constexpr std::array<Word, 4> kUnits = {{{"2", "Inch"}, {"3", "cm"}, {"4", "mm"}, {"5", "um"}}};
constexpr std::array<Word, 6> kReferences = {{{"N", "North"},
                                              {"S", "South"},
                                              {"E", "East"},
                                              {"W", "West"},
                                              {"T", "True"},
                                              {"M", "Magnetic"}}};

/// The rational number at `index`; 0 for one that has none.
double quotient(const Exiv2::Exifdatum &item, int index)
{
    if (index >= item.count())
        return 0;
    const Exiv2::Rational rational = item.toRational(index);
    return rational.second == 0 ? 0 : double(rational.first) / double(rational.second);
}

/// Seconds of the exposure from its APEX value v (Exif 2.3, annex C): 2^-v.
std::string shutterTime(const Exiv2::Exifdatum &item)
{
    const double time = std::exp2(-quotient(item, 0));
    const double inverse = std::round(1 / time);
    return time < 1 && inverse < 1e9 ? "1/" + numberText(inverse) : numberText(time);
}

/// "48° 51' 30.5\"" of degrees, minutes and seconds, each of which may have a fraction. Rounded to
/// a millionth of a second.
std::string angle(const Exiv2::Exifdatum &item)
{
    constexpr long long kMinute = 60'000'000;
    constexpr long long kDegree = 60 * kMinute;
    const double seconds = quotient(item, 0) * 3600 + quotient(item, 1) * 60 + quotient(item, 2);
    if (!(seconds >= 0 && seconds < 1e9))
        return item.toString();
    const long long rounded = std::llround(seconds * 1e6);
    return std::to_string(rounded / kDegree) + "\u00b0 "
        + std::to_string(rounded % kDegree / kMinute) + "' "
        + numberText(double(rounded % kMinute) / 1e6) + '"';
}

std::string comment(const Exiv2::Exifdatum &item)
{
    const auto *const value = dynamic_cast<const Exiv2::CommentValue *>(&item.value());
    return value ? value->comment() : item.toString();
}

/// `plain` is the item as it stands in the file.
std::string mainText(const Exiv2::Exifdatum &item, const std::string &plain)
{
    switch (item.tag()) {
    case Orientation:
        return word(kOrientations, plain);
    case ShutterSpeed:
        return shutterTime(item);
    case FNumber:
    case FocalLength:
        return numberText(quotient(item, 0));
    case FocalPlaneUnit:
        return word(kUnits, plain);
    default:
        return plain;
    }
}

std::string gpsText(const Exiv2::Exifdatum &item)
{
    switch (item.tag()) {
    case LatitudeReference:
    case LongitudeReference:
    case DirectionReference:
        return word(kReferences, item.toString());
    case Latitude:
    case Longitude:
        return angle(item);
    case Direction:
        return numberText(quotient(item, 0));
    default:
        return item.toString();
    }
}

bool isMain(const std::string &group)
{
    return group == "Image" || group == "Photo";
}

} // namespace

void ExifItems::read(const Exiv2::ExifData &exif, GflExifData &readable, GflExif2Data &raw)
{
    for (const Exiv2::Exifdatum &item : exif) {
        if (item.size() > kLongestItem)
            continue;
        const std::string group = item.groupName();
        if (isMain(group)) {
            const std::string plain = item.tag() == UserComment ? comment(item) : item.toString();
            readable.push_back(
                {GflExifEntry::Main, item.tag(), item.tagName(), mainText(item, plain)});
            raw.push_back({item.tag(), plain});
        } else if (group == "GPSInfo") {
            readable.push_back({GflExifEntry::Gps, item.tag(), item.tagName(), gpsText(item)});
        }
    }
    const std::string lens = lensId(exif);
    if (!lens.empty())
        readable.push_back({GflExifEntry::MakerNote, 0, "LensID", lens});
}
