#pragma once

#include "DistortionRenderer.h"

#include <QOpenGLContext>
#include <QPointer>

#include <memory>

/// The way of the eyes' pictures to the panel. Used on the thread of the context that was current
/// in `configure`; for its end see DistortionRenderer.
class HeadsetOutput
{
public:
    /// Takes the current context, in place of one before. False if it cannot draw; then there is no
    /// way, until the next call.
    bool configure(const ovrGLConfig &configuration, const std::array<DistortionMesh, 2> &eyes,
                   bool vignette);

    void close() { m_renderer.reset(); }

    /// Whether a swap waits for the screen, now and after `configure`.
    void setVerticalSync(bool wanted);

    /// Draws into the window of the current context and swaps; leaves the framebuffer and the
    /// viewport at the window's. Without the configured context and drawable, a warning, once.
    void present(const ovrGLTexture textures[ovrEye_Count]);

private:
    bool isCurrent() const;
    void applyVerticalSync() const;

    std::unique_ptr<DistortionRenderer> m_renderer;
    QPointer<QOpenGLContext> m_context;
    ovrGLConfig m_configuration;
    bool m_verticalSync = true;
    bool m_warned = false;
};
