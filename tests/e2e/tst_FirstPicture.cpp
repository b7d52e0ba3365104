#include "Player.h"
#include "WarningsFail.h"

#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QtTest>

#include <cmath>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kPatchDeg = 30;
constexpr int kPicturePixelsPerDeg = 4;
constexpr int kBarHeight = 100; ///< the lower edge of the screen, where the controls may stand
constexpr int kGridStep = 40;   ///< pixels between the points that are looked at
constexpr double kEdgeDeg = 3;  ///< points this near to another patch are not looked at
constexpr int kTolerance = 3;   ///< of 255, for the rounding of the colour chain
constexpr int kDeadlineMs = 30000;

/// The colour of the patch of the sphere at an angle in degrees: no two patches share it.
QColor patchColour(double longitudeDeg, double latitudeDeg)
{
    const int column = static_cast<int>(std::floor((longitudeDeg + 180) / kPatchDeg));
    const int row = static_cast<int>(std::floor((90 - latitudeDeg) / kPatchDeg));
    return {20 + 18 * column, 30 + 36 * row, (column * 5 + row * 3) % 8 * 30 + 20};
}

/// Twelve by six patches as an equirectangular panorama.
QImage panorama()
{
    QImage image(360 * kPicturePixelsPerDeg, 180 * kPicturePixelsPerDeg, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixelColor(x, y,
                                patchColour((x + 0.5) / kPicturePixelsPerDeg - 180,
                                            90 - (y + 0.5) / kPicturePixelsPerDeg));
    }
    return image;
}

bool isNearPatchEdge(double angleDeg)
{
    return std::abs(std::remainder(angleDeg, kPatchDeg)) < kEdgeDeg;
}

struct Point
{
    QPoint pixel;
    QColor colour;
};

/// Points of a screen of this size with their colours in a perspective view to the middle of the
/// panorama with 90 degrees from the upper to the lower edge (gnomonic projection).
QVector<Point> expectedPoints(const QSize &screen)
{
    QVector<Point> points;
    const double focal = screen.height() / 2.0; // half the height over tan(45 degrees)
    for (int y = kGridStep; y < screen.height() - kBarHeight; y += kGridStep) {
        for (int x = kGridStep; x < screen.width(); x += kGridStep) {
            const double right = x + 0.5 - screen.width() / 2.0;
            const double up = screen.height() / 2.0 - y - 0.5;
            const double longitude = std::atan2(right, focal) * 180 / kPi;
            const double latitude = std::atan2(up, std::hypot(right, focal)) * 180 / kPi;
            if (!isNearPatchEdge(longitude) && !isNearPatchEdge(latitude))
                points.append({{x, y}, patchColour(longitude, latitude)});
        }
    }
    return points;
}

bool areAlike(const QColor &a, const QColor &b)
{
    return std::abs(a.red() - b.red()) <= kTolerance
        && std::abs(a.green() - b.green()) <= kTolerance
        && std::abs(a.blue() - b.blue()) <= kTolerance;
}

/// What is wrong on the screen, in words; empty if all points are right.
QString wrongPoints(const QVector<Point> &points)
{
    const QImage screen = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
    QStringList wrong;
    for (const Point &point : points) {
        const QColor found = screen.pixelColor(point.pixel);
        if (!areAlike(found, point.colour))
            wrong += QStringLiteral("(%1, %2) is %3 and not %4")
                         .arg(point.pixel.x())
                         .arg(point.pixel.y())
                         .arg(found.name(), point.colour.name());
    }
    return wrong.isEmpty()
        ? QString()
        : QStringLiteral("%1 of %2 points: ").arg(wrong.size()).arg(points.size())
            + wrong.mid(0, 5).join(QStringLiteral(", "));
}

} // namespace

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
    QFETCH(bool, openGlEs);

    const QVector<Point> points = expectedPoints(QGuiApplication::primaryScreen()->size());
    QVERIFY(points.size() > 200);

    Player player;
    const QString picture = player.folder() + QStringLiteral("/panorama.png");
    QVERIFY(panorama().save(picture));
    player.setEnvironment(QStringLiteral("QSG_RENDER_LOOP"), renderLoop);
    player.setEnvironment(QStringLiteral("QT_SCALE_FACTOR"), QString::number(scale));
    for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting)
        player.setSetting(setting.key(), setting.value());
    player.start({QStringLiteral("--demo"), picture});

    QString wrong;
    const auto isRight = [&] { return (wrong = wrongPoints(points)).isEmpty(); };
    if (!QTest::qWaitFor(isRight, kDeadlineMs))
        QFAIL(qPrintable(wrong));
    const QJsonObject state = player.state();
    QCOMPARE(state.value(QLatin1String("openGlEs")).toBool(), openGlEs);
    QCOMPARE(state.value(QLatin1String("renderThread")).toBool(),
             renderLoop == QLatin1String("threaded"));

    player.exit(0);
    QVERIFY(player.waitForEnd());
    QVERIFY(!player.crashed());
    QCOMPARE(player.exitCode(), 0);
    QCOMPARE(player.errorOutput(), QStringList());
}

QTEST_MAIN(tst_FirstPicture)
#include "tst_FirstPicture.moc"
