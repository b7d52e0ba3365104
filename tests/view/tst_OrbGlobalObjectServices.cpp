#include "GlobalObjectFixture.h"

#include "WarningsFail.h"

#include <QApplication>
#include <QCursor>
#include <QMessageBox>
#include <QSurfaceFormat>
#include <QtTest>

#include <optional>

namespace {

const QString kTouchMode = QStringLiteral("application/touchMode");
const QString kDuration = QStringLiteral("application/playlist/imageDisplayDuration");
const QString kForceOpenGl = QStringLiteral("application/forceopengl");
const QString kOculusMode = QStringLiteral("application/oculusmode");
const QString kVideoPlugin = QStringLiteral("application/videoPlugin");

constexpr int kNeverEnded = 77;
constexpr int kPatienceMs = 20000;

/// Runs the event loop with `action` as its first event; the loop's exit code.
template <typename Action>
int exitCodeOf(Action action)
{
    QTimer::singleShot(0, action);
    QTimer patience;
    QObject::connect(&patience, &QTimer::timeout, [] { QCoreApplication::exit(kNeverEnded); });
    patience.start(kPatienceMs);
    return QCoreApplication::exec();
}

} // namespace

Q_DECLARE_METATYPE(QSurfaceFormat::RenderableType)

/// What the scene and the headset ask of the object beside the camera and the playlist.
class tst_OrbGlobalObjectServices : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase();
    void storedSettingsAreTakenAndLeft();
    void theKindOfOpenGLFollowsTheSettings_data();
    void theKindOfOpenGLFollowsTheSettings();
    void headsetAndSettingsAreReconciled_data();
    void headsetAndSettingsAreReconciled();
};

void tst_OrbGlobalObjectServices::initTestCase()
{
    // Message boxes have size hints, which the platform without a screen cannot pass on.
    ignoreWarning(QStringLiteral("^This plugin does not support propagateSizeHints"));
}

void tst_OrbGlobalObjectServices::storedSettingsAreTakenAndLeft()
{
    const QVariantMap stored{{kTouchMode, false},
                             {kDuration, 1234},
                             {kForceOpenGl, true},
                             {kOculusMode, true},
                             {QStringLiteral("of/another"), 7}};
    GlobalObjectFixture f(stored);
    QCOMPARE(GlobalObjectFixture::storedValues(), stored);
    QCOMPARE(f.object.touchMode(), false);
}

void tst_OrbGlobalObjectServices::theKindOfOpenGLFollowsTheSettings_data()
{
    QTest::addColumn<QVariantMap>("stored");
    QTest::addColumn<QSurfaceFormat::RenderableType>("expected");
    const auto plugin = [](const char *id) {
        return QVariantMap{{kVideoPlugin, QString::fromLatin1(id)}};
    };
    QTest::newRow("nothing chosen") << QVariantMap() << QSurfaceFormat::OpenGL;
    QTest::newRow("the native backend") << plugin("gst") << QSurfaceFormat::OpenGLES;
    QTest::newRow("an unknown backend") << plugin("VLC") << QSurfaceFormat::OpenGLES;
    QTest::newRow("libVLC") << plugin("vlc") << QSurfaceFormat::OpenGL;
    QTest::newRow("libVLC with hardware") << plugin("vlc_hw") << QSurfaceFormat::OpenGL;
    QTest::newRow("forced") << QVariantMap{{kForceOpenGl, true}} << QSurfaceFormat::OpenGL;
    QTest::newRow("for a headset") << QVariantMap{{kOculusMode, true}} << QSurfaceFormat::OpenGL;
}

void tst_OrbGlobalObjectServices::theKindOfOpenGLFollowsTheSettings()
{
    QFETCH(QVariantMap, stored);
    QFETCH(QSurfaceFormat::RenderableType, expected);
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setDepthBufferSize(24);
    format.setRenderableType(QSurfaceFormat::DefaultRenderableType);
    QSurfaceFormat::setDefaultFormat(format);
    const GlobalObjectFixture f(stored);
    QCOMPARE(QSurfaceFormat::defaultFormat().renderableType(), expected);
    QCOMPARE(QSurfaceFormat::defaultFormat().depthBufferSize(), 24);
}

void tst_OrbGlobalObjectServices::headsetAndSettingsAreReconciled_data()
{
    QTest::addColumn<bool>("forced");
    QTest::addColumn<bool>("mode");
    QTest::addColumn<bool>("found");
    QTest::addColumn<QString>("message"); ///< empty: they agree
    QTest::addColumn<QVariant>("plugin"); ///< stored afterwards; "gst" was before

    const QString on = QStringLiteral("Oculus detected.\n"
                                      "Oculus mode is automatically activated.\n"
                                      "Orbix Sight must be restarted.");
    const QString off = QStringLiteral("No Oculus detected.\n"
                                       "Oculus mode is automatically deactivated.\n"
                                       "Orbix Sight must be restarted.");
    const QVariant before = QStringLiteral("gst");
    QTest::newRow("neither") << false << false << false << QString() << before;
    QTest::newRow("both") << false << true << true << QString() << before;
    QTest::newRow("a new headset")
        << false << false << true << on << QVariant(QStringLiteral("vlc"));
    QTest::newRow("the headset is gone") << false << true << false << off << QVariant();
    QTest::newRow("forced, a new headset") << true << false << true << QString() << before;
    QTest::newRow("forced, the headset is gone") << true << true << false << QString() << before;
}

void tst_OrbGlobalObjectServices::headsetAndSettingsAreReconciled()
{
    QFETCH(bool, forced);
    QFETCH(bool, mode);
    QFETCH(bool, found);
    QFETCH(QString, message);
    QFETCH(QVariant, plugin);
    GlobalObjectFixture f(
        {{kForceOpenGl, forced}, {kOculusMode, mode}, {kVideoPlugin, QStringLiteral("gst")}});

    QString shown;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QTimer closer;
    connect(&closer, &QTimer::timeout, &closer, [&] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            shown = box->text();
            icon = box->icon();
            box->accept();
        }
    });
    closer.start(1);
    std::optional<bool> goesOn;
    if (message.isEmpty()) {
        goesOn = f.object.checkOculusMode(found);
    } else {
        const int code = exitCodeOf([&] { goesOn = f.object.checkOculusMode(found); });
        QCOMPARE(code, 0);
        QCOMPARE(icon, QMessageBox::Critical);
    }
    QCOMPARE(goesOn, std::optional<bool>(message.isEmpty()));
    QCOMPARE(shown, message);
    const QVariantMap stored = GlobalObjectFixture::storedValues();
    QCOMPARE(stored.value(kOculusMode).toBool(), message.isEmpty() ? mode : found);
    QCOMPARE(stored.value(kVideoPlugin), plugin);
    QCOMPARE(stored.value(kForceOpenGl).toBool(), forced);
}

QTEST_MAIN(tst_OrbGlobalObjectServices)
#include "tst_OrbGlobalObjectServices.moc"
