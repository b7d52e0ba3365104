#pragma once

#include "LensModel.h"
#include "ovr.h"

/// What stands in the data sheets of the headsets that are simulated.
struct HeadsetModel
{
    ovrHmdDesc description;
    LensModel lens;
};

HeadsetModel developmentKit1();
HeadsetModel developmentKit2();

/// What the runtime itself can do with any headset.
constexpr unsigned kRuntimeTrackingCaps = ovrTrackingCap_Orientation
    | ovrTrackingCap_MagYawCorrection;
constexpr unsigned kRuntimeDistortionCaps = ovrDistortionCap_Chromatic | ovrDistortionCap_TimeWarp
    | ovrDistortionCap_Vignette;
constexpr unsigned kRuntimeHmdCaps = ovrHmdCap_DisplayOff | ovrHmdCap_LowPersistence
    | ovrHmdCap_DynamicPrediction | ovrHmdCap_NoVSync | ovrHmdCap_NoMirrorToWindow;
