#pragma once

#include "HeadsetDevice.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

/// A headset as a test describes it, and what it was asked for.
struct TestHeadset
{
    explicit TestHeadset(ovrHmdType type = ovrHmd_DK2)
    {
        const double width = type == ovrHmd_DK1 ? 0.14976 : 0.12576;
        const double height = type == ovrHmd_DK1 ? 0.0936 : 0.07074;
        const double apart = (0.749006 - 0.250994) * width;
        const double q2 = std::pow(0.04313 / 0.03744, 2);
        const double outer = 1 + 0.22 * q2 + 0.24 * q2 * q2;
        lens = {width, height, apart, height / 2, 1.32928634 / (height / 2)};
        lens.warpScale = std::max(apart / 2, (width - apart) / 2);
        lens.polynomial = {0.795, 0.103, -0.145, 0.247, 0};
        lens.colourScale = {0.985, 1, 1.015};
        ovrFovPort left{1.32928634F, 1.32928634F, 1.05865765F, 1.09236801F};
        if (type == ovrHmd_DK1) {
            lens.lensSeparation = 0.0635;
            lens.tanPerMetre = 1 / 0.041;
            lens.warpScale = 0.04313;
            lens.polynomial = {1 / outer, 0, 0.22 * q2 / outer, 0, 0.24 * q2 * q2 / outer};
            left = {1.1415F, 1.1415F, 1.0519F, 0.7744F};
        }
        desc.Type = type;
        desc.TrackingCaps = ovrTrackingCap_Orientation;
        desc.Resolution = {1921, 1080};
        desc.DefaultEyeFov[0] = left;
        desc.DefaultEyeFov[1] = {left.UpTan, left.DownTan, left.RightTan, left.LeftTan};
    }
    TestHeadset(const TestHeadset &) = delete;
    TestHeadset &operator=(const TestHeadset &) = delete;

    /// Its device goes with it.
    ~TestHeadset() { ovr_Shutdown(); }

    /// In the eye's picture, 0 to 1 from the lower left, for a point of the panel, 0 to 1 too.
    std::array<double, 2> seenAt(int eye, double across, double up, std::size_t colour) const
    {
        const double middle = (lens.panelWidth + (eye == 0 ? -1 : 1) * lens.lensSeparation) / 2;
        const double x = across * lens.panelWidth - middle;
        const double y = up * lens.panelHeight - lens.lensHeight;
        const double r = std::sqrt(x * x + y * y) / lens.warpScale;
        const auto &k = lens.polynomial;
        const double tan = lens.tanPerMetre * lens.colourScale.at(colour)
            * (k[0] + k[1] * r + k[2] * r * r + k[3] * r * r * r + k[4] * r * r * r * r);
        const ovrFovPort &fov = desc.DefaultEyeFov[eye];
        const double left = double(fov.LeftTan);
        const double down = double(fov.DownTan);
        return {(tan * x + left) / (left + double(fov.RightTan)),
                (tan * y + down) / (down + double(fov.UpTan))};
    }

    ovrHmdDesc desc;
    LensModel lens;
    ovrPosef sample{{0, 0.6F, 0, 0.8F}, {}};
    bool showsNotice = true;
    std::vector<double> aheadSeconds; ///< of the poses that were asked for
    int closed = 0;
};

/// The device of a test's headset, which outlives it.
struct TestDevice : HeadsetDevice
{
    explicit TestDevice(TestHeadset *its)
        : headset(its)
    {}
    ~TestDevice() override { ++headset->closed; }
    ovrHmdDesc description() const override { return headset->desc; }
    LensModel lens() const override { return headset->lens; }
    ovrPosef pose(double ahead) override
    {
        headset->aheadSeconds.push_back(ahead);
        return headset->sample;
    }
    bool showsNotice() const override { return headset->showsNotice; }
    void dismissNotice() override { headset->showsNotice = false; }

    TestHeadset *headset;
};

inline ovrHmd create(TestHeadset *headset)
{
    ovr_SetDevice([headset](std::string *) { return std::make_unique<TestDevice>(headset); });
    return ovrHmd_Create(0);
}
