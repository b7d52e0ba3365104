// Any EXIF items, one a line as "flag tag name=value": all numbers that come of them are finite.
#include "ExifMapping.h"
#include "ExifText.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    GflExifData items;
    GflExif2Data rawItems;
    std::istringstream lines(std::string(reinterpret_cast<const char *>(data), size));
    for (std::string line; std::getline(lines, line);) {
        GflExifEntry item;
        char *rest = nullptr;
        item.flag = unsigned(std::strtoul(line.c_str(), &rest, 0));
        item.tag = unsigned(std::strtoul(rest, &rest, 0));
        const size_t start = std::min(line.find_first_not_of(' ', rest - line.c_str()),
                                      line.size());
        const size_t sign = std::min(line.find('=', start), line.size());
        item.name = line.substr(start, sign - start);
        item.value = line.substr(std::min(sign + 1, line.size()));
        if (!std::isfinite(ExifText::parseRational(item.value)))
            std::abort();
        rawItems.push_back({static_cast<unsigned short>(item.tag), item.value});
        items.push_back(item);
    }
    const auto cropFactor = [](const QString &maker, const QString &) {
        return maker.size() % 3 - 1.0;
    };
    const ImageMetadata m = ExifMapping::map(items, rawItems, cropFactor).metadata;
    for (const double number :
         {m.scaleFactor, m.focalLength35mm, m.exposureTime, m.fNumber, m.exposureBias,
          m.exposureValue, m.horizontalFieldOfView, m.verticalFieldOfView, m.thirdFieldOfView,
          m.latitude, m.longitude, m.altitude, m.imageDirection, m.zenithPitch, m.zenithRoll}) {
        if (!std::isfinite(number))
            std::abort();
    }
    return 0;
}
