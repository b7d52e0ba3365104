#include "LensId.h"

#include <exiv2/exif.hpp>

#include <array>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string_view>
#include <vector>

namespace {

template <typename... Numbers>
std::string formatted(const char *format, Numbers... numbers)
{
    std::array<char, 64> text = {};
    std::snprintf(text.data(), text.size(), format, numbers...);
    return text.data();
}

/// The first numbers of an item; nothing if it has fewer or they are no whole numbers.
std::optional<std::vector<long>> numbers(const Exiv2::Exifdatum &item, int count)
{
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
        return std::nullopt;
    }
    if (item.count() < count)
        return std::nullopt;
    std::vector<long> values;
    values.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i)
        values.push_back(item.toLong(i));
    return values;
}

std::optional<std::vector<long>> numbers(const Exiv2::ExifData &exif, const std::string &key,
                                         int count)
{
    const auto item = exif.findKey(Exiv2::ExifKey(key));
    return item == exif.end() ? std::nullopt : numbers(*item, count);
}

/// Makers that number their lenses.
std::string numbered(const Exiv2::ExifData &exif)
{
    constexpr long kNone = 0xFFFF; // as makers write for a lens without electronics
    for (const char *const key :
         {"Exif.CanonCs.LensType", "Exif.Sony2.LensID", "Exif.Sony1.LensID", "Exif.Minolta.LensID",
          "Exif.Samsung2.LensType", "Exif.Sigma.0x0027", "Exif.NikonLd4.LensID"}) {
        const auto number = numbers(exif, key, 1);
        const bool isNikonF = number && number->front() == 0
            && std::string_view(key).find("Nikon") != std::string_view::npos;
        if (number && number->front() >= 0 && number->front() != kNone && !isNikonF)
            return formatted("%05ld", number->front());
    }
    return {};
}

/// Nikon's F mount, whose lenses are known by five numbers. The codes c stand for a focal length of
/// 5 * 2^(c/24) mm and an aperture of 2^(c/24).
std::string nikonF(const Exiv2::ExifData &exif)
{
    const auto power = [](long code) { return std::exp2(double(code) / 24); };
    for (const char *const group : {"NikonLd3", "NikonLd2", "NikonLd1", "NikonLd4"}) {
        std::vector<long> codes;
        for (const char *const name : {"MinFocalLength", "MaxFocalLength", "LensIDNumber",
                                       "MaxApertureAtMinFocal", "MaxApertureAtMaxFocal"}) {
            const auto code = numbers(exif, std::string("Exif.") + group + "." + name, 1);
            if (code)
                codes.push_back(code->front());
        }
        if (codes.size() == 5 && codes[0] > 0)
            return formatted("%ld %ld %ld %.1f %.1f", std::lround(5 * power(codes[0])),
                             std::lround(5 * power(codes[1])), codes[2], power(codes[3]),
                             power(codes[4]));
    }
    return {};
}

} // namespace

std::string lensId(const Exiv2::ExifData &exif)
{
    if (const auto olympus = numbers(exif, "Exif.OlympusEq.LensType", 4))
        return formatted("%lx %02lx %02lx", (*olympus)[0], (*olympus)[2], (*olympus)[3]);
    for (const char *const key : {"Exif.Pentax.LensType", "Exif.PentaxDng.LensType"}) {
        if (const auto pentax = numbers(exif, key, 2))
            return formatted("%02ld %03ld", (*pentax)[0], (*pentax)[1]);
    }
    const std::string number = numbered(exif);
    return number.empty() ? nikonF(exif) : number;
}
