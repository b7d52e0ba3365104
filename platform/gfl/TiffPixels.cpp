#include "TiffPixels.h"

#include "BitmapMemory.h"
#include "QuietTiff.h"

#include <algorithm>
#include <array>
#include <memory>

#include <unistd.h>

namespace {

constexpr std::uint64_t kMiB = std::uint64_t(1) << 20;

/// Of the compressions read here none makes more than this of a byte: LZW, whose codes of nine bits
/// or more stand for less than 4096 bytes each.
constexpr std::uint64_t kLargestRatio = 4096;

struct TiffCloser
{
    /// The file itself stays open.
    void operator()(TIFF *tiff) const { TIFFCleanup(tiff); }
};
using Tiff = std::unique_ptr<TIFF, TiffCloser>;

/// `largestBlock` bounds each allocation of the library; 0 leaves it unbounded.
Tiff openTiff(int file, const char *mode, std::uint64_t largestBlock)
{
    const TiffOptions options = quietTiffOptions(tmsize_t(largestBlock));
    if (!options)
        return nullptr;
    return Tiff(TIFFFdOpenExt(file, "", mode, options.get()));
}

bool looksLikeTiff(int file)
{
    using Start = std::array<char, 4>;
    constexpr std::array<Start, 4> kStarts = {
        {{'I', 'I', '*', 0}, {'M', 'M', 0, '*'}, {'I', 'I', '+', 0}, {'M', 'M', 0, '+'}}};
    Start start = {};
    return pread(file, start.data(), start.size(), 0) == ssize_t(start.size())
        && std::find(kStarts.begin(), kStarts.end(), start) != kStarts.end();
}

struct TiffHeader
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t components = 1;
    std::uint16_t bits = 1;
    std::uint16_t sampleFormat = SAMPLEFORMAT_UINT;
    std::uint16_t planes = PLANARCONFIG_CONTIG;
    std::uint16_t compression = COMPRESSION_NONE;
    std::uint16_t orientation = ORIENTATION_TOPLEFT;
    std::uint16_t photometric = PHOTOMETRIC_MINISWHITE;
    bool isAlphaLast = false;

    explicit TiffHeader(TIFF *tiff)
    {
        TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
        TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &components);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &sampleFormat);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planes);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &compression);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_ORIENTATION, &orientation);
        TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric);
        std::uint16_t extraCount = 0;
        const std::uint16_t *extra = nullptr;
        TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &extraCount, &extra);
        isAlphaLast = extraCount == 1 && extra[0] == EXTRASAMPLE_UNASSALPHA;
    }

    std::uint64_t byteCount() const
    {
        return bitmapBytes(width, height, unsigned(components) * bits);
    }

    /// The fewest bytes of a file that can hold the pixels, as far as that is known.
    std::uint64_t leastFileSize() const
    {
        if (compression == COMPRESSION_NONE && photometric != PHOTOMETRIC_YCBCR)
            return byteCount();
        return isReadableCompression() ? byteCount() / kLargestRatio : 0;
    }

    bool isReadableCompression() const
    {
        return compression == COMPRESSION_NONE || compression == COMPRESSION_PACKBITS
            || compression == COMPRESSION_LZW || compression == COMPRESSION_DEFLATE
            || compression == COMPRESSION_ADOBE_DEFLATE;
    }

    /// The type of bitmap that the lines are as they stand, 0 for another kind of file.
    unsigned type() const
    {
        const bool hasPlainSamples = sampleFormat == SAMPLEFORMAT_IEEEFP
            ? bits == 32
            : sampleFormat == SAMPLEFORMAT_UINT && (bits == 8 || bits == 16);
        if (!hasPlainSamples || !isReadableCompression() || planes != PLANARCONFIG_CONTIG
            || orientation != ORIENTATION_TOPLEFT)
            return 0;
        if (photometric == PHOTOMETRIC_MINISBLACK && components == 1)
            return kGflGrey;
        if (photometric == PHOTOMETRIC_RGB && components == 3)
            return kGflRgb;
        if (photometric == PHOTOMETRIC_RGB && components == 4 && isAlphaLast)
            return kGflRgba;
        return 0;
    }
};

std::size_t lineBytes(const GflBitmap &bitmap)
{
    return std::size_t(bitmapBytes(std::uint64_t(bitmap.width), 1,
                                   unsigned(gflComponents(bitmap.type) * bitmap.bitsPerComponent)));
}

bool setFields(TIFF *tiff, const GflBitmap &bitmap)
{
    const int components = gflComponents(bitmap.type);
    const auto set = [tiff](std::uint32_t tag, auto value) {
        return TIFFSetField(tiff, tag, value) == 1;
    };
    const std::uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
    return set(TIFFTAG_IMAGEWIDTH, bitmap.width) && set(TIFFTAG_IMAGELENGTH, bitmap.height)
        && set(TIFFTAG_SAMPLESPERPIXEL, components)
        && set(TIFFTAG_BITSPERSAMPLE, bitmap.bitsPerComponent)
        && set(TIFFTAG_SAMPLEFORMAT,
               bitmap.bitsPerComponent == 32 ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_UINT)
        && set(TIFFTAG_PHOTOMETRIC, components == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB)
        && (components != 4 || TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha) == 1)
        && set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG)
        && set(TIFFTAG_COMPRESSION, COMPRESSION_NONE)
        && set(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT)
        && set(TIFFTAG_ROWSPERSTRIP,
               std::uint32_t(std::max<std::uint64_t>(1, kMiB / lineBytes(bitmap))));
}

} // namespace

GflError readTiffPixels(int file, std::uint64_t fileSize, GflBitmap *bitmap)
{
    if (!looksLikeTiff(file))
        return GflError::UnknownFormat;
    // Not mapped: a file that someone cuts short meanwhile would end the program. No table and no
    // strip is larger than the file, but for tables that are filled up.
    const Tiff tiff = openTiff(file, "rm", 16 * kMiB + 2 * fileSize);
    if (!tiff)
        return GflError::FileRead;
    const TiffHeader header(tiff.get());
    if (header.byteCount() > kLargestBitmap)
        return GflError::NoMemory;
    if (header.leastFileSize() > fileSize)
        return GflError::FileRead;
    const unsigned type = header.type();
    if (type == 0 || TIFFIsTiled(tiff.get()))
        return GflError::UnknownFormat;

    GflBitmap made;
    const GflError error = makeBitmap(header.width, header.height, type, header.bits, &made);
    if (error != GflError::None)
        return error;
    if (TIFFScanlineSize64(tiff.get()) != lineBytes(made))
        return GflError::FileRead;
    for (int y = 0; y < made.height; ++y) {
        if (TIFFReadScanline(tiff.get(), made.line(y), std::uint32_t(y), 0) != 1)
            return GflError::FileRead;
    }
    *bitmap = std::move(made);
    return GflError::None;
}

GflError writeTiffPixels(int file, const GflBitmap &bitmap)
{
    const std::uint64_t bytes = std::uint64_t(lineBytes(bitmap)) * std::uint64_t(bitmap.height);
    const bool isBig = bytes > (std::uint64_t(1) << 32) - kMiB;
    const Tiff tiff = openTiff(file, isBig ? "w8" : "w", 0);
    if (!tiff || !setFields(tiff.get(), bitmap))
        return GflError::FileWrite;
    for (int y = 0; y < bitmap.height; ++y) {
        if (TIFFWriteScanline(tiff.get(), bitmap.line(y), std::uint32_t(y), 0) != 1)
            return GflError::FileWrite;
    }
    return TIFFFlush(tiff.get()) == 1 ? GflError::None : GflError::FileWrite;
}

bool isWritable(const GflBitmap &bitmap)
{
    const int bits = bitmap.bitsPerComponent;
    return bitmap.data != nullptr && bitmap.width > 0 && bitmap.height > 0
        && (bits == 8 || bits == 16 || bits == 32) && gflComponents(bitmap.type) != 0
        && bitmap.bytesPerLine >= lineBytes(bitmap);
}
