#include "FeedBlock.h"
#include "ProcessLevel.h"
#include "SharedMemoryManager.h"
#include "WarningsFail.h"

#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QtTest>

#include <cstring>
#include <memory>

Q_DECLARE_METATYPE(QSurfaceFormat::RenderableType)

namespace {

constexpr QSize kSize(12, 5);
constexpr int kRecords = 3;
constexpr auto kDesktop = QSurfaceFormat::OpenGL; // with pixel buffers
constexpr auto kEmbedded = QSurfaceFormat::OpenGLES;

/// What draws the feed in place of the scene, on the thread of the test.
struct Scene
{
    explicit Scene(QSurfaceFormat::RenderableType type = kDesktop)
    {
        QSurfaceFormat format;
        format.setRenderableType(type);
        surface.setFormat(format);
        surface.create();
        context.setFormat(format);
        context.create();
        context.makeCurrent(&surface);
    }

    QOffscreenSurface surface;
    QOpenGLContext context;
};

/// A picture in which no two neighbours and no two numbers look alike.
QImage picture(int number, const QSize &size = kSize)
{
    QImage image(size, QImage::Format_RGBA8888);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixelColor(x, y, QColor(20 * x, 50 * y, 37 * number % 256, 255 - x));
    }
    return image;
}

QImage texels(int texture)
{
    QOpenGLFunctions *gl = QOpenGLContext::currentContext()->functions();
    GLuint framebuffer = 0;
    gl->glGenFramebuffers(1, &framebuffer);
    gl->glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    gl->glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, GLuint(texture),
                               0);
    QImage image(kSize, QImage::Format_RGBA8888);
    gl->glReadPixels(0, 0, kSize.width(), kSize.height(), GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
    gl->glDeleteFramebuffers(1, &framebuffer);
    return image;
}

} // namespace

/// The live feed's frames in a texture.
class tst_SharedMemoryManager : public WarningsFail
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void framesStandInTheTexture_data();
    void framesStandInTheTexture();
    void aFrameThatIsNotFetchedIsDroppedWithTheNext();
    void framesOfAnotherSizeAreSkipped();
    void aFrameTooLargeForATextureIsSkipped();
    void framesThatAreCutOffAreSkipped();
    void itEndsWhateverItWaitsFor_data();
    void itEndsWhateverItWaitsFor();
    void itStartsAgainWithAnotherContext();
    void withoutAContextOnlyTheNameIsTold();

private:
    void start(int padding = 0);
    FeedBlock::Record next();
    void publish(const FeedBlock::Record &record);
    QImage publishPicture();
    int slot() const { return (m_published - 1) % kRecords; } ///< of the last frame
    bool isTaken() const;
    bool isShown(const QImage &expected);

    std::unique_ptr<FeedBlock> m_block;
    std::unique_ptr<Scene> m_scene;
    std::unique_ptr<SharedMemoryManager> m_feed;
    int m_padding = 0;   ///< bytes behind a line
    int m_published = 0; ///< frames
};

void tst_SharedMemoryManager::init()
{
    WarningsFail::init();
    m_scene = std::make_unique<Scene>();
    m_published = 0;
}

void tst_SharedMemoryManager::cleanup()
{
    m_feed.reset();
    m_scene.reset();
    m_block.reset();
    WarningsFail::cleanup();
}

/// A feed up to its first frame, which is not shown.
void tst_SharedMemoryManager::start(int padding)
{
    m_padding = padding;
    m_published = 0;
    m_block.reset();
    m_block = std::make_unique<FeedBlock>("orbix-feed-test", kRecords, kSize, padding);
    m_feed = std::make_unique<SharedMemoryManager>(m_block->name());
    publishPicture();
    QTRY_VERIFY(m_feed->currentTexture() != 0);
}

/// The record of the next frame.
FeedBlock::Record tst_SharedMemoryManager::next()
{
    ++m_published;
    return m_block->record(slot(), quint64(m_published));
}

void tst_SharedMemoryManager::publish(const FeedBlock::Record &record)
{
    m_block->setRecord(slot(), record);
}

QImage tst_SharedMemoryManager::publishPicture()
{
    const FeedBlock::Record record = next();
    const QImage image = picture(m_published);
    uchar *line = m_block->pixels(slot());
    for (int y = 0; y < image.height(); ++y) {
        std::memcpy(line, image.constScanLine(y), std::size_t(image.bytesPerLine()));
        line += image.bytesPerLine() + m_padding;
    }
    publish(record);
    return image;
}

bool tst_SharedMemoryManager::isTaken() const
{
    return !m_block->isReady(slot());
}

bool tst_SharedMemoryManager::isShown(const QImage &expected)
{
    const int texture = m_feed->currentTexture();
    return texture != 0 && texels(texture) == expected;
}

void tst_SharedMemoryManager::framesStandInTheTexture_data()
{
    QTest::addColumn<QSurfaceFormat::RenderableType>("type");
    QTest::addColumn<int>("padding");
    QTest::newRow("through pixel buffers") << kDesktop << 0;
    QTest::newRow("through pixel buffers, padded lines") << kDesktop << 6;
    QTest::newRow("straight") << kEmbedded << 0;
    QTest::newRow("straight, padded lines") << kEmbedded << 6;
}

void tst_SharedMemoryManager::framesStandInTheTexture()
{
    QFETCH(QSurfaceFormat::RenderableType, type);
    QFETCH(int, padding);

    m_scene.reset();
    m_scene = std::make_unique<Scene>(type);
    start(padding);
    int contents = m_feed->contents();
    for (int i = 0; i < 2 * kRecords; ++i) {
        const QImage expected = publishPicture();
        QTRY_COMPARE(texels(m_feed->currentTexture()), expected);
        QVERIFY(m_feed->contents() != contents);
        contents = m_feed->contents();
    }
}

void tst_SharedMemoryManager::aFrameThatIsNotFetchedIsDroppedWithTheNext()
{
    start();
    const QImage before = publishPicture();
    QTRY_VERIFY(isShown(before));
    publishPicture();
    QTRY_VERIFY(isTaken());
    publishPicture();
    QTRY_VERIFY(isTaken());
    expectWarning(QStringLiteral("do not stand within its memory"));
    FeedBlock::Record empty = next();
    empty.offset = 0;
    publish(empty); // it is taken when the frames before have been dealt with
    QTRY_VERIFY(isTaken());
    QVERIFY(isShown(before));
    const QImage after = publishPicture();
    QTRY_VERIFY(isShown(after));
}

void tst_SharedMemoryManager::framesOfAnotherSizeAreSkipped()
{
    start();
    const QImage before = publishPicture();
    QTRY_VERIFY(isShown(before));
    expectWarning(QStringLiteral("frames of 4x5 pixels.*it began with another size"));
    FeedBlock::Record narrow = next();
    narrow.width = 4;
    publish(narrow);
    QTRY_VERIFY(isTaken());
    FeedBlock::Record flat = next();
    flat.height = 1;
    publish(flat);
    QTRY_VERIFY(isTaken());
    QVERIFY(isShown(before));
    const QImage after = publishPicture();
    QTRY_VERIFY(isShown(after));
}

void tst_SharedMemoryManager::aFrameTooLargeForATextureIsSkipped()
{
    constexpr int kHeight = 65535;
    expectWarning(QStringLiteral("frames of 1x65535 pixels.*no texture is that large"));
    m_block = std::make_unique<FeedBlock>("orbix-feed-test", kRecords, QSize(1, kHeight));
    m_feed = std::make_unique<SharedMemoryManager>(m_block->name());
    publish(next());
    QTRY_VERIFY(m_feed->currentTexture() == 0 && isTaken());
    publish(next());
    QTRY_VERIFY(isTaken());
    QCOMPARE(m_feed->currentTexture(), 0);
}

void tst_SharedMemoryManager::framesThatAreCutOffAreSkipped()
{
    // The header and the ring stay; the pixels lie on pages behind them.
    constexpr int kPage = 4096;
    const QSize large(kPage / 4, 3);
    m_block = std::make_unique<FeedBlock>("orbix-feed-test", kRecords, large);
    m_feed = std::make_unique<SharedMemoryManager>(m_block->name());
    QTRY_VERIFY(m_feed->currentTexture() == 0 && m_block->get<quint32>(0x84) != 0);
    m_block->resize(kPage);
    publish(next());
    QTRY_VERIFY(isTaken());
    QCOMPARE(m_feed->currentTexture(), 0);
    m_block->resize(m_block->size());
    publish(next());
    QTRY_VERIFY(m_feed->currentTexture() != 0);
    const int contents = m_feed->contents();
    m_block->resize(kPage);
    publish(next());
    QTRY_VERIFY(isTaken());
    QCOMPARE(m_feed->contents(), contents);
}

void tst_SharedMemoryManager::itEndsWhateverItWaitsFor_data()
{
    QTest::addColumn<bool>("hasBlock");
    QTest::addColumn<bool>("hasFrames");
    QTest::newRow("for the writer") << false << false;
    QTest::newRow("for the first frame") << true << false;
    QTest::newRow("for the next frame") << true << true;
}

void tst_SharedMemoryManager::itEndsWhateverItWaitsFor()
{
    QFETCH(bool, hasBlock);
    QFETCH(bool, hasFrames);

    // The driver keeps threads of its own.
    const int threads = ProcessLevel::now().threads;
    for (int i = 0; i < 20; ++i) {
        if (hasFrames) {
            start();
        } else {
            m_block.reset();
            if (hasBlock)
                m_block = std::make_unique<FeedBlock>("orbix-feed-test", kRecords, kSize);
            m_feed = std::make_unique<SharedMemoryManager>(
                hasBlock ? m_block->name() : QByteArrayLiteral("orbix-feed-test-none"));
            m_feed->currentTexture();
            QTRY_VERIFY(ProcessLevel::now().threads > threads);
            if (hasBlock)
                QTRY_VERIFY(m_block->get<quint32>(0x84) != 0); // it holds the block
        }
        m_feed.reset();
        QTRY_COMPARE(ProcessLevel::now().threads, threads); // it ends a moment later
    }
}

void tst_SharedMemoryManager::itStartsAgainWithAnotherContext()
{
    start();
    m_scene.reset();
    QCOMPARE(m_feed->currentTexture(), 0);
    m_scene = std::make_unique<Scene>();
    publishPicture();
    while (slot() != 0) // which tells the rate
        publishPicture();
    QTRY_VERIFY(m_feed->currentTexture() != 0 && isTaken());
    const QImage last = publishPicture();
    QTRY_VERIFY(isShown(last));
}

void tst_SharedMemoryManager::withoutAContextOnlyTheNameIsTold()
{
    start();
    const int texture = m_feed->currentTexture();
    const QImage last = publishPicture();
    m_scene->context.doneCurrent();
    QTRY_VERIFY(isTaken());
    QCOMPARE(m_feed->currentTexture(), texture);
    m_scene->context.makeCurrent(&m_scene->surface);
    QTRY_VERIFY(isShown(last));
}

QTEST_MAIN(tst_SharedMemoryManager)
#include "tst_SharedMemoryManager.moc"
