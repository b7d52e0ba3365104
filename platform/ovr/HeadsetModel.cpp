#include "HeadsetModel.h"

#include <algorithm>

namespace {

constexpr std::array<double, 3> kColourScale{0.985, 1, 1.015};

ovrFovPort port(double up, double down, double left, double right)
{
    return {static_cast<float>(up), static_cast<float>(down), static_cast<float>(left),
            static_cast<float>(right)};
}

HeadsetModel model(ovrHmdType type, const char *name, ovrSizei resolution)
{
    HeadsetModel headset;
    headset.description.Type = type;
    headset.description.ProductName = name;
    headset.description.Resolution = resolution;
    headset.description.HmdCaps = kRuntimeHmdCaps;
    headset.description.TrackingCaps = kRuntimeTrackingCaps;
    headset.description.DistortionCaps = kRuntimeDistortionCaps;
    headset.lens.colourScale = kColourScale;
    return headset;
}

} // namespace

HeadsetModel developmentKit1()
{
    HeadsetModel headset = model(ovrHmd_DK1, "Oculus Rift DK1", {1280, 800});
    LensModel &lens = headset.lens;
    lens.panelWidth = 0.14976;
    lens.panelHeight = 0.0936;
    lens.lensSeparation = 0.0635;
    lens.lensHeight = lens.panelHeight / 2;
    const double eyeToPanel = 0.041;
    lens.tanPerMetre = 1 / eyeToPanel;
    const double inner = lens.lensSeparation / 2;
    const double outer = lens.panelWidth / 2 - inner;
    const double half = lens.panelHeight / 2 / eyeToPanel;
    headset.description.DefaultEyeFov[ovrEye_Left] = port(half, half, outer / eyeToPanel,
                                                          inner / eyeToPanel);
    headset.description.DefaultEyeFov[ovrEye_Right] = port(half, half, inner / eyeToPanel,
                                                           outer / eyeToPanel);

    // Published as 1 + 0.22 r² + 0.24 r⁴ with r in quarters of the panel's width; here in distances
    // to the outer edge, which stays where it is.
    lens.warpScale = outer;
    const double square = outer * outer * 16 / (lens.panelWidth * lens.panelWidth);
    const double k2 = 0.22 * square;
    const double k4 = 0.24 * square * square;
    const double edge = 1 + k2 + k4;
    lens.polynomial = {1 / edge, 0, k2 / edge, 0, k4 / edge};
    return headset;
}

HeadsetModel developmentKit2()
{
    HeadsetModel headset = model(ovrHmd_DK2, "Oculus Rift DK2", {1920, 1080});
    LensModel &lens = headset.lens;
    lens.panelWidth = 0.12576;
    lens.panelHeight = 0.07074;
    lens.lensSeparation = (0.749006 - 0.250994) * lens.panelWidth;
    lens.lensHeight = lens.panelHeight / 2;
    const double half = 1.32928634;
    const double outer = 1.05865765;
    const double inner = 1.09236801;
    lens.tanPerMetre = half / (lens.panelHeight / 2);
    headset.description.DefaultEyeFov[ovrEye_Left] = port(half, half, outer, inner);
    headset.description.DefaultEyeFov[ovrEye_Right] = port(half, half, inner, outer);

    // The figures of OpenHMD's driver for it.
    lens.warpScale = std::max(lens.panelWidth - lens.lensSeparation, lens.lensSeparation) / 2;
    lens.polynomial = {0.795, 0.103, -0.145, 0.247, 0};
    return headset;
}
