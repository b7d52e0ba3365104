#pragma once

#include "FrameCounter.h"
#include "OrbUpdateManager.h"

#include <QQuickView>
#include <QRect>
#include <QSize>

class OrbOculus;
class OrbSettingsManager;

/// The one top-level window. It knows whether it fills the screen, what the graphics processor
/// offers and how many frames a second it shows, and it owns the update check. The scene sees it as
/// "orbView".
///
/// Threads: the measuring slots run on the render thread of the scene, by direct connections to the
/// window's frame signals, and touch nothing of the object but the frame counter, which is theirs
/// alone. What they find is posted to the main thread, which holds all other members.
class OrbQQuickView : public QQuickView
{
    Q_OBJECT
    Q_PROPERTY(bool fullScreen READ fullScreen NOTIFY fullScreenChanged)
    Q_PROPERTY(QSize maxTextureSize READ maxTextureSize NOTIFY maxTextureSizeChanged)
    Q_PROPERTY(bool demoMode READ demoMode NOTIFY demoModeChanged)
    Q_PROPERTY(int fps READ fps NOTIFY fpsChanged)
    Q_PROPERTY(QString gpuInfo READ gpuInfo NOTIFY gpuInfoChanged)

public:
    OrbQQuickView(OrbSettingsManager *settings, bool demoMode);

    bool fullScreen() const { return m_fullScreen; }
    bool demoMode() const { return m_demoMode; }
    int fps() const { return m_fps; }
    QString gpuInfo() const { return m_gpuInfo; }

    /// Half of the largest texture in both directions, so that a picture doubled by the device
    /// pixel ratio still fits; 0, 0 until the first frame.
    QSize maxTextureSize() const { return m_maxTextureSize; }

    /// The headset that this window serves; not owned.
    void setOculus(OrbOculus *oculus) { m_oculus = oculus; }
    OrbOculus *oculus() const { return m_oculus; }

    Q_INVOKABLE bool isNewVersionAvailable() const { return m_newVersionAvailable; }
    Q_INVOKABLE void checkUpdate();

    /// Asks the window system for full screen, or for a plain window again. Where no window manager
    /// answers, the window fills its screen by itself.
    Q_INVOKABLE void fullScreenMode(bool enabled);

    /// Name and version as users read them.
    Q_INVOKABLE QString title() const;

    /// Sets the window's title; `newSource` is what plays, or empty.
    Q_INVOKABLE void updateTitle(const QString &newSource);

    Q_INVOKABLE QString colorTeam() const;
    Q_INVOKABLE QString copyright() const;
    Q_INVOKABLE QString copyrightDates() const;
    Q_INVOKABLE QString newVersion() const;
    Q_INVOKABLE QString newVersionDate() const;
    Q_INVOKABLE QString newChangeLog() const; ///< rich text that loads nothing
    Q_INVOKABLE QString urlDownload() const;
    Q_INVOKABLE QString urlHistory() const;

signals:
    void signalNativeEvent(const QByteArray &eventType, void *message, long *result);
    void fullScreenChanged();
    void maxTextureSizeChanged();
    void demoModeChanged();
    void displayPopup(const QString &qmlFile);
    void displayMessage(const QString &message);
    void mouseMoved();
    void fpsChanged();
    void gpuInfoChanged();

public slots:
    void OnNewVersionAvailable();
    void OnAlreadyLatestVersion();
    void OnMiniDump();
    void onWindowStateChanged(Qt::WindowState state);
    void computeMaxTextureSize();
    void computeGpuInfo();
    void computeFps();

protected:
    bool nativeEvent(const QByteArray &eventType, void *message, long *result) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    OrbUpdateManager m_updateManager;
    bool m_fullScreen;
    QSize m_maxTextureSize{0, 0};
    bool m_demoMode;
    OrbOculus *m_oculus = nullptr;
    int m_fps = 0;
    FrameCounter m_frames;
    bool m_newVersionAvailable = false;
    QString m_gpuInfo;
    QRect m_geometryBefore; ///< of the window before it filled a screen that nothing manages
};
