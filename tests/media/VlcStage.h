#pragma once

#include "OrbuiQuickVideoPlayerVlc.h"

#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QQuickWindow>
#include <QVector>

#include <functional>
#include <optional>

/// A window with a player in it, whose textures can be read. `main` has to share OpenGL contexts.
class VlcStage
{
public:
    /// `transfer` is the mode that the settings ask for.
    explicit VlcStage(int transfer = 0);
    ~VlcStage();

    void show();
    void playFile(const QString &path) const { player->openFile(QUrl::fromLocalFile(path)); }

    /// The pixels of the player's texture, upright and in their true colours; null without one.
    QImage texture();

    /// The number of the frame on a picture, whose cells may be too small to be read as they are.
    static std::optional<int> numberIn(const QImage &image);

    /// The number of the frame in the texture.
    std::optional<int> frameNumber();

    /// Waits for a frame that pleases.
    bool waitForFrame(const std::function<bool(int number)> &isWanted);
    bool waitForState(OrbuiQuickVideoPlayerVlc::VlcState wanted) const;
    OrbuiQuickVideoPlayerVlc::VlcState state() const;

    QQuickWindow window;
    std::unique_ptr<OrbuiQuickVideoPlayerVlc> player;
    QVector<int> states; ///< all that were reported
    QStringList errors;  ///< all that were reported

private:
    QOpenGLContext m_context;
    QOffscreenSurface m_surface;
};

/// Writes a film of one picture with ffmpeg, without loss, and 25 times a second; empty if the
/// encoder fails. `picture` has to be gray.
QString writeStill(const QString &path, const QImage &picture, int frames);
