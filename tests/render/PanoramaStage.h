#pragma once

#include "OrbGlobalObject.h"
#include "OrbSettingsManager.h"
#include "OrbShaderCodeBuilder.h"
#include "OrbTextureProvider.h"
#include "OrbVideoPlugin.h"
#include "WatchedView.h"

#include <QImage>
#include <QQuickWindow>

#include <atomic>

/// A window that is filled by one panorama item, which draws from a texture with the pixels of
/// `testPanorama`. Main thread.
class PanoramaStage
{
public:
    /// `pixels` is the size on the device, whatever the scale of the screen. The item is not linked
    /// yet: call `view.init`, or `start`, which shows the window too.
    explicit PanoramaStage(const QSize &pixels);
    ~PanoramaStage();

    /// Links the item, shows the window and waits for a first picture.
    bool start();

    /// Shows the window and waits until it is exposed.
    bool show();

    /// What the window shows once a paint is done that began after this call; null if none came.
    QImage picture();

    /// The same without waiting for a paint.
    QImage grab();

    bool rendersOnItsOwnThread() const { return m_ownThread; }
    bool rendersWithOpenGlEs() const { return m_openGlEs; }

    /// What the environment asks of this run.
    static bool wantsOwnThread();
    static bool wantsOpenGlEs();
    static qreal wantedScale();

private:
    void makeTexture();

    OrbSettingsManager m_settings;
    OrbVideoPlugin m_videoPlugin;
    std::atomic<bool> m_ownThread{false};
    std::atomic<bool> m_openGlEs{false};

public:
    OrbShaderCodeBuilder builder;
    OrbGlobalObject state;
    QQuickWindow window;
    OrbTextureProvider textureProvider;
    WatchedView view;
};
