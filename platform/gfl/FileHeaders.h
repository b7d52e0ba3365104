#pragma once

#include "FileSlice.h"
#include "gfl.h"

#include <optional>

/// What image files tell of themselves at their beginnings. Nothing is decoded, and little is read
/// whatever the file holds. A file of another format, a broken header and a size of 0 give nothing.
/// Pure but for reading the file; any thread.
namespace FileHeaders {

/// Whether the file begins as one of the formats below.
bool knows(const FileSlice &file);

/// The header of the first of the formats below that can read it.
std::optional<GflFileInformation> any(const FileSlice &file);

std::optional<GflFileInformation> jpeg(const FileSlice &file);
std::optional<GflFileInformation> png(const FileSlice &file);

/// TIFF and what camera makers build on it.
std::optional<GflFileInformation> tiff(const FileSlice &file);

/// Photoshop's PSD and PSB.
std::optional<GflFileInformation> psd(const FileSlice &file);

/// OpenEXR, of one part.
std::optional<GflFileInformation> exr(const FileSlice &file);

/// Radiance's HDR.
std::optional<GflFileInformation> radiance(const FileSlice &file);

} // namespace FileHeaders
