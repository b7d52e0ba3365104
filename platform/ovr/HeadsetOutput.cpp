#include "HeadsetOutput.h"

#include "gl.h"

#include <QLoggingCategory>
#include <QOpenGLFunctions>

namespace {

Q_LOGGING_CATEGORY(lcOvr, "orbix.ovr")

} // namespace

bool HeadsetOutput::configure(const ovrGLConfig &configuration,
                              const std::array<DistortionMesh, 2> &eyes, bool vignette)
{
    m_renderer.reset();
    m_context = QOpenGLContext::currentContext();
    m_configuration = configuration;
    m_warned = false;
    if (configuration.API != ovrRenderAPI_OpenGL || m_context.isNull()
        || gl::currentSurface().drawable == 0 || configuration.RTSize.w <= 0
        || configuration.RTSize.h <= 0)
        return false;
    m_renderer = DistortionRenderer::create(eyes, vignette);
    if (m_renderer == nullptr)
        return false;
    applyVerticalSync();
    return true;
}

void HeadsetOutput::setVerticalSync(bool wanted)
{
    m_verticalSync = wanted;
    if (isCurrent())
        applyVerticalSync();
}

void HeadsetOutput::present(const ovrGLTexture textures[ovrEye_Count])
{
    if (!isCurrent()) {
        if (!m_warned)
            qCWarning(lcOvr,
                      "The headset's picture cannot be shown: what it is to be drawn into is "
                      "not current.");
        m_warned = true;
        return;
    }
    QOpenGLFunctions *functions = m_context->functions();
    functions->glBindFramebuffer(GL_FRAMEBUFFER, m_context->defaultFramebufferObject());
    functions->glViewport(0, 0, m_configuration.RTSize.w, m_configuration.RTSize.h);
    m_renderer->draw(textures);
    m_context->swapBuffers(m_context->surface());
}

bool HeadsetOutput::isCurrent() const
{
    return m_renderer != nullptr && !m_context.isNull()
        && m_context == QOpenGLContext::currentContext()
        && (m_configuration.DC == 0 || m_configuration.DC == gl::currentSurface().drawable);
}

void HeadsetOutput::applyVerticalSync() const
{
    if (!gl::setSwapInterval(m_verticalSync ? 1 : 0) && !m_verticalSync)
        qCWarning(lcOvr, "The window system lets no swap go without waiting for the screen.");
}
