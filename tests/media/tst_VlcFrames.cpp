#include "ClipWriter.h"
#include "FrameCode.h"
#include "VlcOptions.h"
#include "VlcStage.h"
#include "WarningsFail.h"

#include <QGuiApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

namespace {

constexpr int kColourTolerance = 6;

bool isBasicLoop()
{
    return qgetenv("QSG_RENDER_LOOP") == "basic";
}

/// A picture in which no row and no column can be missing or blended unseen.
QImage noise(const QSize &size)
{
    QRandomGenerator random(1);
    QImage picture(size, QImage::Format_Grayscale8);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            picture.scanLine(y)[x] = random.bounded(2) ? 255 : 0;
    }
    return picture;
}

/// The largest difference between the pixels of two pictures; 256 if their sizes differ.
int pictureError(const QImage &left, const QImage &right)
{
    if (left.size() != right.size())
        return 256;
    int error = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QColor a = left.pixelColor(x, y);
            const QColor b = right.pixelColor(x, y);
            error = std::max({error, std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                              std::abs(a.blue() - b.blue())});
        }
    }
    return error;
}

} // namespace

/// The pictures that libVLC's frames leave in the texture.
class tst_VlcFrames : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase();
    void framesArriveByEveryModeAndRoute_data();
    void framesArriveByEveryModeAndRoute();
    void thePictureIsNeitherScaledNorCropped_data();
    void thePictureIsNeitherScaledNorCropped();
    void aHugePictureIsShown();
    void aStreamMayChangeItsSize();
    void unusualStreamsArrive_data();
    void unusualStreamsArrive();
    void theItemDrawsTheVideoItself();

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }

    QTemporaryDir m_folder;
    QString m_film;
};

void tst_VlcFrames::initTestCase()
{
    VlcOptions::process().disableAudio = true;
    m_film = path("film.mp4");
    QCOMPARE(ClipWriter::write(m_film), QString());
}

void tst_VlcFrames::framesArriveByEveryModeAndRoute_data()
{
    QTest::addColumn<int>("transfer");
    QTest::addColumn<int>("route"); ///< -1: the program's own choice
    QTest::addColumn<QString>("text");
    const QString buffer = QStringLiteral("Pixel Buffer Object");
    const QString cpu = QStringLiteral("CPU");
    QTest::newRow("what fits the driver") << 0 << -1 << buffer;
    QTest::newRow("mapped textures are not there") << 1 << -1 << buffer;
    const std::initializer_list<int> routes = {RouteQueuedPaint, RouteDecoderThread,
                                               RouteWorkerThread};
    for (const int route : routes) {
        QTest::addRow("pixel buffer, route %d", route) << 2 << route << buffer;
        QTest::addRow("main memory, route %d", route) << 3 << route << cpu;
    }
    if (isBasicLoop()) { // the thread of the queued call is the one that draws
        QTest::newRow("pixel buffer, queued call") << 2 << int(RouteQueuedSlot) << buffer;
        QTest::newRow("main memory, queued call") << 3 << int(RouteQueuedSlot) << cpu;
    }
}

void tst_VlcFrames::framesArriveByEveryModeAndRoute()
{
    QFETCH(int, transfer);
    QFETCH(int, route);
    VlcStage stage(transfer);
    if (route >= 0)
        stage.player->setUploadRoute(UploadRoute(route));
    stage.show();
    QTEST(stage.player->textureTransfer(), "text");
    stage.playFile(m_film);
    for (const int least : {1, 10, 20})
        QVERIFY(stage.waitForFrame([least](int number) { return number >= least; }));
    const int texture = stage.player->textureId();
    QCOMPARE(stage.texture().size(), QSize(640, 320));
    QVERIFY(FrameCode::flatColourError(stage.texture()) <= kColourTolerance);
    QTRY_VERIFY(qAbs(stage.player->fps() - 25) <= 10);
    QVERIFY(stage.waitForState(OrbuiQuickVideoPlayerVlc::Ended));
    QCOMPARE(stage.player->textureId(), texture);
}

void tst_VlcFrames::thePictureIsNeitherScaledNorCropped_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize &size : {QSize(1, 1), QSize(3, 5), QSize(17, 9), QSize(322, 182),
                              QSize(640, 320), QSize(1921, 1081)})
        QTest::addRow("%dx%d", size.width(), size.height()) << size;
}

void tst_VlcFrames::thePictureIsNeitherScaledNorCropped()
{
    QFETCH(QSize, size);
    const QImage picture = noise(size);
    const QString film = writeStill(path("still.mkv"), picture, 25);
    QVERIFY(!film.isEmpty());
    for (const int transfer : {2, 3}) {
        VlcStage stage(transfer);
        stage.show();
        stage.playFile(film);
        QTRY_COMPARE(stage.texture().size(), size);
        QTRY_VERIFY(pictureError(stage.texture(), picture) <= 2);
    }
}

void tst_VlcFrames::aHugePictureIsShown()
{
    Clip clip;
    clip.size = {8192, 4096};
    clip.frames = 2;
    QCOMPARE(ClipWriter::write(path("huge.mp4"), clip), QString());
    VlcStage stage;
    stage.show();
    stage.playFile(path("huge.mp4"));
    QTRY_COMPARE(stage.texture().size(), clip.size);
    QTRY_VERIFY(FrameCode::flatColourError(stage.texture()) <= kColourTolerance);
}

void tst_VlcFrames::aStreamMayChangeItsSize()
{
    Clip clip;
    clip.frames = 25;
    QCOMPARE(ClipWriter::write(path("first.ts"), clip), QString());
    clip.size = {1008, 504}; // no whole blocks
    clip.firstNumber = 1000;
    QCOMPARE(ClipWriter::write(path("second.ts"), clip), QString());
    QFile joined(path("joined.ts"));
    QVERIFY(joined.open(QIODevice::WriteOnly));
    for (const char *part : {"first.ts", "second.ts"}) {
        QFile file(path(part));
        QVERIFY(file.open(QIODevice::ReadOnly));
        joined.write(file.readAll());
    }
    joined.close();
    VlcStage stage;
    stage.show();
    stage.playFile(joined.fileName());
    QVERIFY(stage.waitForFrame([](int number) { return number < 1000; }));
    QCOMPARE(stage.texture().size(), QSize(640, 320));
    QVERIFY(stage.waitForFrame([](int number) { return number >= 1000; }));
    QCOMPARE(stage.texture().size(), QSize(1008, 512));
    QVERIFY(FrameCode::flatColourError(stage.texture()) <= kColourTolerance);
}

void tst_VlcFrames::unusualStreamsArrive_data()
{
    QTest::addColumn<QString>("pixelFormat");
    QTest::addColumn<QString>("options");
    QTest::newRow("10 bits") << QStringLiteral("yuv420p10le") << QString();
    QTest::newRow("full colour resolution") << QStringLiteral("yuv444p") << QString();
    QTest::newRow("frames of varying length")
        << QStringLiteral("yuv420p")
        << QStringLiteral("-vsync|vfr|-bsf:v|setts=ts=PTS+if(mod(N\\,3)\\,0\\,200)");
}

void tst_VlcFrames::unusualStreamsArrive()
{
    Clip clip;
    QFETCH(QString, pixelFormat);
    QFETCH(QString, options);
    clip.pixelFormat = pixelFormat;
    if (!options.isEmpty())
        clip.options = options.split(QLatin1Char('|'));
    QCOMPARE(ClipWriter::write(path("unusual.mkv"), clip), QString());
    VlcStage stage;
    stage.show();
    stage.playFile(path("unusual.mkv"));
    QVERIFY(stage.waitForFrame([](int number) { return number >= 10; }));
    QVERIFY(FrameCode::flatColourError(stage.texture()) <= kColourTolerance);
}

void tst_VlcFrames::theItemDrawsTheVideoItself()
{
    VlcStage stage;
    stage.window.resize(640, 320);
    stage.player->setNativeSize(true);
    stage.player->setPaintTexture(true);
    stage.show();
    stage.playFile(m_film);
    QVERIFY(stage.waitForFrame([](int number) { return number >= 5; }));
    stage.player->pause();
    QVERIFY(stage.waitForState(OrbuiQuickVideoPlayerVlc::Paused));
    stage.player->update();
    // A last frame may come after the pause: once they agree neither is asked again.
    QVERIFY(QTest::qWaitFor(
        [&stage] { return VlcStage::numberIn(stage.window.grabWindow()) == stage.frameNumber(); }));
    QVERIFY(FrameCode::flatColourError(stage.window.grabWindow()) <= kColourTolerance);
}

int main(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QGuiApplication application(argc, argv);
    tst_VlcFrames test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_VlcFrames.moc"
