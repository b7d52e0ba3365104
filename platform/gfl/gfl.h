#pragma once

#include "GflBitmap.h"
#include "GflExif.h"

#include <string>
#include <vector>

/// Reading and writing of image files. After gflLibraryInitEx all functions may be called from any
/// thread. Paths are UTF-8. Every file may be hostile: what cannot be read is an error or missing,
/// and describing a file takes a bounded amount of memory whatever it holds.

/// What went wrong. The values are shown to users and stay.
enum class GflError {
    None = 0,
    FileOpen = 1,
    FileRead = 2,
    FileCreate = 3,
    FileWrite = 4,
    NoMemory = 5,
    UnknownFormat = 6,
    BadBitmap = 7,
    BadFormatIndex = 10,
    BadParameters = 50,
};

enum class GflColorModel { Rgb = 0, Gray = 1, Cmyk = 3, Lab = 6 };

/// What the header of an image file tells.
struct GflFileInformation
{
    int width = 0; ///< pixels
    int height = 0;
    int componentsPerPixel = 0;
    int bitsPerComponent = 0;
    GflColorModel colorModel = GflColorModel::Rgb;
    std::string description; ///< the format for people: "JPEG", "TIFF", "TIFF tiled"
};

using GflBytes = std::vector<unsigned char>;

/// All metadata of an image file; what the file does not have is empty.
struct GflMetadata
{
    GflBytes iccProfile;
    GflBytes iptc;
    std::string xmp;
    GflExifData exif;
    GflExif2Data exif2;
};

/// Once at the start of the program, before any other call, on the main thread.
void gflLibraryInitEx();

/// The description of the file at `path`, from its header alone.
GflError gflGetFileInformationExUTF8(const std::string &path, GflFileInformation *information);

/// What can be read of the file's metadata.
GflMetadata gflLoadMetadataUTF8(const std::string &path);

/// The whole image at its own depth: gray, RGB or RGBA, upright as the file has it. Pixels of more
/// than 2 GiB are NoMemory.
GflError gflLoadBitmapUTF8(const std::string &path, GflBitmap *bitmap);

/// A small picture of the file, RGBA of 8 bits: the one that it has embedded where that is large
/// enough, else the image itself reduced. It has the shape of the image and covers `width` times
/// `height` pixels, or is the image itself where that is smaller.
GflError gflLoadThumbnailUTF8(const std::string &path, int width, int height, GflBitmap *bitmap);

/// Writes `bitmap` as an uncompressed TIFF that gflLoadBitmapUTF8 reads back as it was. A file that
/// could not be written whole is removed.
GflError gflSaveBitmapUTF8(const std::string &path, const GflBitmap &bitmap);
