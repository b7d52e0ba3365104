#include "ClipWriter.h"
#include "FilmOnScreen.h"
#include "ImageFiles.h"
#include "Player.h"
#include "WarningsFail.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QtTest>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double kDegree = M_PI / 180;
constexpr int kTolerance = 6;      // of 255, for the codec, the filtering and the colour chain
constexpr int kDeadlineMs = 10000; // and the time that looking takes

/// A direction in the world: x to the right, y up, z to the back.
using Direction = std::array<double, 3>;

/// `angle` counts from the first axis to the second.
Direction turned(Direction d, std::size_t first, std::size_t second, double angleDeg)
{
    const double c = std::cos(angleDeg * kDegree);
    const double s = std::sin(angleDeg * kDegree);
    const Direction old = d;
    d[first] = c * old[first] - s * old[second];
    d[second] = s * old[first] + c * old[second];
    return d;
}

/// Where a camera that is tilted by these angles saw what stands in direction `d`: down by the
/// pitch around the x axis, then by the roll around the z axis.
Direction tilted(const Direction &d, double pitchDeg, double rollDeg)
{
    return turned(turned(d, 1, 2, -pitchDeg), 0, 1, rollDeg);
}

/// A scene without edges and without symmetry.
QColor scene(const Direction &d)
{
    const auto wave = [](double x) { return int(std::lround(128 + 90 * std::sin(x))); };
    return {wave(3 * d[0] + 1.1 * d[1] + 0.3), wave(3.3 * d[1] - 0.7 * d[0] + 1.9),
            wave(2.1 * d[0] + 2.3 * d[1] - 2 * d[2])};
}

QImage panorama()
{
    QImage image(1440, 720, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const double longitude = ((x + 0.5) / image.width() - 0.5) * 2 * M_PI;
            const double latitude = (0.5 - (y + 0.5) / image.height()) * M_PI;
            image.setPixelColor(x, y,
                                scene({std::sin(longitude) * std::cos(latitude), std::sin(latitude),
                                       -std::cos(longitude) * std::cos(latitude)}));
        }
    }
    return image;
}

/// What a window of this size shows with a view of 90 degrees over its smaller side.
QImage view(const QSize &size, double pitchDeg, double rollDeg)
{
    QImage image(size, QImage::Format_RGB32);
    const double focal = std::min(size.width(), size.height()) / 2.0;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const Direction ray{x + 0.5 - size.width() / 2.0, size.height() / 2.0 - y - 0.5,
                                -focal};
            const double length = std::hypot(ray[0], ray[1], ray[2]);
            image.setPixelColor(x, y,
                                scene(tilted({ray[0] / length, ray[1] / length, ray[2] / length},
                                             pitchDeg, rollDeg)));
        }
    }
    return image;
}

/// The largest difference of a channel above the bar of controls.
int difference(const QImage &a, const QImage &b)
{
    int largest = 0;
    for (int y = 0; y < a.height() * 9 / 10; ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = reinterpret_cast<const QRgb *>(a.constScanLine(y))[x];
            const QRgb q = reinterpret_cast<const QRgb *>(b.constScanLine(y))[x];
            largest = std::max({largest, std::abs(qRed(p) - qRed(q)),
                                std::abs(qGreen(p) - qGreen(q)), std::abs(qBlue(p) - qBlue(q))});
        }
    }
    return largest;
}

QImage grab()
{
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage().convertToFormat(
        QImage::Format_RGB32);
}

} // namespace

/// Panoramas of cameras that tell how they were tilted.
class tst_Levelling : public WarningsFail
{
    Q_OBJECT

private slots:
    void aTiltedPanoramaStandsLevel_data();
    void aTiltedPanoramaStandsLevel();
    void whatIsOpenedNextIsNotTurned();
};

void tst_Levelling::aTiltedPanoramaStandsLevel_data()
{
    QTest::addColumn<double>("roll"); // degrees
    QTest::addColumn<double>("pitch");
    QTest::addColumn<bool>("bigEndian");
    QTest::newRow("by little") << 3.5 << -1.25 << true;
    QTest::newRow("by much") << 20.0 << -15.0 << false;
}

void tst_Levelling::aTiltedPanoramaStandsLevel()
{
    QFETCH(double, roll);
    QFETCH(double, pitch);
    QFETCH(bool, bigEndian);

    Player player;
    const QString path = player.folder() + QStringLiteral("/tilted.jpg");
    QVERIFY(panorama().save(path, nullptr, 100));
    QVERIFY(
        ImageFiles::write(path,
                          ImageFiles::withExif(ImageFiles::read(path),
                                               ImageFiles::sphericalExif(roll, pitch, bigEndian))));
    player.start({QStringLiteral("--demo"), path});

    const QImage expected = view(QGuiApplication::primaryScreen()->size(), pitch, roll);
    QTRY_VERIFY2_WITH_TIMEOUT(difference(grab(), expected) <= kTolerance,
                              qPrintable(QString::number(difference(grab(), expected))),
                              kDeadlineMs);
    // Each other sense and order of the angles would have shown.
    for (const auto &other : {std::pair(-pitch, roll), std::pair(pitch, -roll),
                              std::pair(roll, pitch), std::pair(0.0, 0.0)})
        QVERIFY(difference(view(expected.size(), other.first, other.second), expected)
                > 2 * kTolerance);
    player.exit(0);
    QCOMPARE(player.ending(), QStringLiteral("0"));
}

void tst_Levelling::whatIsOpenedNextIsNotTurned()
{
    Player player;
    const QString plain = player.folder() + QStringLiteral("/plain.jpg");
    const QString tilted = player.folder() + QStringLiteral("/tilted.jpg");
    QVERIFY(panorama().save(plain, nullptr, 100));
    QVERIFY(ImageFiles::write(tilted,
                              ImageFiles::withExif(ImageFiles::read(plain),
                                                   ImageFiles::sphericalExif(20, -15, true))));
    Clip film;
    film.framesPerSecond = 10;
    film.frames = 120;
    const QString filmPath = player.folder() + QStringLiteral("/film.mp4");
    QCOMPARE(ClipWriter::write(filmPath, film), QString());

    const QSize size = QGuiApplication::primaryScreen()->size();
    const QImage level = view(size, -15, 20);
    const QImage unturned = view(size, 0, 0);
    FilmOnScreen::start(player, {tilted});
    QTRY_VERIFY_WITH_TIMEOUT(difference(grab(), level) <= kTolerance, kDeadlineMs);
    player.open(plain);
    QTRY_VERIFY_WITH_TIMEOUT(difference(grab(), unturned) <= kTolerance, kDeadlineMs);
    player.open(tilted);
    QTRY_VERIFY_WITH_TIMEOUT(difference(grab(), level) <= kTolerance, kDeadlineMs);
    player.open(filmPath);
    QCOMPARE(FilmOnScreen::watch(film), QString());
    QCOMPARE(FilmOnScreen::end(player), QStringLiteral("0"));
}

QTEST_MAIN(tst_Levelling)
#include "tst_Levelling.moc"
