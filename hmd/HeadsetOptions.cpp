#include "HeadsetOptions.h"

#include "OrbGlobalObject.h"
#include "ovr.h"

namespace {

bool setting(OrbGlobalObject *state, const char *name, bool fallback)
{
    const QString key = QStringLiteral("application/oculus/") + QLatin1String(name);
    if (!state->containsSetting(key))
        state->setSetting(key, fallback);
    return state->getSetting(key, fallback).toBool();
}

} // namespace

HeadsetOptions HeadsetOptions::fromSettings(OrbGlobalObject *state)
{
    HeadsetOptions options;
    options.useSdk = setting(state, "useSDK", true);
    options.dynamicPrediction = setting(state, "dynamicPrediction", true);
    options.usePrediction = setting(state, "usePrediction", true);
    options.timewarpNoJit = setting(state, "timewarpNoJit", true);
    options.vsync = setting(state, "vsync", true);
    return options;
}

bool HeadsetOptions::fullScreenFromSettings(OrbGlobalObject *state)
{
    return setting(state, "fullscreen", false);
}

unsigned HeadsetOptions::enabledCaps() const
{
    unsigned caps = ovrHmdCap_LowPersistence | ovrHmdCap_NoMirrorToWindow;
    if (!vsync)
        caps |= ovrHmdCap_NoVSync;
    if (dynamicPrediction)
        caps |= ovrHmdCap_DynamicPrediction;
    return caps;
}

unsigned HeadsetOptions::distortionCaps(unsigned offered) const
{
    unsigned caps = ovrDistortionCap_Chromatic | ovrDistortionCap_Vignette
        | ovrDistortionCap_TimeWarp;
    caps |= offered & (ovrDistortionCap_Overdrive | ovrDistortionCap_HqDistortion);
    if (timewarpNoJit)
        caps |= ovrDistortionCap_ProfileNoTimewarpSpinWaits;
    return caps;
}
