#pragma once

#include "LensModel.h"
#include "ovr.h"

#include <array>
#include <string>

/// What OpenHMD tells of a headset, lengths in metres.
struct OpenHmdFigures
{
    using Projection = std::array<float, 16>; ///< column-major, for a view along -z

    std::string product;
    ovrSizei resolution;
    std::array<Projection, ovrEye_Count> projections{};
    float panelWidth = 0;
    float panelHeight = 0;
    float lensSeparation = 0;
    float lensHeight = 0;
    std::array<float, 4> distortion{}; ///< of the third to the zeroth power, 0 if there is none
    std::array<float, 3> aberration{}; ///< of red, green, blue, 0 if there is none
};

ovrHmdType headsetType(const std::string &product);

ovrFovPort fieldOfView(const OpenHmdFigures::Projection &projection);

LensModel lensModel(const OpenHmdFigures &figures);

/// Whether a picture can be made for a headset of these figures.
bool isUsable(const OpenHmdFigures &figures);
