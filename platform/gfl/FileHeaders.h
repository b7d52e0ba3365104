#pragma once

#include "FileSlice.h"
#include "gfl.h"

#include <optional>

/// What image files tell of themselves at their beginnings. Nothing is decoded, and a few KiB are
/// read whatever the file holds. A file of another format, a broken header and a size of 0 give
/// nothing. Pure but for reading the file; any thread.
namespace FileHeaders {

/// The file's header in the first of the formats below that knows it.
std::optional<GflFileInformation> any(const RegularFile &file, const std::string &path);

std::optional<GflFileInformation> jpeg(const FileSlice &file);
std::optional<GflFileInformation> png(const FileSlice &file);

/// Photoshop's PSD and PSB.
std::optional<GflFileInformation> psd(const FileSlice &file);

/// TIFF and what camera makers build on it.
std::optional<GflFileInformation> tiff(const FileSlice &file);

/// All that the installed readers of Qt know beside these.
std::optional<GflFileInformation> other(const std::string &path);

} // namespace FileHeaders
