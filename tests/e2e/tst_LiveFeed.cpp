#include "FilmOnScreen.h"
#include "FrameCode.h"
#include "Player.h"
#include "WarningsFail.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QtTest>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>

namespace {

constexpr char kBlock[] = "/QXLT_Shared_Memory";
constexpr int kFovDeg = 90;
constexpr int kColourTolerance = 2; // of 255, for the filtering
constexpr int kRestMs = 2000;
constexpr int kWatchSeconds = 30;
constexpr int kLeastSeen = 10; // without a graphics processor most of the large ones are dropped
constexpr int kDeadlineMs = 20000;

QImage grab()
{
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage();
}

QString number(const QImage &screen)
{
    return QString::number(FrameCode::read(screen).value_or(-1));
}

/// The program orbix-feed with numbered frames on its standard input, until it is told to end.
class Feed
{
public:
    Feed(const QString &folder, const QSize &size, int firstNumber)
        : m_pipe(folder + QStringLiteral("/frames"))
        , m_size(size)
        , m_number(firstNumber)
    {
        ::mkfifo(m_pipe.toLocal8Bit(), 0600);
        m_program.setStandardInputFile(m_pipe);
        m_program.setProcessChannelMode(QProcess::MergedChannels);
        m_writer = std::thread([this] { write(); });
        m_program.start(QStringLiteral(FEED),
                        {QStringLiteral("--size"),
                         QStringLiteral("%1x%2").arg(size.width()).arg(size.height()),
                         QStringLiteral("--rate"), QStringLiteral("30")});
    }

    ~Feed() { end(); }
    Q_DISABLE_COPY(Feed)

    /// Ends the input and tells how the program ended and what it said.
    QString end()
    {
        m_isEnding = true;
        const bool hasEnded = m_program.state() == QProcess::NotRunning
            || m_program.waitForFinished();
        if (!hasEnded)
            m_program.kill(); // or the thread may not end
        if (m_writer.joinable())
            m_writer.join();
        if (!hasEnded)
            return QStringLiteral("it does not end");
        return QString::number(m_program.exitCode()) + QString::fromUtf8(m_program.readAll());
    }

private:
    void write()
    {
        QImage picture = FrameCode::frame(m_size, m_number)
                             .convertToFormat(QImage::Format_RGBA8888);
        const int pipe = ::open(m_pipe.toLocal8Bit(), O_WRONLY | O_CLOEXEC);
        while (!m_isEnding) {
            FrameCode::draw(picture, m_number++);
            for (qsizetype done = 0; done < picture.sizeInBytes();) {
                const ssize_t written = ::write(pipe, picture.constBits() + done,
                                                std::size_t(picture.sizeInBytes() - done));
                if (written <= 0) {
                    ::close(pipe);
                    return;
                }
                done += written;
            }
        }
        ::close(pipe);
    }

    const QString m_pipe;
    const QSize m_size;
    int m_number;
    std::atomic<bool> m_isEnding{false};
    QProcess m_program;
    std::thread m_writer;
};

/// Makes the block as the first step of a writer does, without a frame in it.
void makeEmptyBlock()
{
    const int block = ::shm_open(kBlock, O_RDWR | O_CREAT, 0600);
    QCOMPARE(::ftruncate(block, 4096), 0);
    QCOMPARE(::pwrite(block, "QXLT_Shared_Memory1.3", 22, 0), ssize_t(22));
    ::close(block);
}

void cutBlock(qint64 bytes)
{
    const int block = ::shm_open(kBlock, O_RDWR, 0);
    QCOMPARE(::ftruncate(block, bytes), 0);
    ::close(block);
}

} // namespace

/// The real program and a writer of frames as two processes.
class tst_LiveFeed : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void framesArriveInOrderAndWithTheirColours_data();
    void framesArriveInOrderAndWithTheirColours();
    void itEndsWhateverItWaitsFor_data();
    void itEndsWhateverItWaitsFor();
    void aBlockThatIsCutShortLeavesThePicture();

private:
    /// Watches the screen and returns what was wrong. Tells how many frames were seen.
    QString watch(int first, int seconds, int *seen);

    std::unique_ptr<Player> m_player;
};

void tst_LiveFeed::initTestCase()
{
    ::signal(SIGPIPE, SIG_IGN);
    // One that a test of before left has no writer.
    const int block = ::shm_open(kBlock, O_RDWR, 0);
    QVERIFY2(block < 0 || ::flock(block, LOCK_EX | LOCK_NB) == 0,
             "A live feed is running on this machine.");
    ::close(block);
    ::shm_unlink(kBlock);
}

void tst_LiveFeed::init()
{
    WarningsFail::init();
    m_player = std::make_unique<Player>();
    m_player->setSetting(QStringLiteral("application/sharedmemory"), true);
}

void tst_LiveFeed::cleanup()
{
    m_player.reset();
    ::shm_unlink(kBlock);
    WarningsFail::cleanup();
}

QString tst_LiveFeed::watch(int first, int seconds, int *seen)
{
    int last = -1;
    *seen = 0;
    QElapsedTimer time;
    time.start();
    while (!time.hasExpired(qint64(seconds) * 1000)) {
        QTest::qWait(10);
        const QImage screen = grab();
        const int now = FrameCode::read(screen).value_or(-1);
        if (now < first || now == last)
            continue;
        if (now < last)
            return QStringLiteral("%1 after %2").arg(now).arg(last);
        last = now;
        ++*seen;
        const int error = FrameCode::colourError(screen, kFovDeg);
        if (error > kColourTolerance)
            return QStringLiteral("colours wrong by %1 in frame %2").arg(error).arg(now);
    }
    return {};
}

void tst_LiveFeed::framesArriveInOrderAndWithTheirColours_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("1920x960") << QSize(1920, 960);
    QTest::newRow("3840x1920") << QSize(3840, 1920);
}

void tst_LiveFeed::framesArriveInOrderAndWithTheirColours()
{
    QFETCH(QSize, size);

    FilmOnScreen::start(*m_player);
    int seen = 0;
    {
        Feed first(m_player->folder(), size, 0);
        QCOMPARE(watch(0, kWatchSeconds, &seen), QString());
        QVERIFY2(seen >= kLeastSeen, qPrintable(QString::number(seen)));
        qInfo("%d frames seen in %d s", seen, kWatchSeconds);
        QCOMPARE(first.end(), QStringLiteral("0"));
    }
    QTest::qWait(kRestMs); // nothing comes any more
    const QString last = number(grab());
    QVERIFY(last.toInt() > 0);
    QTest::qWait(kRestMs);
    QCOMPARE(number(grab()), last);

    Feed second(m_player->folder(), size, 20000);
    QCOMPARE(watch(20000, 5, &seen), QString());
    QVERIFY(seen > 1);
    QCOMPARE(FilmOnScreen::end(*m_player), QStringLiteral("0"));
}

void tst_LiveFeed::itEndsWhateverItWaitsFor_data()
{
    QTest::addColumn<bool>("hasBlock");
    QTest::addColumn<bool>("hasFrames");
    QTest::newRow("for the writer") << false << false;
    QTest::newRow("for the first frame") << true << false;
    QTest::newRow("for the next frame") << false << true;
}

void tst_LiveFeed::itEndsWhateverItWaitsFor()
{
    QFETCH(bool, hasBlock);
    QFETCH(bool, hasFrames);

    if (hasBlock)
        makeEmptyBlock();
    FilmOnScreen::start(*m_player);
    std::unique_ptr<Feed> feed;
    if (hasFrames) {
        feed = std::make_unique<Feed>(m_player->folder(), QSize(1920, 960), 0);
        QTRY_VERIFY_WITH_TIMEOUT(FrameCode::read(grab()).has_value(), kDeadlineMs);
    }
    m_player->close();
    QCOMPARE(m_player->ending(), QStringLiteral("0"));
}

void tst_LiveFeed::aBlockThatIsCutShortLeavesThePicture()
{
    FilmOnScreen::start(*m_player);
    Feed feed(m_player->folder(), {1920, 960}, 0);
    QTRY_VERIFY_WITH_TIMEOUT(FrameCode::read(grab()).has_value(), kDeadlineMs);
    cutBlock(8192);
    QVERIFY(feed.end().startsWith(QStringLiteral("1orbix-feed: ")));
    QTest::qWait(kRestMs);
    const QString last = number(grab());
    QVERIFY(last.toInt() > 0);
    cutBlock(0);
    QTest::qWait(kRestMs);
    QCOMPARE(number(grab()), last);
    QCOMPARE(FilmOnScreen::end(*m_player), QStringLiteral("0"));
}

QTEST_MAIN(tst_LiveFeed)
#include "tst_LiveFeed.moc"
