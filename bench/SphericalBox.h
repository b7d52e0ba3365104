#pragma once

#include <QByteArray>

#include <optional>

/// A copy of an MP4 file that says that its video is a whole sphere in the equirectangular
/// projection: the first video track gets a `uuid` box with the metadata of Spherical Video V1
/// (https://github.com/google/spatial-media/blob/master/docs/spherical-video-rfc.md), and the sizes
/// and chunk offsets around it follow (ISO/IEC 14496-12). Empty if the bytes are no such file, or
/// if a size or an offset would outgrow its field.
std::optional<QByteArray> withSphericalBox(const QByteArray &mp4);
