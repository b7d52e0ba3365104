#include "FileHeaders.h"

#include <array>
#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>

namespace {

constexpr std::uint64_t kLongestHeader = 1 << 25; // profiles and depth maps stand in it

/// Feeds a file to libjpeg, which calls back from C: no exception may leave these.
struct Source
{
    jpeg_source_mgr manager = {}; // the first member: libjpeg has a pointer to it
    const FileSlice *file = nullptr;
    std::uint64_t position = 0;
    std::array<unsigned char, 4096> buffer = {};
};

struct ErrorExit
{
    jpeg_error_mgr manager = {}; // the first member: libjpeg has a pointer to it
    std::jmp_buf leave = {};
};

void ignore(j_decompress_ptr) {}

boolean fill(j_decompress_ptr jpeg)
{
    auto *const source = reinterpret_cast<Source *>(jpeg->src);
    const std::uint64_t left = source->file->size() - source->position;
    const std::size_t count = left < source->buffer.size() ? std::size_t(left)
                                                           : source->buffer.size();
    if (count == 0 || !source->file->read(source->position, source->buffer.data(), count))
        return FALSE; // the header stays incomplete
    source->position += count;
    source->manager.next_input_byte = source->buffer.data();
    source->manager.bytes_in_buffer = count;
    return TRUE;
}

void skip(j_decompress_ptr jpeg, long count)
{
    auto *const source = reinterpret_cast<Source *>(jpeg->src);
    if (count <= 0)
        return;
    const auto bytes = std::uint64_t(count);
    if (bytes <= source->manager.bytes_in_buffer) {
        source->manager.next_input_byte += count;
        source->manager.bytes_in_buffer -= std::size_t(count);
        return;
    }
    const std::uint64_t beyond = bytes - source->manager.bytes_in_buffer;
    const std::uint64_t left = source->file->size() - source->position;
    source->position += beyond < left ? beyond : left;
    source->manager.bytes_in_buffer = 0;
}

[[noreturn]] void leave(j_common_ptr jpeg)
{
    std::longjmp(reinterpret_cast<ErrorExit *>(jpeg->err)->leave, 1);
}

void sayNothing(j_common_ptr, int) {}

/// Whether the header could be read; it then stands in `jpeg`. In a function of its own, without
/// objects whose destructors a jump would leave out.
bool readHeader(jpeg_decompress_struct &jpeg, ErrorExit &error, Source &source)
{
    jpeg.err = jpeg_std_error(&error.manager);
    error.manager.error_exit = leave;
    error.manager.emit_message = sayNothing;
    if (setjmp(error.leave) != 0) // NOLINT(cert-err52-cpp): libjpeg asks for it
        return false;
    jpeg_create_decompress(&jpeg);
    source.manager.init_source = ignore;
    source.manager.fill_input_buffer = fill;
    source.manager.skip_input_data = skip;
    source.manager.resync_to_restart = jpeg_resync_to_restart;
    source.manager.term_source = ignore;
    jpeg.src = &source.manager;
    return jpeg_read_header(&jpeg, TRUE) == JPEG_HEADER_OK;
}

} // namespace

std::optional<GflFileInformation> FileHeaders::jpeg(const FileSlice &file)
{
    std::array<unsigned char, 2> start = {};
    if (!file.read(0, start.data(), start.size()) || start[0] != 0xFF || start[1] != 0xD8)
        return std::nullopt;

    jpeg_decompress_struct jpeg = {};
    ErrorExit error;
    const FileSlice header = file.part(0, kLongestHeader);
    Source source;
    source.file = &header;
    const bool isRead = readHeader(jpeg, error, source);
    GflFileInformation information;
    information.width = int(jpeg.image_width);
    information.height = int(jpeg.image_height);
    information.componentsPerPixel = jpeg.num_components;
    information.bitsPerComponent = jpeg.data_precision;
    information.description = "JPEG";
    if (jpeg.jpeg_color_space == JCS_CMYK || jpeg.jpeg_color_space == JCS_YCCK)
        information.colorModel = GflColorModel::Cmyk;
    else if (jpeg.jpeg_color_space == JCS_GRAYSCALE)
        information.colorModel = GflColorModel::Gray;
    jpeg_destroy_decompress(&jpeg);
    if (!isRead || information.width <= 0 || information.height <= 0)
        return std::nullopt;
    return information;
}
