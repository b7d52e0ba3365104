#include "PictureState.h"

#include <QImage>
#include <QtTest>

Q_DECLARE_METATYPE(PictureState)

namespace {

constexpr int kSide = 100;

/// The first `percent` lines of a square, counted from the top.
QRect topPart(int percent)
{
    return {0, 0, kSide, percent};
}

void fill(QImage &image, const QRect &part, const QColor &colour)
{
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x)
            image.setPixelColor(x, y, colour);
    }
}

/// A square whose pixels go through `colours` shades, none of them grey or black.
QImage shades(int colours, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(kSide, kSide, format);
    for (int i = 0; i < kSide * kSide; ++i) {
        const int shade = i % colours;
        image.setPixelColor(i % kSide, i / kSide, QColor(200, shade / 256, shade % 256));
    }
    return image;
}

QImage shadesBelow(int percent, const QColor &colour)
{
    QImage image = shades(1000);
    fill(image, topPart(percent), colour);
    return image;
}

} // namespace

class tst_PictureState : public QObject
{
    Q_OBJECT

private slots:
    void tellsAPictureFromWhatStandsInForIt_data();
    void tellsAPictureFromWhatStandsInForIt();
};

void tst_PictureState::tellsAPictureFromWhatStandsInForIt_data()
{
    QTest::addColumn<QImage>("grab");
    QTest::addColumn<PictureState>("expected");

    const QColor grey(128, 128, 128);
    QImage startBox = shadesBelow(100, grey);
    fill(startBox, {40, 40, 20, 20}, QColor(64, 64, 64));

    QTest::newRow("no image") << QImage() << PictureState::Empty;
    QTest::newRow("all black") << shadesBelow(100, Qt::black) << PictureState::Empty;
    QTest::newRow("all of another colour") << shadesBelow(100, Qt::red) << PictureState::Empty;
    QTest::newRow("a thin strip on black") << shadesBelow(91, Qt::black) << PictureState::Empty;
    QTest::newRow("a picture on black") << shadesBelow(89, Qt::black) << PictureState::Picture;

    QTest::newRow("the grey ground with its box") << startBox << PictureState::Placeholder;
    QTest::newRow("all grey") << shadesBelow(100, grey) << PictureState::Placeholder;
    QTest::newRow("31 % grey") << shadesBelow(31, grey) << PictureState::Placeholder;
    QTest::newRow("30 % grey") << shadesBelow(30, grey) << PictureState::Picture;
    QTest::newRow("a grey one step lighter")
        << shadesBelow(50, QColor(129, 129, 129)) << PictureState::Picture;

    QTest::newRow("63 colours") << shades(63) << PictureState::Empty;
    QTest::newRow("64 colours") << shades(64) << PictureState::Picture;
    QTest::newRow("24 bits a pixel, lines padded")
        << shades(64, QImage::Format_RGB888).copy(0, 0, 99, 99) << PictureState::Picture;
    QTest::newRow("alpha is no colour") << [] {
        QImage image(kSide, kSide, QImage::Format_ARGB32);
        for (int i = 0; i < kSide * kSide; ++i)
            image.setPixelColor(i % kSide, i / kSide, QColor(200, 0, 0, i % 256));
        return image;
    }() << PictureState::Empty;
}

void tst_PictureState::tellsAPictureFromWhatStandsInForIt()
{
    QFETCH(QImage, grab);
    QFETCH(PictureState, expected);
    QCOMPARE(judge(grab), expected);
}

QTEST_APPLESS_MAIN(tst_PictureState)
#include "tst_PictureState.moc"
