#pragma once

class OrbGlobalObject;

/// What the user may choose about a headset's picture, from the settings "application/oculus/…".
/// Only `useSdk` and `usePrediction` have an effect without the runtime's own way of presenting.
struct HeadsetOptions
{
    bool useSdk = true; ///< the runtime distorts and presents; else the window shows the frame
    bool dynamicPrediction = true;
    bool usePrediction = true;
    bool timewarpNoJit = true;
    bool vsync = true;

    /// A missing key is written with its default, so that it stands in the file for the user.
    static HeadsetOptions fromSettings(OrbGlobalObject *state);

    /// Whether a headset that is a screen of the desktop is filled by a window without a frame.
    static bool fullScreenFromSettings(OrbGlobalObject *state);

    /// Bits of ovrHmdCaps to be enabled.
    unsigned enabledCaps() const;

    /// Bits of ovrDistortionCaps, for a headset that offers these.
    unsigned distortionCaps(unsigned offered) const;
};
