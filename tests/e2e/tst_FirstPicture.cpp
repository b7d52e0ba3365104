#include "FilmOnScreen.h"
#include "FrameCode.h"
#include "Player.h"
#include "WarningsFail.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QtTest>

class tst_FirstPicture : public WarningsFail
{
    Q_OBJECT

private slots:
    void thePanoramaStandsOnTheScreen_data();
    void thePanoramaStandsOnTheScreen();
};

void tst_FirstPicture::thePanoramaStandsOnTheScreen_data()
{
    QTest::addColumn<QString>("renderLoop");
    QTest::addColumn<QVariantMap>("settings");
    QTest::addColumn<int>("scale"); // pixels a point
    QTest::addColumn<bool>("openGlEs");

    const QString threaded = QStringLiteral("threaded");
    const QString basic = QStringLiteral("basic");
    const QVariantMap none;
    const QVariantMap gst{{QStringLiteral("application/videoPlugin"), QStringLiteral("gst")}};
    QVariantMap forced = gst;
    forced.insert(QStringLiteral("application/forceopengl"), true);
    QTest::newRow("desktop OpenGL, render thread") << threaded << none << 1 << false;
    QTest::newRow("desktop OpenGL by choice, main thread") << basic << forced << 1 << false;
    QTest::newRow("OpenGL ES, render thread") << threaded << gst << 1 << true;
    QTest::newRow("OpenGL ES, main thread") << basic << gst << 1 << true;
    QTest::newRow("two pixels a point") << threaded << none << 2 << false;
}

void tst_FirstPicture::thePanoramaStandsOnTheScreen()
{
    QFETCH(QString, renderLoop);
    QFETCH(QVariantMap, settings);
    QFETCH(int, scale);

    constexpr int kNumber = 4711;
    constexpr double kFovDeg = 90;
    constexpr int kTolerance = 3; // of 255, for the rounding of the colour chain
    constexpr int kDeadlineMs = 30000;
    Player player;
    const QString picture = player.folder() + QStringLiteral("/panorama.png");
    QVERIFY(FrameCode::frame({1440, 720}, kNumber).save(picture));
    player.setEnvironment(QStringLiteral("QSG_RENDER_LOOP"), renderLoop);
    player.setEnvironment(QStringLiteral("QT_SCALE_FACTOR"), QString::number(scale));
    for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting)
        player.setSetting(setting.key(), setting.value());
    player.start({QStringLiteral("--demo"), picture});

    QImage screen;
    QTRY_COMPARE_WITH_TIMEOUT(FrameCode::read(
                                  screen =
                                      QGuiApplication::primaryScreen()->grabWindow(0).toImage()),
                              std::optional<int>(kNumber), kDeadlineMs);
    const int error = FrameCode::colourError(screen, kFovDeg);
    QVERIFY2(error <= kTolerance, qPrintable(QString::number(error)));
    const QJsonObject state = player.state();
    QTEST(state.value(QLatin1String("openGlEs")).toBool(), "openGlEs");
    QCOMPARE(state.value(QLatin1String("renderThread")).toBool(),
             renderLoop == QLatin1String("threaded"));
    player.exit(0);
    QCOMPARE(player.ending(), QStringLiteral("0"));
}

QTEST_MAIN(tst_FirstPicture)
#include "tst_FirstPicture.moc"
