#include "OrbOculus.h"

#include "GLWindow.h"
#include "OrbGlobalObject.h"
#include "OrbQQuickView.h"
#include "OrbShaderCodeBuilder.h"
#include "Orientation.h"
#include "WorkerThread.h"

#include <QGLContext>
#include <QLoggingCategory>
#include <QOpenGLContext>

#include <cmath>
#include <cstdio>

namespace {

Q_LOGGING_CATEGORY(lcHmd, "orbix.hmd")

constexpr float kNear = 0.01F;
constexpr float kFar = 10000;
constexpr float kFovDeg = 91;
constexpr float kFovDk1Deg = 88.2986984F; ///< what its own warp is calibrated for
constexpr double kDegPerRad = 57.2957795;
constexpr double kLeastLensChange = 1e-12;

/// The inverse of the projection of an eye with this view.
QMatrix4x4 inverseProjection(const ovrFovPort &fov)
{
    const ovrMatrix4f projection = ovrMatrix4f_Projection(fov, kNear, kFar, true);
    return QMatrix4x4(&projection.M[0][0]).inverted();
}

/// The whole angle of view between two tangents, in degrees, each taken for a half of a symmetric
/// view.
float meanAngleDeg(float tan, float oppositeTan)
{
    return static_cast<float>((2 * std::atan(double(tan)) + 2 * std::atan(double(oppositeTan)))
                              * 0.5 * kDegPerRad);
}

void print(const char *name, const QMatrix4x4 &matrix)
{
    std::printf("%s\n", name);
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column)
            std::printf("[%g] ", double(matrix(row, column)));
        std::printf("\n");
    }
    std::fflush(stdout);
}

} // namespace

OrbOculus::OrbOculus(OrbQQuickView *view, OrbGlobalObject *state, OrbShaderCodeBuilder *builder,
                     OrbTextureProvider *textureProvider, QObject *parent)
    : QObject(parent)
    , m_logMessage(tr("Scan in progress...\n"))
    , m_view(view)
    , m_state(state)
    , m_builder(builder)
    , m_textureProvider(textureProvider)
    , m_headsetMayShow(
          state->getSetting(QStringLiteral("application/oculusmode"), false).toBool()
          || state->getSetting(QStringLiteral("application/forceopengl"), false).toBool())
{
    ovr_NoteScreens();
    connect(view, &QQuickWindow::afterRendering, this, &OrbOculus::initOvr, Qt::DirectConnection);
}

OrbOculus::~OrbOculus()
{
    if (m_search)
        m_search->wait();
    delete m_window; // its context ends before what it shares with, and before the headset
    finishOvr();
}

void OrbOculus::initOvr()
{
    disconnect(m_view, &QQuickWindow::afterRendering, this, &OrbOculus::initOvr);
    QOpenGLContext *scene = QOpenGLContext::currentContext();
    if (!scene)
        return; // without OpenGL the program ends with a message
    if (m_headsetMayShow) {
        m_shareContext = std::make_unique<QOpenGLContext>();
        m_shareContext->setFormat(scene->format());
        m_shareContext->setShareContext(scene);
        m_shareContext->create();
        m_shareContext->moveToThread(thread());
    }
    ovr_Initialize();
    m_search = std::make_unique<WorkerThread>(this);
    m_search->moveToThread(thread());
    connect(m_search.get(), &QThread::finished, this, &OrbOculus::checkDevice);
    m_search->start(QThread::InheritPriority);
}

void OrbOculus::initDevice()
{
    m_hmd = ovrHmd_Create(0);
}

void OrbOculus::finishOvr()
{
    ovrHmd_Destroy(m_hmd);
    ovr_Shutdown();
}

void OrbOculus::checkDevice()
{
    m_logMessage.clear();
    if (m_hmd) {
        setAvailable(true);
        m_logMessage += tr("Oculus Rift detected.\n")
            + tr("Product name : %1 \n").arg(QString::fromUtf8(m_hmd->ProductName))
            + tr("Rift resolution : %1 * %2 \n").arg(m_hmd->Resolution.w).arg(m_hmd->Resolution.h);
    } else {
        m_logMessage += tr("Oculus Rift not detected.\n");
        if (const char *error = ovrHmd_GetLastError())
            report(QString::fromUtf8(error) + QLatin1Char('\n'));
    }

    const bool mayGoOn = m_state->checkOculusMode(m_available);
    const QString version = QString::fromLatin1(ovr_GetVersionString());
    if (!m_available || !mayGoOn) {
        m_logMessage += tr("Oculus Rift initialization failed.\n")
            + tr("Ensure to have installed Oculus Runtime %1.\n").arg(version);
        return;
    }
    m_logMessage += tr("Oculus Rift initialization succeeded.\n")
        + tr("Built with Oculus SDK %1.\n").arg(version);
    setActivated(true);
    m_builder->setOculusMode(true);
}

void OrbOculus::initWindow()
{
    if (m_window || !m_hmd || !m_shareContext)
        return;
    m_window = new GLWindow(this);
    m_window->setContext(new QGLContext(m_window->format()),
                         QGLContext::fromOpenGLContext(m_shareContext.get()));
    if (!m_window->isSharing())
        report(tr("The headset's window cannot share the picture of the main window.\n"));
    m_window->show();
    m_window->place();
}

void OrbOculus::destroyWindow()
{
    if (!m_window)
        return;
    m_window->stop();
    m_window->deleteLater();
    m_window.clear();
}

void OrbOculus::setActivated(bool activated)
{
    if (!m_available || activated == m_activated)
        return;
    m_activated = activated;
    if (activated) {
        initWindow();
    } else {
        destroyWindow();
        m_state->setRoll(0, true);
    }
    emit activatedChanged();
}

void OrbOculus::setAvailable(bool available)
{
    if (available == m_available)
        return;
    if (!available && m_activated) {
        m_builder->setOculusMode(false);
        setActivated(false);
    }
    m_available = available;
    emit availableChanged();
}

void OrbOculus::setShiftYaw(float shiftYaw)
{
    if (!std::isfinite(shiftYaw))
        return;
    const float wrapped = Orientation::wrapAngle(shiftYaw);
    if (wrapped == m_shiftYaw)
        return;
    m_shiftYaw = wrapped;
    emit shiftYawChanged();
}

void OrbOculus::setLogMessage(const QString &logMessage)
{
    if (logMessage == m_logMessage)
        return;
    m_logMessage = logMessage;
    emit logMessageChanged();
}

void OrbOculus::report(const QString &line)
{
    qCWarning(lcHmd, "%s", qUtf8Printable(line.trimmed()));
    setLogMessage(m_logMessage + line);
}

void OrbOculus::setLens(QPointF &member, const QPointF &value, void (OrbOculus::*changed)())
{
    const QPointF by = value - member;
    if (!(std::abs(by.x()) > kLeastLensChange || std::abs(by.y()) > kLeastLensChange))
        return;
    member = value;
    emit(this->*changed)();
}

void OrbOculus::setLensCenterLeft(const QPointF &center)
{
    setLens(m_lensCenterLeft, center, &OrbOculus::lensCenterLeftChanged);
}

void OrbOculus::setLensCenterRight(const QPointF &center)
{
    setLens(m_lensCenterRight, center, &OrbOculus::lensCenterRightChanged);
}

void OrbOculus::setScreenCenterLeft(const QPointF &center)
{
    setLens(m_screenCenterLeft, center, &OrbOculus::screenCenterLeftChanged);
}

void OrbOculus::setScreenCenterRight(const QPointF &center)
{
    setLens(m_screenCenterRight, center, &OrbOculus::screenCenterRightChanged);
}

void OrbOculus::setScale(const QPointF &scale)
{
    setLens(m_scale, scale, &OrbOculus::scaleChanged);
}

void OrbOculus::setScaleIn(const QPointF &scaleIn)
{
    setLens(m_scaleIn, scaleIn, &OrbOculus::scaleInChanged);
}

void OrbOculus::setScaleCorrector(float scaleCorrector)
{
    if (scaleCorrector == m_scaleCorrector)
        return;
    m_scaleCorrector = scaleCorrector;
    emit scaleCorrectorChanged();
}

void OrbOculus::setHmdWarpParam(const QVector4D &hmdWarpParam)
{
    if (hmdWarpParam == m_hmdWarpParam)
        return;
    m_hmdWarpParam = hmdWarpParam;
    emit hmdWarpParamChanged();
}

void OrbOculus::configureEyes(const ovrEyeRenderDesc (&eyes)[ovrEye_Count])
{
    std::copy(std::begin(eyes), std::end(eyes), std::begin(m_eyes));
    m_fovDeg = kFovDeg;
    const ovrFovPort &left = m_eyes[ovrEye_Left].Fov;
    setScaleCorrector(meanAngleDeg(left.DownTan, left.UpTan)
                      / meanAngleDeg(left.RightTan, left.LeftTan));
    m_matrixLeftEye = inverseProjection(left);
    m_matrixRightEye = inverseProjection(m_eyes[ovrEye_Right].Fov);

    const bool dk1 = m_hmd->Type == ovrHmd_DK1;
    const double lens = dk1 ? 0.287994 : 0.250994;
    setLensCenterLeft({lens, 0.5});
    setLensCenterRight({1 - lens, 0.5});
    setScreenCenterLeft({0.25, 0.5});
    setScreenCenterRight({0.75, 0.5});
    if (dk1) {
        m_fovDeg = kFovDk1Deg;
        setScale({0.194408, 0.311053});
        setScaleIn({4.0, 2.5});
        setHmdWarpParam({1.0F, 0.22F, 0.24F, 0.0F});
    }
    m_state->setFov(m_fovDeg);
}

QMatrix4x4 OrbOculus::getRotationMatrixLeft() const
{
    return m_state->rotationMatrix() * m_matrixLeftEye;
}

QMatrix4x4 OrbOculus::getRotationMatrixRight() const
{
    return m_state->rotationMatrix() * m_matrixRightEye;
}

void OrbOculus::frameShown(qint64 epochMs)
{
    const std::optional<int> frames = m_frames.frameShown(epochMs);
    if (!frames)
        return;
    m_fps = *frames;
    emit fpsChanged();
}

void OrbOculus::printinfo() const
{
    print("m_matrixLeftEye :", m_matrixLeftEye);
    print("m_matrixRightEye :", m_matrixRightEye);
}
