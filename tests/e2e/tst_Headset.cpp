#include "Player.h"
#include "WarningsFail.h"

#include <QImage>
#include <QtTest>

#include <cmath>

namespace {

const QString kOculusMode = QStringLiteral("application/oculusmode");
const QString kForceOpenGl = QStringLiteral("application/forceopengl");
const QString kVideoPlugin = QStringLiteral("application/videoPlugin");

const QString kComes = QStringLiteral("Oculus detected.\n"
                                      "Oculus mode is automatically activated.\n"
                                      "Orbix Sight must be restarted.");
const QString kGoes = QStringLiteral("No Oculus detected.\n"
                                     "Oculus mode is automatically deactivated.\n"
                                     "Orbix Sight must be restarted.");
const QString kDetected = QStringLiteral("Oculus Rift detected.\nProduct name : Oculus Rift DK2 \n"
                                         "Rift resolution : 480 * 270 \n");
const QString kNotDetected = QStringLiteral("Oculus Rift not detected.\n");
const QString kSucceeded = QStringLiteral("Oculus Rift initialization succeeded.\n"
                                          "Built with Oculus SDK 0.4.4.\n");
const QString kFailed = QStringLiteral("Oculus Rift initialization failed.\n"
                                       "Ensure to have installed Oculus Runtime 0.4.4.\n");

/// Small, for the test's screen, and turned by yaw, pitch and roll. It trembles as a head does.
constexpr char kHeadset[] =
    R"({"type": "DK2", "resolution": [480, 270], "poses": [
        {"atSeconds": 0, "yawDeg": 20, "pitchDeg": 10, "rollDeg": -5},
        {"atSeconds": 1, "yawDeg": 20.003, "pitchDeg": 10, "rollDeg": -5},
        {"atSeconds": 2, "yawDeg": 20, "pitchDeg": 10, "rollDeg": -5}], "repeat": true})";

void write(const QString &path, const QByteArray &text)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
}

bool isNear(const QVariant &radians, double degrees)
{
    return std::abs(radians.toDouble() - degrees * 3.141592653589793 / 180) < 1e-4;
}

} // namespace

/// The real program with a headset that is played from a script.
class tst_Headset : public WarningsFail
{
    Q_OBJECT

private slots:
    void theHeadsetAndTheSettingsComeToAgree_data();
    void theHeadsetAndTheSettingsComeToAgree();
    void theFirstStartAsksForTheSecondWhichShowsThePanorama();
    void aHeadsetThatCannotBeUsedIsReported_data();
    void aHeadsetThatCannotBeUsedIsReported();

private:
    /// The script stands in the folder that the program starts in.
    static void start(Player &player, const QByteArray &script,
                      const QStringList &arguments = {QStringLiteral("--demo")})
    {
        if (!script.isEmpty()) {
            write(player.folder() + QStringLiteral("/headset.json"), script);
            player.setEnvironment(QStringLiteral("ORBIX_SIMULATE"),
                                  QStringLiteral("headset:headset.json"));
        }
        player.start(arguments, player.folder());
        QVERIFY(player.waitForState([](const QJsonObject &state) {
            return state.value(QLatin1String("frames")).toInt() > 0;
        }));
    }
    static QString logOf(Player &player)
    {
        return player.value("orbOculus", "logMessage").toString();
    }
};

void tst_Headset::theHeadsetAndTheSettingsComeToAgree_data()
{
    QTest::addColumn<bool>("present");
    QTest::addColumn<bool>("oculusMode"); // before
    QTest::addColumn<bool>("forceOpenGl");
    QTest::addColumn<QString>("message"); // of the box, empty for none
    QTest::addColumn<bool>("modeAfter");
    QTest::addColumn<QVariant>("pluginAfter"); // "gst" before
    QTest::addColumn<QString>("log");
    const QVariant gst(QStringLiteral("gst"));
    const QVariant vlc(QStringLiteral("vlc"));
    QTest::newRow("it comes") << true << false << false << kComes << true << vlc
                              << kDetected + kFailed;
    QTest::newRow("it is there") << true << true << false << QString() << true << gst
                                 << kDetected + kSucceeded;
    QTest::newRow("it is gone") << false << true << false << kGoes << false << QVariant()
                                << kNotDetected + kFailed;
    QTest::newRow("there was never one")
        << false << false << false << QString() << false << gst << kNotDetected + kFailed;
    QTest::newRow("it comes, OpenGL by force")
        << true << false << true << QString() << false << gst << kDetected + kSucceeded;
    QTest::newRow("it is gone, OpenGL by force")
        << false << true << true << QString() << true << gst << kNotDetected + kFailed;
}

void tst_Headset::theHeadsetAndTheSettingsComeToAgree()
{
    QFETCH(bool, present);
    QFETCH(bool, oculusMode);
    QFETCH(bool, forceOpenGl);
    QFETCH(QString, message);
    QFETCH(bool, modeAfter);
    QFETCH(QVariant, pluginAfter);
    QFETCH(QString, log);
    Player player;
    player.setSetting(kOculusMode, oculusMode);
    player.setSetting(kForceOpenGl, forceOpenGl);
    player.setSetting(kVideoPlugin, QStringLiteral("gst"));
    start(player, present ? QByteArray(kHeadset) : QByteArray());

    if (!message.isEmpty()) {
        QVERIFY(player.waitForState(
            [&](const QJsonObject &state) { return Player::shows(state, message); }));
        QVERIFY(!player.value("orbOculus", "activated").toBool());
        QCOMPARE(logOf(player) + kFailed, log); // which the end of the message brings
        player.order("dismiss");
    } else {
        QTRY_COMPARE(logOf(player), log);
        QCOMPARE(player.value("orbOculus", "available").toBool(), present);
        QCOMPARE(player.value("orbOculus", "activated").toBool(), present);
        QCOMPARE(player.value("orbShaderCodeBuilder", "oculusMode").toBool(), present);
        player.close();
    }
    QCOMPARE(player.ending(), QStringLiteral("0"));
    QCOMPARE(player.settings().value(kOculusMode).toBool(), modeAfter);
    QCOMPARE(player.settings().value(kForceOpenGl).toBool(), forceOpenGl);
    QCOMPARE(player.settings().value(kVideoPlugin), pluginAfter);
}

void tst_Headset::theFirstStartAsksForTheSecondWhichShowsThePanorama()
{
    Player player;
    start(player, kHeadset);
    QVERIFY(
        player.waitForState([](const QJsonObject &state) { return Player::shows(state, kComes); }));
    player.order("dismiss");
    QCOMPARE(player.ending(), QStringLiteral("0"));

    const QString panorama = player.folder() + QStringLiteral("/green.png");
    QImage green(64, 32, QImage::Format_RGB32);
    green.fill(QColor(0, 200, 0));
    QVERIFY(green.save(panorama));
    start(player, kHeadset, {QStringLiteral("--demo"), panorama});
    QTRY_COMPARE(logOf(player), kDetected + kSucceeded);
    QTRY_VERIFY(player.value("orbOculus", "fps").toInt() > 0);

    // The view follows the head, and the whole program sees it.
    QVERIFY(isNear(player.value("orbGlobalObject", "yaw"), -20));
    QVERIFY(isNear(player.value("orbGlobalObject", "pitch"), -10));
    QVERIFY(isNear(player.value("orbGlobalObject", "roll"), -5));
    QCOMPARE(player.value("orbGlobalObject", "fov").toFloat(), 91.0F);

    // Its keys turn the viewer's own way.
    player.order("key 6");
    QTRY_VERIFY(std::abs(player.value("orbOculus", "shiftYaw").toDouble() + 0.5) < 1e-6);
    QTRY_VERIFY(std::abs(player.value("orbGlobalObject", "yaw").toDouble()
                         - (0.5 - 20 * 3.141592653589793 / 180))
                < 1e-4);

    // Off and on again by the scene's key.
    player.order("key O");
    QTRY_VERIFY(!player.value("orbOculus", "activated").toBool());
    QCOMPARE(player.value("orbGlobalObject", "roll").toDouble(), 0.0);
    player.order("key O");
    QTRY_VERIFY(player.value("orbGlobalObject", "roll").toDouble() != 0);
    player.close();
    QCOMPARE(player.ending(), QStringLiteral("0"));
}

void tst_Headset::aHeadsetThatCannotBeUsedIsReported_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("no rights") << QByteArray(R"({"unusable": "No rights for the headset."})");
    QTest::newRow("no script") << QByteArray("nonsense");
    QTest::newRow("no panel") << QByteArray(R"({"resolution": [0, 0]})");
    QTest::newRow("no view") << QByteArray(R"({"eyeFov": [[0,0,0,0],[null,1,1,1]]})");
}

void tst_Headset::aHeadsetThatCannotBeUsedIsReported()
{
    QFETCH(QByteArray, script);
    Player player;
    start(player, script);
    QTRY_VERIFY(logOf(player).endsWith(kFailed));
    const QString reason =
        logOf(player).remove(kFailed).remove(QStringLiteral("Oculus Rift not detected.")).trimmed();
    QVERIFY2(!reason.isEmpty() && !reason.contains(QLatin1Char('\n')), qPrintable(reason));
    if (script.contains("rights"))
        QCOMPARE(reason, QStringLiteral("No rights for the headset."));
    player.close();
    QCOMPARE(player.ending(), QStringLiteral("0\norbix.hmd: ") + reason);
}

QTEST_GUILESS_MAIN(tst_Headset)
#include "tst_Headset.moc"
