#include "OrbQQuickView.h"

#include "CrashHandler.h"
#include "OrbSettingsManager.h"
#include "Product.h"
#include "SafeRichText.h"
#include "WindowManager.h"

#include <QDateTime>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QScreen>

namespace {

/// The functions of the context that draws now, ready to be called; null if there are none.
QOpenGLFunctions *currentFunctions()
{
    QOpenGLContext *context = QOpenGLContext::currentContext();
    QOpenGLFunctions *functions = context ? context->functions() : nullptr;
    if (functions)
        functions->initializeOpenGLFunctions();
    return functions;
}

QString glText(QOpenGLFunctions *functions, GLenum name)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(functions->glGetString(name)));
}

} // namespace

OrbQQuickView::OrbQQuickView(OrbSettingsManager *settings, bool demoMode)
    : m_updateManager(settings, Product::updateServerUrl(), this)
    , m_fullScreen(demoMode)
    , m_demoMode(demoMode)
    , m_gpuInfo(tr("Cannot get GPU version"))
{
    connect(&m_updateManager, &OrbUpdateManager::NewVersionAvailable, this,
            &OrbQQuickView::OnNewVersionAvailable);
    connect(&m_updateManager, &OrbUpdateManager::AlreadyLatestVersion, this,
            &OrbQQuickView::OnAlreadyLatestVersion);
    connect(this, &QWindow::windowStateChanged, this, &OrbQQuickView::onWindowStateChanged);
    m_updateManager.start(Product::code(), Product::version(), QString());
    connect(this, &QQuickWindow::beforeRendering, this, &OrbQQuickView::computeMaxTextureSize,
            Qt::DirectConnection);
    connect(this, &QQuickWindow::beforeRendering, this, &OrbQQuickView::computeGpuInfo,
            Qt::DirectConnection);
    connect(this, &QQuickWindow::afterRendering, this, &OrbQQuickView::computeFps,
            Qt::DirectConnection);
}

void OrbQQuickView::checkUpdate()
{
    if (m_updateManager.isConfigured())
        m_updateManager.check(true);
    else
        emit displayMessage(tr("This build has no update server to ask."));
}

void OrbQQuickView::fullScreenMode(bool enabled)
{
    const bool unmanaged = !hasWindowManager();
    if (enabled) {
        if (unmanaged && m_geometryBefore.isNull()) {
            m_geometryBefore = geometry();
            setGeometry(screen()->geometry());
        }
        showFullScreen();
    } else {
        showNormal();
        if (unmanaged && !m_geometryBefore.isNull())
            setGeometry(m_geometryBefore);
        m_geometryBefore = QRect();
    }
}

QString OrbQQuickView::title() const
{
    return QStringLiteral("%1 %2").arg(Product::displayName(),
                                       OrbVersion(Product::version()).displayText());
}

void OrbQQuickView::updateTitle(const QString &newSource)
{
    QString text = Product::displayName();
    if (!newSource.isEmpty())
        text += QStringLiteral(" - %1").arg(newSource);
    setTitle(text);
}

QString OrbQQuickView::colorTeam() const
{
    return QStringList{QStringLiteral("The Orbix Sight team")}.join(QStringLiteral(", "));
}

QString OrbQQuickView::copyright() const
{
    return tr("Orbix Sight is protected by copyright law and international treaties.");
}

QString OrbQQuickView::copyrightDates() const
{
    return QStringLiteral("&copy; 2015-2026 Orbix");
}

QString OrbQQuickView::newVersion() const
{
    return m_updateManager.newVersion().displayText();
}

QString OrbQQuickView::newVersionDate() const
{
    return m_updateManager.newVersionDate().toString(Qt::TextDate);
}

QString OrbQQuickView::newChangeLog() const
{
    return safeRichText(m_updateManager.changeLog());
}

QString OrbQQuickView::urlDownload() const
{
    return m_updateManager.downloadUrl();
}

QString OrbQQuickView::urlHistory() const
{
    return m_updateManager.historyUrl();
}

void OrbQQuickView::OnNewVersionAvailable()
{
    m_newVersionAvailable = true;
    emit displayPopup(QStringLiteral("qrc:/qml/popup/PopupUpdateAvailable.qml"));
}

void OrbQQuickView::OnAlreadyLatestVersion()
{
    emit displayMessage(tr("There is no update for this product.\n"
                           "Your are already running the most up to date version."));
}

void OrbQQuickView::OnMiniDump()
{
    CrashHandler::writeReport();
}

void OrbQQuickView::onWindowStateChanged(Qt::WindowState state)
{
    const bool fullScreen = state == Qt::WindowFullScreen;
    if (fullScreen == m_fullScreen)
        return;
    m_fullScreen = fullScreen;
    emit fullScreenChanged();
}

void OrbQQuickView::computeMaxTextureSize()
{
    disconnect(this, &QQuickWindow::beforeRendering, this, &OrbQQuickView::computeMaxTextureSize);
    QOpenGLFunctions *functions = currentFunctions();
    if (!functions)
        return;
    GLint largest = 0;
    functions->glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    const QSize size(largest / 2, largest / 2);
    QMetaObject::invokeMethod(
        this,
        [this, size] {
            m_maxTextureSize = size;
            emit maxTextureSizeChanged();
        },
        Qt::QueuedConnection);
}

void OrbQQuickView::computeGpuInfo()
{
    disconnect(this, &QQuickWindow::beforeRendering, this, &OrbQQuickView::computeGpuInfo);
    QOpenGLFunctions *functions = currentFunctions();
    if (!functions)
        return;
    const QString info = QStringLiteral("Renderer : %1 \nOpenGL Version : %2 \n")
                             .arg(glText(functions, GL_RENDERER), glText(functions, GL_VERSION));
    QMetaObject::invokeMethod(
        this,
        [this, info] {
            m_gpuInfo = info;
            emit gpuInfoChanged();
        },
        Qt::QueuedConnection);
}

void OrbQQuickView::computeFps()
{
    const std::optional<int> frames = m_frames.frameShown(QDateTime::currentMSecsSinceEpoch());
    if (!frames)
        return;
    QMetaObject::invokeMethod(
        this,
        [this, count = *frames] {
            m_fps = count;
            emit fpsChanged();
        },
        Qt::QueuedConnection);
}

bool OrbQQuickView::nativeEvent(const QByteArray &eventType, void *message, long *result)
{
    emit signalNativeEvent(eventType, message, result);
    return false;
}

void OrbQQuickView::mouseMoveEvent(QMouseEvent *event)
{
    QQuickView::mouseMoveEvent(event);
    emit mouseMoved();
}
