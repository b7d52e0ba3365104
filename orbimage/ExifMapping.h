#pragma once

#include "GflExif.h"
#include "ImageMetadata.h"

#include <functional>

/// Turns the EXIF items of an image, all of them text, into its metadata. Pure, any thread, and
/// safe for any bytes: a value that cannot be read counts as 0.
namespace ExifMapping {

/// The factor between a camera's sensor and a frame of 36 by 24 mm; -1 for a camera that is not
/// known.
using CropFactor = std::function<double(const QString &maker, const QString &model)>;

struct Result
{
    ImageMetadata metadata;
    QString summary;            ///< the items for people, a line an item
    bool hasCameraData = false; ///< whether the focal length is more than a guess
};

/// `items` are the readable ones, where a later one overwrites an earlier; of `rawItems` only the
/// user's comment counts. No items at all give an empty result. A date is local time.
Result map(const GflExifData &items, const GflExif2Data &rawItems, const CropFactor &cropFactor);

} // namespace ExifMapping
