#include "FrameCode.h"
#include "WarningsFail.h"

#include <QtTest>

#include <cmath>

namespace {

/// A perspective view to the middle with 90 degrees over the height, each pixel traced back to the
/// equirectangular picture.
QImage view(const QImage &picture, const QSize &window)
{
    QImage image(window, QImage::Format_RGB32);
    const double focal = window.height() / 2.0;
    for (int y = 0; y < window.height(); ++y) {
        for (int x = 0; x < window.width(); ++x) {
            const double right = x + 0.5 - window.width() / 2.0;
            const double up = window.height() / 2.0 - y - 0.5;
            const double longitude = std::atan2(right, focal);
            const double latitude = std::atan2(up, std::hypot(right, focal));
            image.setPixel(x, y,
                           picture.pixel(int((longitude / M_PI / 2 + 0.5) * picture.width()),
                                         int((0.5 - latitude / M_PI) * picture.height())));
        }
    }
    return image;
}

/// The upper lines of one picture over the rest of another.
QImage torn(const QImage &upper, const QImage &lower, int line)
{
    QImage image = lower;
    for (int y = 0; y < line; ++y)
        std::copy_n(upper.constScanLine(y), upper.bytesPerLine(), image.scanLine(y));
    return image;
}

const std::optional<int> kNone;

} // namespace

class tst_FrameCode : public WarningsFail
{
    Q_OBJECT

private slots:
    void theNumberAndTheColoursAreFoundInAView_data();
    void theNumberAndTheColoursAreFoundInAView();
    void theColoursAreThoseOfTheBars();
    void aPictureOfTwoFramesOrNoneHasNoNumber();
};

void tst_FrameCode::theNumberAndTheColoursAreFoundInAView_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QSize>("window");
    for (const QSize &window : {QSize(640, 480), QSize(1000, 600), QSize(1280, 720)}) {
        for (const QSize &picture : {QSize(640, 320), QSize(1920, 960), QSize(3840, 1920)})
            QTest::addRow("%d of %d", window.width(), picture.width()) << picture << window;
    }
}

void tst_FrameCode::theNumberAndTheColoursAreFoundInAView()
{
    QFETCH(QSize, picture);
    QFETCH(QSize, window);
    for (const int number : {0, 0x1234, 0xa5c3, FrameCode::kLargestNumber}) {
        const QImage frame = FrameCode::frame(picture, number);
        const QImage screen = view(frame, window);
        QCOMPARE(FrameCode::read(screen), std::optional<int>(number));
        QCOMPARE(FrameCode::colourError(screen, 90), 0);
        QCOMPARE(FrameCode::flatColourError(frame), 0);
    }
}

void tst_FrameCode::theColoursAreThoseOfTheBars()
{
    QVector<QRgb> colours;
    const QVector<FrameCode::Patch> patches = FrameCode::patches();
    for (const FrameCode::Patch &patch : patches)
        colours.append(patch.colour.rgb());
    QCOMPARE(colours,
             QVector<QRgb>({0xffbfbfbf, 0xffbfbf00, 0xff00bfbf, 0xff00bf00, 0xffbf00bf, 0xffbf0000,
                            0xff0000bf, 0xff000000}));
    // What is not where it should be shows, be it a few degrees.
    const QImage frame = FrameCode::frame({1024, 512}, 0);
    QVERIFY(FrameCode::colourError(view(frame.mirrored(true, false), {640, 480}), 90) > 100);
    QVERIFY(FrameCode::colourError(view(frame, {640, 480}), 98) > 100);
    QVERIFY(FrameCode::colourError(view(frame, {640, 480}), 82) > 100);
}

void tst_FrameCode::aPictureOfTwoFramesOrNoneHasNoNumber()
{
    const QImage one = FrameCode::frame({1024, 512}, 0x1234);
    const QImage other = FrameCode::frame({1024, 512}, 0x4321);
    QCOMPARE(FrameCode::read(one), std::optional<int>(0x1234));
    for (const int line : {254, 256, 258})
        QCOMPARE(FrameCode::read(torn(one, other, line)), kNone);
    for (const auto colour : {Qt::black, Qt::gray, Qt::white}) {
        QImage flat = other;
        flat.fill(colour);
        QCOMPARE(FrameCode::read(flat), kNone);
        QCOMPARE(FrameCode::read(torn(one, flat, 256)), kNone);
    }
}

QTEST_GUILESS_MAIN(tst_FrameCode)
#include "tst_FrameCode.moc"
