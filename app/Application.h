#pragma once

#include <QApplication>

#include <memory>

class OrbDebug;
class OrbDisplay;
class OrbGlobalObject;
class OrbHostingManager;
class OrbLeap;
class OrbOculus;
class OrbQQuickView;
class OrbRealSense;
class OrbSensor;
class OrbSettingsManager;
class OrbShaderCodeBuilder;
class OrbTextureProvider;
class OrbUdpSocket;
class OrbVideoPlugin;

/// The program: makes the long-lived objects in a fixed order, links them to the scene, and deletes
/// them in another fixed order. They hold plain pointers to each other.
///
/// Main thread, but for `checkOpenGLVersion`, which runs on the render thread.
class Application : public QApplication
{
    Q_OBJECT

public:
    /// `identifier` names the program among others of the desktop.
    Application(const QString &identifier, int &argc, char **argv);
    ~Application() override;

    /// Builds everything, shows the window and opens the files of the command line. The arguments
    /// are not owned; relative files start at `startFolder`.
    void setUp(OrbSettingsManager *settings, const QString &startFolder);

    /// Undoes `setUp`. Safe without it.
    void cleanUp();

    OrbQQuickView *view() const { return m_view.get(); }
    OrbGlobalObject *globalObject() const { return m_globalObject.get(); }
    OrbShaderCodeBuilder *shaderCodeBuilder() const { return m_shaderCodeBuilder.get(); }
    OrbVideoPlugin *videoPlugin() const { return m_videoPlugin.get(); }
    OrbTextureProvider *textureProvider() const { return m_textureProvider.get(); }

public slots:
    void checkOpenGLVersion();
    void displayOpenGLErrorMessage();

private:
    void createObjects(const QVariantMap &commandLine);
    void createDebug();
    void setContextObjects();
    void registerTypes();
    void showWindow();

    OrbSettingsManager *m_settings = nullptr;
    std::unique_ptr<OrbQQuickView> m_view;
    std::unique_ptr<OrbGlobalObject> m_globalObject;
    std::unique_ptr<OrbShaderCodeBuilder> m_shaderCodeBuilder;
    std::unique_ptr<OrbDisplay> m_display;
    std::unique_ptr<OrbSensor> m_sensor;
    std::unique_ptr<OrbVideoPlugin> m_videoPlugin;
    std::unique_ptr<OrbOculus> m_oculus;
    std::unique_ptr<OrbLeap> m_leap;
    std::unique_ptr<OrbUdpSocket> m_udpSocket;
    std::unique_ptr<OrbHostingManager> m_hostingManager;
    std::unique_ptr<OrbTextureProvider> m_textureProvider;
    std::unique_ptr<OrbRealSense> m_realSense;
    std::unique_ptr<OrbDebug> m_debug; ///< none unless the build asks for it
};
