#include "FrameTransfer.h"

#include "FrameTurn.h"
#include "VlcStream.h"
#include "WarningsFail.h"

#include <QtTest>

#include <numeric>
#include <vector>

namespace {

/// A driver that writes down what it is told; texture names start at 11, buffers at 21.
struct Driver
{
    QStringList calls;
    std::vector<char> memory; ///< what is mapped next
    bool mapsNothing = false;

    void call(const char *format, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3)
    {
        va_list arguments;
        va_start(arguments, format);
        calls += QString::vasprintf(format, arguments);
        va_end(arguments);
    }

    void *map() { return mapsNothing ? nullptr : memory.data(); }

    /// The calls since the last question.
    QString told()
    {
        const QString text = calls.join(QLatin1String("; "));
        calls.clear();
        return text;
    }
};

Driver &driver()
{
    static Driver instance;
    return instance;
}

GlEntryPoints recorder()
{
    GlEntryPoints gl{};
    gl.genTextures = [](GLsizei n, GLuint *names) { std::iota(names, names + n, 11); };
    gl.genBuffers = [](GLsizei n, GLuint *names) { std::iota(names, names + n, 21); };
    gl.deleteTextures = [](GLsizei n, const GLuint *names) {
        driver().call("delete %d textures from %u", n, names[0]);
    };
    gl.deleteBuffers = [](GLsizei n, const GLuint *names) {
        driver().call("delete %d buffers from %u", n, names[0]);
    };
    gl.bindTexture = [](GLenum, GLuint name) { driver().call("texture %u", name); };
    gl.texParameteri = [](GLenum, GLenum parameter, GLint value) {
        driver().call("set %x %x", parameter, unsigned(value));
    };
    gl.texParameterf = [](GLenum, GLenum parameter, GLfloat value) {
        driver().call("set %x %x", parameter, unsigned(value));
    };
    gl.texImage2D = [](GLenum, GLint, GLint internal, GLsizei w, GLsizei h, GLint, GLenum format,
                       GLenum type, const void *pixels) {
        driver().call("image %x %dx%d %x %x%s", unsigned(internal), w, h, format, type,
                      pixels ? " filled" : "");
    };
    gl.texSubImage2D = [](GLenum, GLint, GLint x, GLint y, GLsizei w, GLsizei h, GLenum format,
                          GLenum type, const void *pixels) {
        driver().call("copy %d,%d %dx%d %x %x from %s", x, y, w, h, format, type,
                      pixels ? "memory" : "buffer");
        if (pixels)
            driver().calls.last() += QString::number(*static_cast<const quint32 *>(pixels), 16);
    };
    gl.activeTexture = [](GLenum unit) { driver().call("unit %u", unit - GL_TEXTURE0); };
    gl.bindBuffer = [](GLenum target, GLuint name) { driver().call("%x buffer %u", target, name); };
    gl.bufferData = [](GLenum, qopengl_GLsizeiptr bytes, const void *data, GLenum usage) {
        driver().call("new storage %d %x%s", int(bytes), usage, data ? " filled" : "");
    };
    gl.mapBuffer = [](GLenum, GLenum access) {
        driver().call("map %x", access);
        return driver().map();
    };
    gl.unmapBuffer = [](GLenum) -> GLboolean {
        driver().call("unmap");
        return 1;
    };
    gl.syncTexture = [](GLuint name) { driver().call("sync %u", name); };
    gl.unmapTexture2D = [](GLuint name, GLint level) { driver().call("unmap %u,%d", name, level); };
    gl.mapTexture2D = [](GLuint name, GLint level, GLbitfield access, GLint *, GLenum *) {
        driver().call("map %u,%d %x", name, level, access);
        return driver().map();
    };
    return gl;
}

} // namespace

class tst_FrameTransfer : public WarningsFail
{
    Q_OBJECT

private slots:
    void init();
    void theModeIsTheBestThatIsAskedForAndThere_data();
    void theModeIsTheBestThatIsAskedForAndThere();
    void theDriverIsToldInThisOrder_data();
    void theDriverIsToldInThisOrder();
    void theDecoderNeverGetsTheBufferThatIsUploaded();
    void theSizeIsThatOfThePictureWithoutPadding_data();
    void theSizeIsThatOfThePictureWithoutPadding();
};

void tst_FrameTransfer::init()
{
    WarningsFail::init();
    driver() = {};
    driver().memory.resize(96);
}

void tst_FrameTransfer::theModeIsTheBestThatIsAskedForAndThere_data()
{
    QTest::addColumn<int>("requested");
    QTest::addColumn<QString>("withAll");
    QTest::addColumn<QString>("withoutMapping");
    QTest::addColumn<QString>("onOpenGlEs");
    const QString map = QStringLiteral("Intel Map Texture");
    const QString buffer = QStringLiteral("Pixel Buffer Object");
    const QString cpu = QStringLiteral("CPU");
    QTest::newRow("automatic") << 0 << map << buffer << cpu;
    QTest::newRow("map texture") << 1 << map << buffer << cpu;
    QTest::newRow("pixel buffer") << 2 << buffer << buffer << cpu;
    QTest::newRow("main memory") << 3 << cpu << cpu << cpu;
    QTest::newRow("a number of no mode") << 99 << buffer << buffer << cpu;
}

void tst_FrameTransfer::theModeIsTheBestThatIsAskedForAndThere()
{
    QFETCH(int, requested);
    QTEST(transferModeText(chooseTransferMode(requested, true, true)), "withAll");
    QTEST(transferModeText(chooseTransferMode(requested, false, true)), "withoutMapping");
    QTEST(transferModeText(chooseTransferMode(requested, false, false)), "onOpenGlEs");
    QVERIFY(transferModeText(TransferAuto).isEmpty());
}

void tst_FrameTransfer::theDriverIsToldInThisOrder_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("create");
    QTest::addColumn<QString>("allocate");
    // %1 is the first pixel, %2 the buffer's texture, %3 its pixel buffer.
    QTest::addColumn<QString>("decode");
    QTest::addColumn<QString>("upload");
    QTest::addColumn<QString>("release");

    // GL_LINEAR for both filters, GL_CLAMP_TO_EDGE for both directions.
    const QString set = QStringLiteral(
        "set 2801 2601; set 2800 2601; set 2802 812f; set 2803 812f");
    const QString black = QStringLiteral("image 8058 1x1 1908 1401 filled; ") + set;
    const QString room = QStringLiteral("image 8058 6x4 1908 1401; ") + set;
    const QString linear = QStringLiteral("set 83ff 1; ") + room;
    QTest::newRow("map texture")
        << int(TransferIntelMapTexture)
        << QStringLiteral("texture 11; %1; texture 12; %1; texture 0").arg(black)
        << QStringLiteral("texture 11; %1; texture 12; %1; texture 0").arg(linear)
        << QStringLiteral("map %2,0 2; unmap %2,0")
        << QStringLiteral("unit 0; texture %2; sync %2; texture 0")
        << QStringLiteral("delete 2 textures from 11");
    QTest::newRow("pixel buffer")
        << int(TransferPixelBufferObject) << QStringLiteral("texture 11; %1; texture 0").arg(black)
        << QStringLiteral("texture 11; %1; 88ec buffer 21; new storage 96 88e0; "
                          "88ec buffer 22; new storage 96 88e0; 88ec buffer 0; texture 0")
               .arg(room)
        << QStringLiteral("88ec buffer %3; new storage 96 88e0; map 88b9; unmap; 88ec buffer 0")
        << QStringLiteral("unit 0; texture 11; 88ec buffer %3; "
                          "copy 0,0 6x4 1908 1401 from buffer; 88ec buffer 0; texture 0")
        << QStringLiteral("delete 1 textures from 11; delete 2 buffers from 21");
    const auto unsized = [](QString text) { // a format that OpenGL ES 2 has too
        return text.replace(QLatin1String("image 8058"), QLatin1String("image 1908"));
    };
    QTest::newRow("main memory")
        << int(TransferCpu) << QStringLiteral("texture 11; %1; texture 0").arg(unsized(black))
        << QStringLiteral("texture 11; %1; texture 0").arg(unsized(room)) << QString()
        << QStringLiteral("unit 0; texture 11; copy 0,0 6x4 1908 1401 from memory%1; texture 0")
        << QStringLiteral("delete 1 textures from 11");
}

void tst_FrameTransfer::theDriverIsToldInThisOrder()
{
    QFETCH(int, mode);
    QFETCH(QString, decode);
    QFETCH(QString, upload);
    const bool mapped = mode != TransferCpu;
    const auto transfer = FrameTransfer::make(TransferMode(mode), recorder());
    QCOMPARE(transfer->create(), 11U);
    QTEST(driver().told(), "create");
    QCOMPARE(transfer->decodesInContext(), mapped);
    transfer->allocate({6, 4});
    QTEST(driver().told(), "allocate");

    const auto filledIn = [](QString text, const QString &pixel, int buffer) {
        return text.replace(QLatin1String("%1"), pixel)
            .replace(QLatin1String("%2"), QString::number(11 + buffer))
            .replace(QLatin1String("%3"), QString::number(21 + buffer));
    };
    if (!mapped) { // opaque black before the first frame
        transfer->upload(1);
        QCOMPARE(driver().told(), filledIn(upload, QStringLiteral("ff000000"), 1));
    }
    const QString pixels[] = {QStringLiteral("ff112233"), QStringLiteral("ff445566")};
    for (const int buffer : {1, 0}) {
        auto *frame = static_cast<quint32 *>(transfer->beginFrame(buffer));
        if (mapped)
            QCOMPARE(static_cast<void *>(frame), static_cast<void *>(driver().memory.data()));
        frame[0] = frame[23] = pixels[buffer].toUInt(nullptr,
                                                     16); // the first and last of the frame
        transfer->endFrame(buffer);
        QCOMPARE(driver().told(), filledIn(decode, {}, buffer));
    }
    for (const int buffer : {0, 1}) {
        QCOMPARE(transfer->upload(buffer),
                 GLuint(mode == TransferIntelMapTexture ? 11 + buffer : 11));
        QCOMPARE(driver().told(), filledIn(upload, pixels[buffer], buffer));
    }
    driver().mapsNothing = true;
    QCOMPARE(!transfer->beginFrame(1), mapped);
    driver().told();
    transfer->release();
    QTEST(driver().told(), "release");
}

/// Every order of the steps of the two threads, up to a length: no buffer is filled and uploaded at
/// once, and when all is quiet the last frame has been uploaded.
void tst_FrameTransfer::theDecoderNeverGetsTheBufferThatIsUploaded()
{
    constexpr unsigned kSteps = 16;
    constexpr int kNone = -1;
    for (unsigned order = 0; order < 1U << kSteps; ++order) {
        FrameTurn turn;
        int holds[2] = {0, 0}; // the number of the frame in each buffer
        int frames = 0;
        int shown = 0;
        int filling = kNone;
        int uploading = kNone;
        bool asked = false;
        const auto decode = [&] {
            if (filling == kNone) {
                filling = turn.beginFrame();
                return filling != uploading;
            }
            holds[filling] = ++frames;
            filling = kNone;
            asked = turn.endFrame() || asked;
            return true;
        };
        const auto upload = [&] {
            if (uploading != kNone) {
                shown = holds[uploading];
                uploading = kNone;
                asked = turn.endUpload() || asked;
            } else if (asked) {
                asked = false;
                uploading = turn.beginUpload().value_or(kNone);
                return uploading != kNone && uploading != filling;
            }
            return true;
        };
        for (unsigned step = 0; step < kSteps; ++step)
            QVERIFY2((order >> step & 1U) ? decode() : upload(),
                     qPrintable(QString::number(order)));
        if (filling != kNone)
            QVERIFY(decode());
        while (uploading != kNone || asked)
            QVERIFY(upload());
        QCOMPARE(shown, frames);
    }
}

void tst_FrameTransfer::theSizeIsThatOfThePictureWithoutPadding_data()
{
    QTest::addColumn<QSize>("offered");
    QTest::addColumn<QSize>("told");
    QTest::addColumn<QSize>("size");
    QTest::newRow("blocks") << QSize(336, 194) << QSize(322, 182) << QSize(322, 182);
    QTest::newRow("two lines") << QSize(3840, 1922) << QSize(3840, 1920) << QSize(3840, 1920);
    QTest::newRow("a single pixel") << QSize(32, 34) << QSize(1, 1) << QSize(1, 1);
    QTest::newRow("not known") << QSize(640, 320) << QSize(0, 0) << QSize(640, 320);
    QTest::newRow("a larger stream's") << QSize(640, 320) << QSize(1280, 640) << QSize(640, 320);
    QTest::newRow("a smaller stream's") << QSize(1280, 640) << QSize(640, 320) << QSize(1280, 640);
}

void tst_FrameTransfer::theSizeIsThatOfThePictureWithoutPadding()
{
    QFETCH(QSize, offered);
    QFETCH(QSize, told);
    QTEST(sizeWithoutPadding(offered, told), "size");
}

QTEST_GUILESS_MAIN(tst_FrameTransfer)
#include "tst_FrameTransfer.moc"
