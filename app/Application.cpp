#include "Application.h"

#include "CommandLine.h"
#include "OrbDebug.h"
#include "OrbDisplay.h"
#include "OrbDropArea.h"
#include "OrbGlobalObject.h"
#include "OrbHostingManager.h"
#include "OrbLeap.h"
#include "OrbLeapFingerOGL.h"
#include "OrbOculus.h"
#include "OrbQQuickView.h"
#include "OrbRealSense.h"
#include "OrbSensor.h"
#include "OrbSettingsManager.h"
#include "OrbShaderCodeBuilder.h"
#include "OrbTextureProvider.h"
#include "OrbUdpSocket.h"
#include "OrbVideoPlugin.h"
#include "OrbixSightView.h"
#include "Product.h"
#include "VideosListModel.h"
#include "VlcOptions.h"
#include "WindowManager.h"

#include <QDir>
#include <QMessageBox>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQmlContext>
#include <QQmlEngine>
#include <QTimer>
#include <QtQml>

#include <clocale>

namespace {

constexpr bool kDebugOverlay = ORBIX_DEBUG_OVERLAY;
constexpr int kFpsPeriodMs = 500;

constexpr char kModule[] = "OrbixSight";
const QString kRootScene = QStringLiteral("qrc:/qml/main_newui.qml");
const QString kResourceRoot = QStringLiteral(":/");

constexpr Qt::WindowFlags kWindowFlags = Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint
    | Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint
    | Qt::WindowFullscreenButtonHint;

template <typename T>
void registerEnumsOf(const char *name)
{
    qmlRegisterUncreatableType<T>(kModule, 1, 0, name, QStringLiteral("Enums only"));
}

} // namespace

// Resources of static libraries have to be asked for, outside any namespace.
static void initSceneResources()
{
    Q_INIT_RESOURCE(scene);
    Q_INIT_RESOURCE(images);
}

static void initPlayerResources()
{
    Q_INIT_RESOURCE(player);
}

Application::Application(const QString &, int &argc, char **argv)
    : QApplication(argc, argv)
{
    // QApplication takes the user's locale; parsers and printers of numbers in C expect a point.
    std::setlocale(LC_NUMERIC, "C");
}

Application::~Application()
{
    cleanUp();
}

void Application::setUp(OrbSettingsManager *settings, const QString &startFolder)
{
    m_settings = settings;
    const QVariantMap commandLine = parseCommandLine(*this, startFolder);
    VlcOptions::process().load(*settings);
    createObjects(commandLine);
    m_globalObject->setStartFolder(startFolder);
    setContextObjects();
    registerTypes();
    m_view->setSource(QUrl(kRootScene));
    showWindow();
    setOrganizationName(Product::organisation());
    setApplicationName(Product::softwareName());
    QDir::setSearchPaths(QStringLiteral("UI"), {QStringLiteral(":/UI")});
    QDir::setSearchPaths(QStringLiteral("Translation"), {QStringLiteral(":/Translation")});

    if (commandLine.contains(QStringLiteral("files")))
        m_globalObject->openFiles(commandLine.value(QStringLiteral("files")).toStringList());
    if (m_oculus->isSupported() && m_oculus->available()
        && commandLine.value(QStringLiteral("oculus")).toBool()) {
        m_oculus->setActivated(true);
        m_shaderCodeBuilder->setOculusMode(true);
    }
}

void Application::createObjects(const QVariantMap &commandLine)
{
    m_videoPlugin = std::make_unique<OrbVideoPlugin>(m_settings);
    m_view = std::make_unique<OrbQQuickView>(m_settings,
                                             commandLine.value(QStringLiteral("demo")).toBool());
    connect(m_view.get(), &QQuickWindow::sceneGraphInitialized, this,
            &Application::checkOpenGLVersion, Qt::DirectConnection);
    // The event of this signal is private to Qt: only its name connects.
    // clang-format off
    connect(m_view.get(), SIGNAL(closing(QQuickCloseEvent*)), this, SLOT(quit()));
    // clang-format on
    initPlayerResources();
    initSceneResources();
    m_view->engine()->addImportPath(kResourceRoot);

    m_display = std::make_unique<OrbDisplay>();
    m_textureProvider = std::make_unique<OrbTextureProvider>(m_view.get(), m_settings);
    m_globalObject = std::make_unique<OrbGlobalObject>(m_settings, m_videoPlugin.get());
    m_shaderCodeBuilder = std::make_unique<OrbShaderCodeBuilder>();
    m_oculus = std::make_unique<OrbOculus>(m_view.get(), m_globalObject.get(),
                                           m_shaderCodeBuilder.get(), m_textureProvider.get());
    m_leap = std::make_unique<OrbLeap>(m_globalObject.get(), m_view.get(),
                                       m_shaderCodeBuilder.get());
    m_udpSocket =
        std::make_unique<OrbUdpSocket>(m_globalObject.get(),
                                       commandLine.value(QStringLiteral("udp")).toString());
    m_hostingManager = std::make_unique<OrbHostingManager>(m_settings);
    m_realSense = std::make_unique<OrbRealSense>(m_globalObject.get());
    m_view->setOculus(m_oculus.get());
    m_sensor = std::make_unique<OrbSensor>(m_globalObject.get());
    m_view->engine()->addImportPath(applicationDirPath() + QStringLiteral("/QtPlugins/"));
    if (kDebugOverlay)
        createDebug();
}

void Application::createDebug()
{
    m_debug = std::make_unique<OrbDebug>();
    // The render thread says so; the news waits its turn on the main thread.
    connect(m_view.get(), &QQuickWindow::frameSwapped, m_debug.get(), &OrbDebug::qmlFramePainted);
    auto *timer = new QTimer(m_debug.get());
    connect(timer, &QTimer::timeout, m_debug.get(), &OrbDebug::computeFps);
    timer->start(kFpsPeriodMs);
}

void Application::setContextObjects()
{
    QQmlContext *context = m_view->rootContext();
    const QPair<const char *, QObject *> objects[] = {
        {"orbVideoPlugin", m_videoPlugin.get()},
        {"orbView", m_view.get()},
        {"orbShaderCodeBuilder", m_shaderCodeBuilder.get()},
        {"orbOculus", m_oculus.get()},
        {"orbLeap", m_leap.get()},
        {"orbGlobalObject", m_globalObject.get()},
        {"orbSensor", m_sensor.get()},
        {"orbDisplay", m_display.get()},
        {"orbHostingManager", m_hostingManager.get()},
        {"orbRealSense", m_realSense.get()},
        {"orbTextureProvider", m_textureProvider.get()},
        {"videosListModel", m_hostingManager->videosListModel()},
    };
    for (const auto &[name, object] : objects)
        context->setContextProperty(QLatin1String(name), object);
    // The scene shows the overlay wherever the name is known.
    if (m_debug)
        context->setContextProperty(QStringLiteral("orbDebug"), m_debug.get());
}

void Application::registerTypes()
{
    registerEnumsOf<OrbShaderCodeBuilder>("OrbShaderCodeBuilder");
    registerEnumsOf<OrbHostingManager>("OrbHostingManager");
    registerEnumsOf<OrbUdpSocket>("OrbUdpSocket");
    qmlRegisterType<OrbDropArea>(kModule, 1, 0, "OrbDropArea");
    qmlRegisterType<OrbLeapFingerOGL>(kModule, 1, 0, "OrbLeapFingerOGL");
    qmlRegisterType<OrbixSightView>(kModule, 1, 0, "OrbixSightView");
}

void Application::showWindow()
{
    // The window was made before the kind of OpenGL was chosen.
    QSurfaceFormat format = m_view->format();
    format.setRenderableType(QSurfaceFormat::defaultFormat().renderableType());
    m_view->setFormat(format);

    m_view->setTitle(Product::displayName());
    m_view->setFlags(kWindowFlags);
    m_view->setResizeMode(QQuickView::SizeRootObjectToView);
    if (m_view->demoMode())
        m_view->fullScreenMode(true);
    else
        m_view->show();
    if (!hasWindowManager())
        m_view->requestActivate(); // nothing else would give it the keyboard
}

void Application::cleanUp()
{
    if (!m_view)
        return;
    VlcOptions::process().save(*m_settings);
    // The scene's bindings read the objects: it goes before them.
    m_view->setSource(QUrl());
    m_leap->stop();
    m_realSense.reset();
    m_videoPlugin.reset();
    m_view.reset();
    m_debug.reset();
    m_globalObject.reset();
    m_shaderCodeBuilder.reset();
    m_oculus.reset();
    m_leap.reset();
    m_display.reset();
    m_sensor.reset();
    m_udpSocket.reset();
    m_hostingManager.reset();
    m_textureProvider.reset();
}

void Application::checkOpenGLVersion()
{
    QOpenGLContext *context = QOpenGLContext::currentContext();
    QOpenGLFunctions *functions = context ? context->functions() : nullptr;
    if (functions && functions->hasOpenGLFeature(QOpenGLFunctions::Shaders))
        functions->initializeOpenGLFunctions();
    else
        QMetaObject::invokeMethod(this, &Application::displayOpenGLErrorMessage,
                                  Qt::QueuedConnection);
}

void Application::displayOpenGLErrorMessage()
{
    QMessageBox box(QMessageBox::Critical, Product::displayName(),
                    tr("OpenGL 2.0 minimum is required."));
    box.exec();
    quit();
}
