#include "DeviceCheck.h"

#include <algorithm>
#include <cmath>

namespace {

bool isComplete(const LensModel &lens)
{
    const auto isFinite = [](double value) { return std::isfinite(value); };
    const auto isLength = [](double value) { return std::isfinite(value) && value > 0; };
    return isLength(lens.panelWidth) && isLength(lens.panelHeight) && isLength(lens.tanPerMetre)
        && isLength(lens.warpScale) && isFinite(lens.lensSeparation) && isFinite(lens.lensHeight)
        && std::all_of(lens.polynomial.begin(), lens.polynomial.end(), isFinite)
        && std::all_of(lens.colourScale.begin(), lens.colourScale.end(), isFinite);
}

} // namespace

bool DeviceCheck::isUsable(const ovrFovPort &fov)
{
    const auto isTangent = [](float tan) { return tan > 0.01F && tan < 100; }; // not for NaN either
    return isTangent(fov.UpTan) && isTangent(fov.DownTan) && isTangent(fov.LeftTan)
        && isTangent(fov.RightTan);
}

std::string DeviceCheck::complaint(const HeadsetDevice &device)
{
    const ovrHmdDesc description = device.description();
    const ovrSizei size = description.Resolution;
    if (size.w < 2 || size.w > 16384 || size.h < 1 || size.h > 16384)
        return "The headset gives an impossible size of its panel, " + std::to_string(size.w)
            + " by " + std::to_string(size.h) + " pixels.";
    if (!isUsable(description.DefaultEyeFov[ovrEye_Left])
        || !isUsable(description.DefaultEyeFov[ovrEye_Right]))
        return "The headset gives an impossible field of view.";
    if (!isComplete(device.lens()))
        return "The headset gives an impossible description of its lenses.";
    return {};
}
