#pragma once

#include "GLWindow.h"
#include "OrbGlobalObject.h"
#include "OrbOculus.h"
#include "OrbQQuickView.h"
#include "OrbSettingsManager.h"
#include "OrbShaderCodeBuilder.h"
#include "OrbTextureProvider.h"
#include "OrbVideoPlugin.h"

#include <memory>

/// A window with a scene, the panorama `testPanorama` in the texture that it draws from, and what
/// belongs to a headset, on whatever runtime the test is linked with. Main thread.
class HeadsetStage
{
public:
    /// The settings of a headset are these alone. `present` says whether there will be one, for the
    /// setting that has to agree.
    explicit HeadsetStage(const QVariantMap &settings = {}, bool present = true);
    ~HeadsetStage();

    /// Shows the window and waits for the end of the search.
    bool start() const;

    /// The headset's window, or null.
    static GLWindow *headsetWindow();

private:
    std::unique_ptr<OrbSettingsManager> m_settings;
    OrbVideoPlugin m_videoPlugin;

public:
    OrbShaderCodeBuilder builder;
    OrbGlobalObject state;
    std::unique_ptr<OrbQQuickView> view;
    OrbTextureProvider textureProvider;
    OrbOculus oculus;
    bool panorama = true; ///< whether there is a texture; before `start`
};
