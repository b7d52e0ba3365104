#pragma once

#include <QString>

#include <optional>

/// What an image file tells of itself without its pixels being decoded.
struct ImageDef
{
    /// The camera's mounting when the picture was taken, degrees.
    double zenithPitchDeg = 0;
    double zenithRollDeg = 0;

    /// The description of the file at `path`; empty for a file that has none.
    static std::optional<ImageDef> open(const QString &path);
};
