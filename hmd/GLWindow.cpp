#include "GLWindow.h"

#include "CopyProgram.h"
#include "HeadPose.h"
#include "OrbGlobalObject.h"
#include "OrbOculus.h"
#include "OrbQQuickView.h"
#include "OrbShaderCodeBuilder.h"
#include "OrbTextureProvider.h"
#include "gl.h"

#include <QCloseEvent>
#include <QDateTime>
#include <QKeyEvent>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QQuickItem>
#include <QScreen>
#include <QWindow>

#include <cmath>

namespace {

constexpr unsigned kTracking = ovrTrackingCap_Orientation | ovrTrackingCap_MagYawCorrection;

/// So long the window system may take to give the window its size.
constexpr qint64 kPlacementMs = 3000;

/// The pause between looks while there is nothing to draw, when no swap sets the pace.
constexpr int kIdleMs = 15;

QVector2D vector(const QPointF &point)
{
    return QVector2D(point);
}

void clear(QOpenGLFunctions *gl)
{
    gl->glClearColor(0, 0, 0, 1);
    gl->glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

} // namespace

GLWindow::GLWindow(OrbOculus *oculus, QWidget *parent)
    : QGLWidget(parent)
    , m_oculus(oculus)
    , m_options(HeadsetOptions::fromSettings(oculus->state()))
{
    oculus->builder()->onTextChanged(this, &GLWindow::dirtyShader);
    setWindowTitle(oculus->view()->QWindow::title());
    setAutoBufferSwap(!m_options.useSdk); // the runtime swaps
    connect(&m_frames, &QTimer::timeout, this, &GLWindow::updateGL);
    m_frames.start(0);
    m_age.start();
}

GLWindow::~GLWindow()
{
    m_frames.stop();
    makeCurrent();
    m_frameBuffer.reset();
    m_program.reset();
    m_copyProgram.reset();
    doneCurrent();
}

void GLWindow::stop()
{
    m_frames.stop();
    hide();
}

void GLWindow::dirtyShader()
{
    m_shaderDirty = true;
}

void GLWindow::place()
{
    const ovrHmdDesc &hmd = *m_oculus->hmd();
    if (!(hmd.HmdCaps & ovrHmdCap_ExtendDesktop)) {
        takePanelSize();
        ovrHmd_AttachToWindow(&hmd, winId(), nullptr, nullptr);
        return;
    }
    const bool fullScreen = HeadsetOptions::fullScreenFromSettings(m_oculus->state());
    move(hmd.WindowsPos.x, 0);
    takePanelSize();
    if (fullScreen) {
        // A window system that leaves the first request on another screen obeys the second.
        for (const char *slot : {"showFullScreen", "showNormal", "showFullScreen"})
            QMetaObject::invokeMethod(this, slot, Qt::QueuedConnection);
    } else {
        // There may be another scale.
        connect(windowHandle(), &QWindow::screenChanged, this, &GLWindow::takePanelSize);
    }
}

void GLWindow::takePanelSize()
{
    const ovrSizei panel = m_oculus->hmd()->Resolution;
    resize((QSizeF(panel.w, panel.h) / devicePixelRatioF()).toSize());
}

/// A window's size is a whole number of units of the desktop, whose scale may be any.
bool GLWindow::isPanelSize(int w, int h) const
{
    const ovrSizei panel = m_oculus->hmd()->Resolution;
    const qreal unit = devicePixelRatioF();
    return panel.w > 0 && panel.h > 0 && std::abs(w - panel.w) < unit
        && std::abs(h - panel.h) < unit;
}

void GLWindow::initializeGL()
{
    qglClearColor(Qt::black);
}

void GLWindow::resizeGL(int width, int height)
{
    const ovrHmdDesc &hmd = *m_oculus->hmd();
    QOpenGLContext *context = QOpenGLContext::currentContext();
    if (!isPanelSize(width, height) || !context)
        return;
    const int w = hmd.Resolution.w;
    const int h = hmd.Resolution.h;
    m_viewport = Viewport::ofTarget(QSize(w / 2, h));
    m_frameBuffer.reset(); // before the new one, for its memory
    m_frameBuffer = std::make_unique<QOpenGLFramebufferObject>(w, h, GL_TEXTURE_2D);
    ovrHmd_ConfigureTracking(&hmd, kTracking | (hmd.TrackingCaps & ovrTrackingCap_Position), 0);
    if (m_options.useSdk) {
        configureSdk({w, h});
    } else {
        for (const ovrEyeType eye : {ovrEye_Left, ovrEye_Right})
            m_eyes[eye] = ovrHmd_GetRenderDesc(&hmd, eye, hmd.DefaultEyeFov[eye]);
    }
    m_oculus->configureEyes(m_eyes);
    context->functions()->glViewport(0, 0, w, h);
}

void GLWindow::configureSdk(const QSize &pixels)
{
    const ovrHmdDesc &hmd = *m_oculus->hmd();
    ovrGLConfig configuration;
    configuration.API = ovrRenderAPI_OpenGL;
    configuration.RTSize = {pixels.width(), pixels.height()};
    configuration.Window = winId();
    if (!QOpenGLContext::currentContext()->isOpenGLES())
        configuration.DC = gl::currentSurface().drawable;
    ovrHmd_SetEnabledCaps(&hmd, m_options.enabledCaps());
    ovrHmd_ConfigureRendering(&hmd, &configuration, m_options.distortionCaps(hmd.DistortionCaps),
                              hmd.DefaultEyeFov, m_eyes);
    for (const ovrEyeType eye : {ovrEye_Left, ovrEye_Right}) {
        const int left = eye == ovrEye_Left ? 0 : (pixels.width() + 1) / 2;
        m_eyeTextures[eye].API = ovrRenderAPI_OpenGL;
        m_eyeTextures[eye].TextureSize = {pixels.width(), pixels.height()};
        m_eyeTextures[eye].RenderViewport = {{left, 0}, {pixels.width() / 2, pixels.height()}};
        m_eyeTextures[eye].TexId = m_frameBuffer->texture();
    }
}

void GLWindow::paintGL()
{
    QOpenGLContext *context = QOpenGLContext::currentContext();
    if (!context || !m_frames.isActive())
        return;
    const int pauseMs = drawFrame(context->functions()) ? 0 : kIdleMs;
    if (m_frames.interval() != pauseMs)
        m_frames.setInterval(pauseMs);
}

/// False if there was nothing to draw, or nothing to draw it with.
bool GLWindow::drawFrame(QOpenGLFunctions *gl)
{
    const int texture = m_oculus->textureProvider()->shownTextureId();
    if (texture <= 0) {
        clear(gl);
        swapBuffers();
        return false;
    }
    if (!m_frameBuffer) {
        tellOfSize();
        return false;
    }
    if (m_shaderDirty)
        rebuildShader();
    if (!m_program)
        return false;

    const ovrHmdDesc &hmd = *m_oculus->hmd();
    const ovrFrameTiming timing = m_options.useSdk ? ovrHmd_BeginFrame(&hmd, 0)
                                                   : ovrHmd_BeginFrameTiming(&hmd, 0);
    if (m_options.useSdk) {
        ovrHSWDisplayState notice;
        ovrHmd_GetHSWDisplayState(&hmd, &notice);
        if (notice.Displayed)
            ovrHmd_DismissHSWDisplay(&hmd);
    }
    m_headPose[ovrEye_Left] = m_headPose[ovrEye_Right] = currentPose(timing);
    takePose(m_headPose[ovrEye_Left].Orientation);

    m_frameBuffer->bind();
    m_program->drawEyes(PanoramaView::of(*m_oculus->state(), m_viewport), currentEyes(),
                        static_cast<GLuint>(texture));
    m_frameBuffer->release();

    if (m_options.useSdk) {
        clear(gl);
        ovrHmd_EndFrame(&hmd, m_headPose, m_eyeTextures);
    } else {
        showByItself();
        ovrHmd_EndFrameTiming(&hmd);
    }
    m_oculus->frameShown(QDateTime::currentMSecsSinceEpoch());
    return true;
}

void GLWindow::rebuildShader()
{
    m_shaderDirty = false;
    m_program.reset();
    m_program = PanoramaProgram::create(m_oculus->builder()->build(true));
}

ovrPosef GLWindow::currentPose(const ovrFrameTiming &timing) const
{
    const ovrHmd hmd = m_oculus->hmd();
    if (!m_options.usePrediction)
        return ovrHmd_GetTrackingState(hmd, 0.0).HeadPose.ThePose;
    if (m_options.useSdk)
        return ovrHmd_GetHmdPosePerEye(hmd, ovrEye_Left);
    return ovrHmd_GetTrackingState(hmd, timing.ScanoutMidpointSeconds).HeadPose.ThePose;
}

/// Turns the view as the head is turned. Where the head looks cannot be said the view stays.
void GLWindow::takePose(const ovrQuatf &orientation)
{
    tellOfPose(orientation);
    const auto unit = HeadPose::unit(orientation);
    if (!unit)
        return;
    const Orientation::Angles head = HeadPose::angles(*unit);
    OrbGlobalObject *state = m_oculus->state();
    state->setYaw(-Orientation::wrapAngle(head.yaw + m_oculus->shiftYaw()), false);
    state->setPitch(-head.pitch, false);
    state->setRoll(head.roll, false);
    state->rebuildRotationMatrix();
}

void GLWindow::tellOfPose(const ovrQuatf &orientation)
{
    constexpr double kMsPerSecond = 1000;
    switch (m_poseWatch.seen(orientation, double(m_age.elapsed()) / kMsPerSecond)) {
    case PoseWatch::News::None:
        return;
    case PoseWatch::News::Invalid:
        return m_oculus->report(tr("The headset gives no orientation.\n"));
    case PoseWatch::News::NotUnit:
        return m_oculus->report(tr("The headset gives orientations of a wrong length.\n"));
    case PoseWatch::News::Still:
        return m_oculus->report(tr("The headset does not move. Is it still plugged in?\n"));
    case PoseWatch::News::Well:
        return m_oculus->report(tr("The headset gives its orientation again.\n"));
    }
}

void GLWindow::tellOfSize()
{
    if (m_toldOfSize || m_age.elapsed() < kPlacementMs)
        return;
    m_toldOfSize = true;
    const ovrSizei wanted = m_oculus->hmd()->Resolution;
    const QSize size = (QSizeF(this->size()) * devicePixelRatioF()).toSize();
    m_oculus->report(tr("The headset's window has %1 * %2 pixels in place of %3 * %4 "
                        "and stays dark.\n")
                         .arg(size.width())
                         .arg(size.height())
                         .arg(wanted.w)
                         .arg(wanted.h));
}

EyesView GLWindow::currentEyes() const
{
    EyesView eyes;
    eyes.matViewInverseLeft = m_oculus->getRotationMatrixLeft();
    eyes.matViewInverseRight = m_oculus->getRotationMatrixRight();
    eyes.lensCenterLeft = vector(m_oculus->lensCenterLeft());
    eyes.lensCenterRight = vector(m_oculus->lensCenterRight());
    eyes.screenCenterLeft = vector(m_oculus->screenCenterLeft());
    eyes.screenCenterRight = vector(m_oculus->screenCenterRight());
    eyes.scale = vector(m_oculus->scale());
    eyes.scaleIn = vector(m_oculus->scaleIn());
    eyes.hmdWarpParam = m_oculus->hmdWarpParam();
    eyes.scaleCorrector = m_oculus->scaleCorrector();
    return eyes;
}

void GLWindow::showByItself()
{
    QOpenGLFunctions *gl = QOpenGLContext::currentContext()->functions();
    gl->glBindTexture(GL_TEXTURE_2D, m_frameBuffer->texture());
    clear(gl);
    if (!m_copyProgram)
        m_copyProgram = CopyProgram::create();
    if (m_copyProgram)
        m_copyProgram->draw(m_frameBuffer->size());
}

void GLWindow::keyPressEvent(QKeyEvent *event)
{
    const QVariantMap pressed{{QStringLiteral("type"), event->type()},
                              {QStringLiteral("key"), event->key()},
                              {QStringLiteral("modifiers"), int(event->modifiers())}};
    QMetaObject::invokeMethod(m_oculus->view()->rootObject(), "onKeyPressed",
                              Q_ARG(QVariant, pressed));
}

void GLWindow::closeEvent(QCloseEvent *event)
{
    event->accept();
    m_oculus->builder()->setOculusMode(false);
    m_oculus->setActivated(false);
}
