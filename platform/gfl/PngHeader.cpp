#include "FileHeaders.h"

#include <array>
#include <csetjmp>
#include <cstring>

#include <png.h>

namespace {

constexpr std::uint64_t kLongestHeader = 1 << 16;

struct Source
{
    explicit Source(const FileSlice &slice)
        : file(slice)
    {}

    FileSlice file;
    std::uint64_t position = 0;
};

[[noreturn]] void leave(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

void sayNothing(png_structp, png_const_charp) {}

void readBytes(png_structp png, png_bytep bytes, std::size_t count)
{
    auto *const source = static_cast<Source *>(png_get_io_ptr(png));
    if (!source->file.read(source->position, bytes, count))
        png_error(png, "short");
    source->position += count;
}

/// In a function of its own, without objects whose destructors a jump would leave out.
void readHeader(png_structp png, png_infop info, Source &source)
{
    if (setjmp(png_jmpbuf(png)) != 0) // NOLINT(cert-err52-cpp): libpng asks for it
        return;
    png_set_read_fn(png, &source, readBytes);
    // Neither texts nor profiles are unpacked.
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_read_info(png, info);
}

} // namespace

std::optional<GflFileInformation> FileHeaders::png(const FileSlice &file)
{
    std::array<unsigned char, 8> start = {};
    if (!file.read(0, start.data(), start.size())
        || png_sig_cmp(start.data(), 0, start.size()) != 0)
        return std::nullopt;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, leave, sayNothing);
    if (!png)
        return std::nullopt;
    png_infop info = png_create_info_struct(png);
    Source source(file.part(0, kLongestHeader));
    if (info)
        readHeader(png, info, source);
    // The sizes stand in the first chunk, and the channels are known once they were found good;
    // what follows may be broken or long.
    const bool isRead = info && png_get_channels(png, info) > 0;
    GflFileInformation information;
    if (isRead) {
        const png_byte color = png_get_color_type(png, info);
        information.width = int(png_get_image_width(png, info));
        information.height = int(png_get_image_height(png, info));
        information.componentsPerPixel = color == PNG_COLOR_TYPE_PALETTE
            ? 3
            : int(png_get_channels(png, info));
        information.bitsPerComponent = color == PNG_COLOR_TYPE_PALETTE
            ? 8
            : int(png_get_bit_depth(png, info));
        information.description = "PNG";
        if ((color & PNG_COLOR_MASK_COLOR) == 0)
            information.colorModel = GflColorModel::Gray;
    }
    png_destroy_read_struct(&png, &info, nullptr);
    if (!isRead)
        return std::nullopt;
    return information;
}
