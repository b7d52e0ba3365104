#include "SphericalNote.h"

#include "NumberText.h"

#include <array>
#include <cstring>

namespace {

unsigned bigEndian16(const unsigned char *bytes)
{
    return unsigned(bytes[0]) << 8U | bytes[1];
}

/// The Exif block of a JPEG file, from its TIFF header on.
std::optional<FileSlice> exifBlock(const FileSlice &jpeg)
{
    constexpr unsigned kApp1 = 0xE1;
    constexpr unsigned kStartOfScan = 0xDA;
    constexpr std::array<unsigned char, 6> kExif = {'E', 'x', 'i', 'f', 0, 0};
    constexpr int kMostSegments = 1024;

    std::uint64_t position = 2;
    for (int i = 0; i < kMostSegments; ++i) {
        std::array<unsigned char, 10> start = {}; // marker, length, what an Exif block begins with
        if (!jpeg.read(position, start.data(), start.size()) || start[0] != 0xFF)
            return std::nullopt;
        if (start[1] == 0xFF) { // filling
            ++position;
            continue;
        }
        const unsigned length = bigEndian16(&start[2]); // with itself
        if (start[1] == kStartOfScan || length < 2)
            return std::nullopt;
        if (start[1] == kApp1 && length >= 8
            && std::memcmp(&start[4], kExif.data(), kExif.size()) == 0)
            return jpeg.part(position + start.size(), length - 8);
        position += 2 + length;
    }
    return std::nullopt;
}

/// A block of the TIFF form (Adobe, TIFF 6.0, section 2), read a field at a time.
class TiffBlock
{
public:
    struct Field
    {
        unsigned type = 0;
        std::uint32_t count = 0;
        std::uint32_t value = 0; ///< or its offset
    };

    static std::optional<TiffBlock> open(const FileSlice &slice)
    {
        std::array<unsigned char, 4> header = {};
        if (!slice.read(0, header.data(), header.size()))
            return std::nullopt;
        const bool isLittle = std::memcmp(header.data(), "II*\0", 4) == 0;
        if (!isLittle && std::memcmp(header.data(), "MM\0*", 4) != 0)
            return std::nullopt;
        return TiffBlock(slice, isLittle);
    }

    /// A number of `size` bytes, at most 4.
    std::optional<std::uint32_t> number(std::uint64_t offset, int size) const
    {
        std::array<unsigned char, 4> bytes = {};
        if (!m_slice.read(offset, bytes.data(), std::size_t(size)))
            return std::nullopt;
        std::uint32_t value = 0;
        for (int i = 0; i < size; ++i)
            value = value << 8U | bytes[std::size_t(m_isLittle ? size - 1 - i : i)];
        return value;
    }

    std::optional<Field> field(std::uint64_t directory, unsigned tag) const
    {
        const auto count = number(directory, 2);
        for (std::uint64_t i = 0; count && i < *count; ++i) {
            const std::uint64_t at = directory + 2 + 12 * i;
            const auto found = number(at, 2);
            if (!found)
                return std::nullopt;
            if (*found != tag)
                continue;
            const auto type = number(at + 2, 2);
            const auto values = number(at + 4, 4);
            const auto value = number(at + 8, 4);
            if (!type || !values || !value)
                return std::nullopt;
            return Field{*type, *values, *value};
        }
        return std::nullopt;
    }

    bool begins(std::uint64_t offset, const char *text, std::size_t size) const
    {
        std::array<char, 16> bytes = {};
        return m_slice.read(offset, bytes.data(), size)
            && std::memcmp(bytes.data(), text, size) == 0;
    }

private:
    TiffBlock(const FileSlice &slice, bool isLittle)
        : m_slice(slice)
        , m_isLittle(isLittle)
    {}

    FileSlice m_slice;
    bool m_isLittle;
};

std::optional<double> signedRational(const TiffBlock &block, std::uint64_t offset)
{
    const auto numerator = block.number(offset, 4);
    const auto denominator = block.number(offset + 4, 4);
    if (!numerator || !denominator || *denominator == 0)
        return std::nullopt;
    return double(std::int32_t(*numerator)) / double(std::int32_t(*denominator));
}

} // namespace

std::optional<std::string> SphericalNote::zenith(const FileSlice &file)
{
    constexpr unsigned kExifDirectory = 0x8769;
    constexpr unsigned kMakerNote = 0x927C;
    constexpr unsigned kSphere = 0x4001;
    constexpr unsigned kZenith = 3;
    constexpr unsigned kSignedRational = 10;
    constexpr std::size_t kHeadSize = 8;

    std::array<unsigned char, 2> start = {};
    if (!file.read(0, start.data(), start.size()))
        return std::nullopt;
    const bool isJpeg = start[0] == 0xFF && start[1] == 0xD8;
    const std::optional<FileSlice> slice = isJpeg ? exifBlock(file) : file;
    const std::optional<TiffBlock> block = slice ? TiffBlock::open(*slice) : std::nullopt;
    const auto first = block ? block->number(4, 4) : std::nullopt;
    const auto exif = first ? block->field(*first, kExifDirectory) : std::nullopt;
    const auto note = exif ? block->field(exif->value, kMakerNote) : std::nullopt;
    if (!note || !block->begins(note->value, "Ricoh\0\0\0", kHeadSize))
        return std::nullopt;
    const auto sphere = block->field(note->value + std::uint64_t(kHeadSize), kSphere);
    const auto zenith = sphere ? block->field(sphere->value, kZenith) : std::nullopt;
    if (!zenith || zenith->type != kSignedRational || zenith->count < 2)
        return std::nullopt;
    const auto roll = signedRational(*block, zenith->value);
    const auto pitch = signedRational(*block, std::uint64_t(zenith->value) + 8);
    if (!roll || !pitch)
        return std::nullopt;
    return numberText(*roll) + ' ' + numberText(*pitch);
}
