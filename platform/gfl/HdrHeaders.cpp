#include "FileHeaders.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <string_view>

namespace {

/// The beginning of the file, no more than a header is long.
std::string beginning(const FileSlice &file)
{
    constexpr std::uint64_t kLongestHeader = 1 << 16;
    std::string bytes(std::size_t(std::min(file.size(), kLongestHeader)), '\0');
    if (!file.read(0, bytes.data(), bytes.size()))
        bytes.clear();
    return bytes;
}

/// Takes the parts of an OpenEXR header one after another; all that lies behind its end is empty.
class ExrScanner
{
public:
    explicit ExrScanner(std::string_view bytes)
        : m_rest(bytes)
    {}

    bool atEnd() const { return m_rest.empty(); }

    std::string_view bytes(std::size_t count)
    {
        const std::string_view taken = m_rest.substr(0, count);
        m_rest.remove_prefix(taken.size());
        return taken;
    }

    std::string_view name()
    {
        const std::string_view taken = bytes(m_rest.find('\0'));
        bytes(1);
        return taken;
    }

    std::int64_t number()
    {
        std::uint32_t value = 0;
        const std::string_view digits = bytes(4);
        for (std::size_t i = 0; i < digits.size(); ++i)
            value |= std::uint32_t(static_cast<unsigned char>(digits[i])) << (8 * i);
        return std::int32_t(value);
    }

private:
    std::string_view m_rest;
};

} // namespace

// "OpenEXR File Layout": magic number and version, then attributes of name, type, size and value up
// to an empty name.
std::optional<GflFileInformation> FileHeaders::exr(const FileSlice &file)
{
    const std::string start = beginning(file);
    if (start.compare(0, 4, "\x76\x2f\x31\x01") != 0)
        return std::nullopt;
    ExrScanner scan(start);
    scan.bytes(8);
    GflFileInformation information;
    information.description = "EXR";
    while (!scan.atEnd()) {
        const std::string_view name = scan.name();
        if (name.empty())
            break;
        scan.name(); // the type
        const std::int64_t size = scan.number();
        if (size < 0)
            break;
        ExrScanner value(scan.bytes(std::size_t(size)));
        if (name == "dataWindow") {
            const std::int64_t left = value.number();
            const std::int64_t top = value.number();
            const std::int64_t width = value.number() - left + 1;
            const std::int64_t height = value.number() - top + 1;
            if (width <= 0 || width > INT32_MAX || height <= 0 || height > INT32_MAX)
                return std::nullopt;
            information.width = int(width);
            information.height = int(height);
        } else if (name == "channels") {
            constexpr std::int64_t kHalf = 1;
            while (!value.name().empty()) {
                information.bitsPerComponent = value.number() == kHalf ? 16 : 32;
                value.bytes(12); // linear or not, subsampling
                ++information.componentsPerPixel;
            }
        }
    }
    if (information.componentsPerPixel == 1)
        information.colorModel = GflColorModel::Gray;
    if (information.width == 0 || information.componentsPerPixel == 0)
        return std::nullopt;
    return information;
}

// Ward, "Real Pixels": lines up to an empty one, then the size, such as "-Y 320 +X 640".
std::optional<GflFileInformation> FileHeaders::radiance(const FileSlice &file)
{
    const std::string start = beginning(file);
    if (start.compare(0, 2, "#?") != 0)
        return std::nullopt;
    const std::size_t end = start.find("\n\n");
    if (end == std::string::npos)
        return std::nullopt;
    const std::string size = start.substr(end + 2, 64);
    std::array<char, 3> first = {};
    std::array<char, 3> second = {};
    int firstSize = 0;
    int secondSize = 0;
    if (std::sscanf(size.c_str(), "%2s %9d %2s %9d", first.data(), &firstSize, second.data(),
                    &secondSize)
            != 4
        || firstSize <= 0 || secondSize <= 0)
        return std::nullopt;
    const bool isUpright = first[1] == 'Y';
    GflFileInformation information;
    information.width = isUpright ? secondSize : firstSize;
    information.height = isUpright ? firstSize : secondSize;
    information.componentsPerPixel = 3;
    information.bitsPerComponent = 32;
    information.description = "HDR";
    return information;
}
