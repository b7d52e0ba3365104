#include "ClipWriter.h"
#include "FrameCode.h"
#include "WarningsFail.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

Q_DECLARE_METATYPE(Clip)

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
    void aFilmHasTheNumbersAndColours_data();
    void aFilmHasTheNumbersAndColours();
};

void tst_FrameCode::theNumberAndTheColoursAreFoundInAView_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QSize>("window");
    QTest::addColumn<int>("number");

    int number = 0;
    for (const QSize &window : {QSize(640, 480), QSize(1000, 600), QSize(1280, 720)}) {
        for (const QSize &picture : {QSize(640, 320), QSize(1920, 960), QSize(3840, 1920)}) {
            QTest::addRow("%d of %d", window.width(), picture.width())
                << picture << window << number;
            number = number ? FrameCode::kLargestNumber - number / 3 : FrameCode::kLargestNumber;
        }
    }
}

void tst_FrameCode::theNumberAndTheColoursAreFoundInAView()
{
    QFETCH(QSize, picture);
    QFETCH(QSize, window);
    QFETCH(int, number);

    const QImage screen = view(FrameCode::frame(picture, number), window);
    QCOMPARE(FrameCode::read(screen), std::optional<int>(number));
    QCOMPARE(FrameCode::colourError(screen, 90), 0);
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
    // A wrong place shows: the first patch's colour stands where the last one is looked for.
    QImage swapped = FrameCode::frame({1024, 512}, 0).mirrored(true, true);
    QVERIFY(FrameCode::colourError(view(swapped, {640, 480}), 90) > 100);
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

void tst_FrameCode::aFilmHasTheNumbersAndColours_data()
{
    QTest::addColumn<Clip>("clip");
    QTest::addColumn<QString>("name");

    Clip clip;
    clip.frames = 5;
    clip.firstNumber = 1000;
    clip.toneHz = 440;
    QTest::newRow("H.264") << clip << "film.mp4";
    clip.codec = Clip::Vp9;
    QTest::newRow("VP9") << clip << "film.webm";
    clip.codec = Clip::Hevc;
    clip.matrix = Clip::Bt709;
    QTest::newRow("HEVC in BT.709") << clip << "film.mkv";
    clip.fullRange = true;
    QTest::newRow("HEVC in full range") << clip << "film.mov";
}

void tst_FrameCode::aFilmHasTheNumbersAndColours()
{
    QFETCH(Clip, clip);
    QFETCH(QString, name);

    const QTemporaryDir folder;
    const QString path = folder.filePath(name);
    QCOMPARE(ClipWriter::write(path, clip), QString());
    QProcess decoder;
    const QString command = QStringLiteral("-v error -i %1 -f rawvideo -pix_fmt bgra -").arg(path);
    decoder.start(QStringLiteral("ffmpeg"), command.split(QLatin1Char(' ')));
    QVERIFY(decoder.waitForFinished());
    const QByteArray pixels = decoder.readAllStandardOutput();
    const int frameSize = clip.size.width() * clip.size.height() * 4;
    QCOMPARE(pixels.size(), clip.frames * frameSize);
    for (int i = 0; i < clip.frames; ++i) {
        const QImage frame(reinterpret_cast<const uchar *>(pixels.constData())
                               + std::ptrdiff_t(i) * frameSize,
                           clip.size.width(), clip.size.height(), QImage::Format_RGB32);
        const QImage screen = view(frame, {640, 480});
        QCOMPARE(FrameCode::read(screen), std::optional<int>(clip.firstNumber + i));
        const int error = FrameCode::colourError(screen, 90);
        QVERIFY2(error <= 3, qPrintable(QString::number(error)));
    }
}

QTEST_GUILESS_MAIN(tst_FrameCode)
#include "tst_FrameCode.moc"
