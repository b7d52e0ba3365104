#include "HeadsetStage.h"

#include "PanoramaTexture.h"

#include <QApplication>
#include <QTest>

namespace {

std::unique_ptr<OrbSettingsManager> settingsOf(const QVariantMap &given, bool present)
{
    auto settings = std::make_unique<OrbSettingsManager>(QStringLiteral("orbix-tests"),
                                                         QStringLiteral("hmd"));
    for (const char *key :
         {"useSDK", "dynamicPrediction", "usePrediction", "timewarpNoJit", "vsync", "fullscreen"})
        settings->remove(QStringLiteral("application/oculus/") + QLatin1String(key));
    settings->write(QStringLiteral("application/oculusmode"), present);
    for (auto setting = given.begin(); setting != given.end(); ++setting)
        settings->write(QStringLiteral("application/oculus/") + setting.key(), setting.value());
    return settings;
}

} // namespace

HeadsetStage::HeadsetStage(const QVariantMap &settings, bool present)
    : m_settings(settingsOf(settings, present))
    , m_videoPlugin(m_settings.get())
    , state(m_settings.get(), &m_videoPlugin)
    , view(std::make_unique<OrbQQuickView>(m_settings.get(), true))
    , textureProvider(view.get(), m_settings.get())
    , oculus(view.get(), &state, &builder, &textureProvider)
{
    QSurfaceFormat format = view->requestedFormat();
    format.setRenderableType(QSurfaceFormat::OpenGL);
    view->setFormat(format);
    view->setSource(QUrl::fromLocalFile(QStringLiteral(TEST_SCENE)));
    QObject::connect(
        view.get(), &QQuickWindow::beforeSynchronizing, &textureProvider,
        [this] {
            if (panorama && textureProvider.textureId() == 0)
                textureProvider.setTextureId(static_cast<int>(panoramaTexture()));
        },
        Qt::DirectConnection);
}

HeadsetStage::~HeadsetStage()
{
    view.reset(); // as the program does: the window goes first, and its render thread with it
}

bool HeadsetStage::start() const
{
    const QString searching = oculus.logMessage();
    view->show();
    return QTest::qWaitFor([&] { return oculus.logMessage() != searching; });
}

GLWindow *HeadsetStage::headsetWindow()
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        auto *window = qobject_cast<GLWindow *>(widget);
        if (window && window->isVisible())
            return window;
    }
    return nullptr;
}
