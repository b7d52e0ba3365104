#pragma once

#include "gfl.h"

#include <QString>

/// Which files the library takes, from their headers and names alone. Pure.
namespace ImageFormatRule {

/// Whether `path` ends in one of `suffixes`, in any case.
bool isIgnored(const QString &path, const QStringList &suffixes);

/// False for colours that the library does not know, CMYK, LAB and gray, and for tiled TIFF files.
/// Photoshop files may have any colours of three components and more.
bool isAccepted(const QString &path, const GflFileInformation &information);

bool isRaw(const QString &path);
bool isHighDynamicRange(const QString &path);

/// By how much a thumbnail's buffer is smaller than the image: the largest power of two, 32 at
/// most, for which both sides reach those of the thumbnail; 1 if none does.
int reductionFactor(int width, int height, int thumbnailWidth, int thumbnailHeight);

} // namespace ImageFormatRule
