#pragma once

#include <array>
#include <cstddef>

/// A direction of view, of unit length: x to the east, y up, z to the north.
struct Direction
{
    float x;
    float y;
    float z;
};

/// Display values, 0 to 1.
struct Colour
{
    float r;
    float g;
    float b;
};

/// Ridges along the horizon, from snowy mountains to the near hills.
constexpr std::size_t kRidges = 4;

/// What depends on the azimuth alone.
struct Azimuth
{
    float sine;                        ///< of the longitude
    float cosine;                      ///< of the longitude
    std::array<float, kRidges> ridges; ///< sine of each ridge's elevation, the farthest first
    Colour haze;                       ///< the air at the horizon
};

/// Blends from @p a at @p t 0 to @p b at @p t 1.
inline Colour mix(Colour a, Colour b, float t)
{
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}

/// @p longitude in radians.
Azimuth azimuthAt(float longitude);

/// Sky, clouds and hills, for directions at or above the horizon.
/// @p pixelAngle is the height of a pixel in radians, over which edges are softened.
Colour skyAndHills(const Azimuth &azimuth, Direction direction, float pixelAngle);

/// The terrace with its compass rose and the meadow around it, for directions below the horizon:
/// each viewing ray is followed to the plane of the ground. @p pixelAngle as above.
Colour ground(const Azimuth &azimuth, Direction direction, float pixelAngle);
