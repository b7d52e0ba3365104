#include "OpenHmdFigures.h"

#include <algorithm>
#include <cmath>

ovrHmdType headsetType(const std::string &product)
{
    const auto contains = [&](const char *name) { return product.find(name) != std::string::npos; };
    if (contains("DK1"))
        return ovrHmd_DK1;
    return contains("DK2") ? ovrHmd_DK2 : ovrHmd_Other;
}

ovrFovPort fieldOfView(const OpenHmdFigures::Projection &projection)
{
    const float across = projection[8];
    const float along = projection[9];
    return {(1 + along) / projection[5], (1 - along) / projection[5], (1 - across) / projection[0],
            (1 + across) / projection[0]};
}

LensModel lensModel(const OpenHmdFigures &figures)
{
    LensModel lens;
    lens.panelWidth = figures.panelWidth;
    lens.panelHeight = figures.panelHeight;
    lens.lensSeparation = figures.lensSeparation;
    lens.lensHeight = figures.lensHeight;
    const ovrFovPort fov = fieldOfView(figures.projections[ovrEye_Left]);
    lens.tanPerMetre = (fov.UpTan + fov.DownTan) / lens.panelHeight;
    lens.warpScale = std::max(lens.panelWidth - lens.lensSeparation, lens.lensSeparation) / 2;
    const auto isSet = [](float value) { return value != 0; };
    const auto &k = figures.distortion;
    if (std::any_of(k.begin(), k.end() - 1, isSet))
        lens.polynomial = {1 - (k[0] + k[1] + k[2]), k[2], k[1], k[0], 0};
    const auto &colours = figures.aberration;
    if (std::all_of(colours.begin(), colours.end(), isSet))
        std::copy(colours.begin(), colours.end(), lens.colourScale.begin());
    return lens;
}

bool isUsable(const OpenHmdFigures &figures)
{
    const LensModel lens = lensModel(figures);
    const auto isLength = [](double value) { return std::isfinite(value) && value > 0; };
    const auto isNumber = [](double value) { return std::isfinite(value); };
    const ovrSizei &size = figures.resolution;
    return size.w > 0 && size.h > 0 && isLength(lens.panelWidth) && isLength(lens.panelHeight)
        && isLength(lens.lensSeparation) && isLength(lens.lensHeight) && isLength(lens.tanPerMetre)
        && isLength(lens.warpScale)
        && std::all_of(lens.polynomial.begin(), lens.polynomial.end(), isNumber)
        && std::all_of(lens.colourScale.begin(), lens.colourScale.end(), isLength);
}
