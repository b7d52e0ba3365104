#include "LensId.h"

#include <exiv2/exif.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace {

constexpr int kMostNumbers = 8;

/// A field of a maker's note: Exiv2's name of the note's directory and the field's number.
struct Field
{
    std::string_view group;
    unsigned tag;
};

/// The first numbers of a field, as far as it has them and they are whole.
struct Numbers
{
    int count = 0;
    std::array<long, kMostNumbers> values = {};
};

/// Nikon's F mount, whose lenses are known by five numbers. The fields stand one behind the other:
/// lens number, one of no use, the focal lengths, the apertures.
constexpr std::array<Field, 4> kNikonF = {
    {{"NikonLd1", 0x06}, {"NikonLd2", 0x0B}, {"NikonLd3", 0x0C}, {"NikonLd4", 0x0D}}};
constexpr int kNikonFields = 6;

constexpr Field kNikonZ = {"NikonLd4", 0x30};
constexpr Field kOlympus = {"OlympusEq", 0x201};
constexpr std::array<Field, 2> kPentax = {{{"Pentax", 0x3F}, {"PentaxDng", 0x3F}}};

/// Makers that number their lenses.
constexpr std::array<Field, 6> kNumbered = {{{"CanonCs", 0x16},
                                             {"Sony2", 0xB027},
                                             {"Sony1", 0xB027},
                                             {"Minolta", 0x10C},
                                             {"Samsung2", 0xA003},
                                             {"Sigma", 0x27}}};

Numbers numbersOf(const Exiv2::Exifdatum &item)
{
    Numbers numbers;
    switch (item.typeId()) {
    case Exiv2::unsignedByte:
    case Exiv2::unsignedShort:
    case Exiv2::unsignedLong:
    case Exiv2::signedByte:
    case Exiv2::signedShort:
    case Exiv2::signedLong:
    case Exiv2::undefined:
        break;
    default:
        return numbers;
    }
    for (const long count = item.count(); numbers.count < count && numbers.count < kMostNumbers;
         ++numbers.count)
        numbers.values[std::size_t(numbers.count)] = item.toLong(numbers.count);
    return numbers;
}

template <typename... Values>
std::string formatted(const char *format, Values... values)
{
    std::array<char, 64> text = {};
    std::snprintf(text.data(), text.size(), format, values...);
    return text.data();
}

/// The codes c stand for a focal length of 5 * 2^(c/24) mm and an aperture of 2^(c/24).
std::string nikonF(const std::array<long, kNikonFields> &codes)
{
    const auto power = [&codes](std::size_t i) { return std::exp2(double(codes[i]) / 24); };
    return formatted("%ld %ld %ld %.1f %.1f", std::lround(5 * power(2)), std::lround(5 * power(3)),
                     codes[0], power(4), power(5));
}

} // namespace

std::string lensId(const Exiv2::ExifData &exif)
{
    constexpr long kNone = 0xFFFF; // as makers write for a lens without electronics
    std::array<long, kNikonFields> nikonCodes = {};
    unsigned nikonFound = 0; // a bit a field
    for (const Exiv2::Exifdatum &item : exif) {
        const std::string group = item.groupName();
        const unsigned tag = item.tag();
        const auto is = [&group, tag](const Field &f) { return f.tag == tag && f.group == group; };
        for (const Field &first : kNikonF) {
            if (group != first.group || tag < first.tag || tag >= first.tag + kNikonFields)
                continue;
            const Numbers code = numbersOf(item);
            nikonCodes[tag - first.tag] = code.values[0];
            nikonFound |= unsigned(code.count > 0) << (tag - first.tag);
        }
        if (is(kOlympus)) {
            const Numbers lens = numbersOf(item);
            if (lens.count >= 4)
                return formatted("%lx %02lx %02lx", lens.values[0], lens.values[2], lens.values[3]);
        }
        if (std::any_of(kPentax.begin(), kPentax.end(), is)) {
            const Numbers lens = numbersOf(item);
            if (lens.count >= 2)
                return formatted("%02ld %03ld", lens.values[0], lens.values[1]);
        }
        const bool isZ = is(kNikonZ);
        if (isZ || std::any_of(kNumbered.begin(), kNumbered.end(), is)) {
            const Numbers lens = numbersOf(item);
            const long number = lens.values[0];
            // A lens of the F mount has 0 as its number of the Z mount.
            if (lens.count > 0 && number >= (isZ ? 1 : 0) && number != kNone)
                return formatted("%05ld", number);
        }
    }
    constexpr unsigned kAllOfNikon = 0x3D; // all but the one of no use
    if ((nikonFound & kAllOfNikon) == kAllOfNikon && nikonCodes[2] > 0)
        return nikonF(nikonCodes);
    return {};
}
