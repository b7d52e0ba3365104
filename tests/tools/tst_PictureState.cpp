#include "PictureState.h"

#include <QImage>
#include <QtTest>

Q_DECLARE_METATYPE(PictureState)

namespace {

constexpr int kSide = 100;

/// A square whose pixels go through `colours` shades, none of them grey or black, below `percent`
/// lines of one colour.
QImage shades(int colours, int percent = 0, const QColor &above = {})
{
    QImage image(kSide, kSide, QImage::Format_RGB32);
    for (int i = 0; i < kSide * kSide; ++i) {
        const int shade = i % colours;
        image.setPixelColor(i % kSide, i / kSide,
                            i / kSide < percent ? above : QColor(200, shade / 256, shade % 256));
    }
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
    const QColor lighter(129, 129, 129);
    QImage alphas(kSide, kSide, QImage::Format_ARGB32);
    for (int i = 0; i < kSide * kSide; ++i)
        alphas.setPixelColor(i % kSide, i / kSide, QColor(200, 0, 0, i % 256));
    const QImage padded = shades(64).convertToFormat(QImage::Format_RGB888).copy(0, 0, 99, 99);
    const auto row = [](const char *name, const QImage &grab, PictureState expected) {
        QTest::newRow(name) << grab << expected;
    };
    row("no image", {}, PictureState::Empty);
    row("all of one colour", shades(1), PictureState::Empty);
    row("a thin strip on black", shades(1000, 91, Qt::black), PictureState::Empty);
    row("a picture on black", shades(1000, 89, Qt::black), PictureState::Picture);
    row("all grey", shades(1000, 100, grey), PictureState::Placeholder);
    row("31 % grey", shades(1000, 31, grey), PictureState::Placeholder);
    row("30 % grey", shades(1000, 30, grey), PictureState::Picture);
    row("a grey one step lighter", shades(1000, 50, lighter), PictureState::Picture);
    row("63 colours", shades(63), PictureState::Empty);
    row("64 colours", shades(64), PictureState::Picture);
    row("24 bits a pixel, lines padded", padded, PictureState::Picture);
    row("alpha is no colour", alphas, PictureState::Empty);
}

void tst_PictureState::tellsAPictureFromWhatStandsInForIt()
{
    QFETCH(QImage, grab);
    QFETCH(PictureState, expected);
    QCOMPARE(judge(grab), expected);
}

QTEST_APPLESS_MAIN(tst_PictureState)
#include "tst_PictureState.moc"
