#pragma once

#include "ovr.h"

#include <array>

/// How a headset's lenses bend the picture, and where they stand. A point of the panel at the
/// distance r from its lens, in units of `warpScale`, is seen where a point at
/// r · (k0 + k1·r + k2·r² + k3·r³ + k4·r⁴) would be seen without the lens. (The polynomial of
/// OpenHMD's universal distortion, with one more power.) Lengths are in metres.
struct LensModel
{
    double panelWidth = 0; ///< both eyes
    double panelHeight = 0;
    double lensSeparation = 0;
    double lensHeight = 0;  ///< above the panel's lower edge
    double tanPerMetre = 0; ///< tangent of the angle of view of an undistorted point, per length
    double warpScale = 0;
    std::array<double, 5> polynomial{1, 0, 0, 0, 0};
    std::array<double, 3> colourScale{1, 1, 1}; ///< of red, green, blue, beside the polynomial
};
