#pragma once

#include "LensModel.h"

#include <algorithm>
#include <array>
#include <cmath>

/// A headset's lenses and what its eyes see, and where a point of its panel comes from, written
/// apart from the runtime's.
struct TestLens
{
    LensModel model;
    std::array<ovrFovPort, 2> fov;

    static TestLens small() // a screen of 7 inches
    {
        const double q = 0.04313 / 0.03744;
        const double outer = 1 + 0.22 * q * q + 0.24 * q * q * q * q;
        return {{0.14976,
                 0.0936,
                 0.0635,
                 0.0468,
                 1 / 0.041,
                 0.04313,
                 {1 / outer, 0, 0.22 * q * q / outer, 0, 0.24 * q * q * q * q / outer},
                 {0.996, 1, 1.014}},
                {{{1.1415F, 1.1415F, 1.0519F, 0.7744F}, {1.1415F, 1.1415F, 0.7744F, 1.0519F}}}};
    }

    static TestLens wide() // a screen of 5.7 inches
    {
        const double width = 0.12576;
        const double height = 0.07074;
        const double separation = (0.749006 - 0.250994) * width;
        return {{width,
                 height,
                 separation,
                 height / 2,
                 1.32928634 / (height / 2),
                 std::max(separation / 2, (width - separation) / 2),
                 {0.795, 0.103, -0.145, 0.247, 0},
                 {0.985, 1, 1.015}},
                {{{1.32928634F, 1.32928634F, 1.05865765F, 1.09236801F},
                  {1.32928634F, 1.32928634F, 1.09236801F, 1.05865765F}}}};
    }

    /// In the eye's picture, 0 to 1 from the lower left, for a point of the panel, 0 to 1 too.
    std::array<double, 2> seenAt(int eye, double across, double up, int colour) const
    {
        const double middle = (model.panelWidth + (eye == 0 ? -1 : 1) * model.lensSeparation) / 2;
        const double x = across * model.panelWidth - middle;
        const double y = up * model.panelHeight - model.lensHeight;
        const double r = std::sqrt(x * x + y * y) / model.warpScale;
        const auto &k = model.polynomial;
        const double scale = (k[0] + k[1] * r + k[2] * r * r + k[3] * r * r * r
                              + k[4] * r * r * r * r)
            * model.colourScale.at(std::size_t(colour)) * model.tanPerMetre;
        const ovrFovPort &tan = fov.at(std::size_t(eye));
        return {(scale * x + double(tan.LeftTan)) / (double(tan.LeftTan) + double(tan.RightTan)),
                (scale * y + double(tan.DownTan)) / (double(tan.DownTan) + double(tan.UpTan))};
    }
};
