#include "FileHeaders.h"

#include <algorithm>
#include <array>
#include <string_view>

bool FileHeaders::knows(const FileSlice &file)
{
    using namespace std::string_view_literals;
    constexpr std::array kStarts = {"\xFF\xD8"sv, "\x89PNG"sv, "II*\0"sv, "MM\0*"sv,
                                    "II+\0"sv,    "MM\0+"sv,   "8BPS"sv,  "\x76\x2F\x31\x01"sv,
                                    "#?"sv};
    return std::any_of(kStarts.begin(), kStarts.end(), [&file](std::string_view start) {
        std::array<char, 4> bytes = {};
        return file.read(0, bytes.data(), start.size())
            && std::string_view(bytes.data(), start.size()) == start;
    });
}

std::optional<GflFileInformation> FileHeaders::any(const FileSlice &file)
{
    for (const auto header : {jpeg, png, tiff, psd, exr, radiance}) {
        const std::optional<GflFileInformation> information = header(file);
        if (information)
            return information;
    }
    return std::nullopt;
}
