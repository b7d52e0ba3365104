#include "ClipWriter.h"
#include "Garbage.h"
#include "ProcessLevel.h"
#include "SoakShare.h"
#include "VlcOptions.h"
#include "VlcStage.h"
#include "WarningsFail.h"

#include <QGuiApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <malloc.h>

namespace {

using Player = OrbuiQuickVideoPlayerVlc;

constexpr int kFramesPerSecond = 25;
constexpr int kShortFrames = 12;
constexpr int kLongFrames = 250;
constexpr int kLargeBlock = 1 << 17; ///< bytes, from which on memory is mapped by itself
constexpr int kNumbersApart = 1000;  ///< between the first frames of two films

struct Source
{
    QString path;
    int firstNumber; ///< -1: there is nothing to be seen in it
};

} // namespace

/// What a long use leaves behind: nothing.
class tst_VlcSoak : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void filesFollowEachOther();
    void aFilmRunsInALoop();
    void aPlaylistStepsOn();
    void controlsComeInAnyOrder();
    void aWindowMayBeShownLate();
    void aPlayerMayGoAtAnyTime_data();
    void aPlayerMayGoAtAnyTime();
    void aPlayerMayGoAfterItsFirstPicture();

private:
    void write(const char *name, Clip clip = {});
    void openAndWatch(const Source &source);
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }

    QTemporaryDir m_folder;
    QVector<Source> m_sources;
    std::unique_ptr<VlcStage> m_stage;
    ProcessLevel m_level;
    QRandomGenerator m_random{1};
    int m_players = 0;
};

void tst_VlcSoak::write(const char *name, Clip clip)
{
    clip.firstNumber = kNumbersApart * m_sources.size();
    QCOMPARE(ClipWriter::write(path(name), clip), QString());
    m_sources.append({path(name), clip.firstNumber});
}

/// The first ten opens, which bring in all that stays: plug-ins, pools, caches.
void tst_VlcSoak::initTestCase()
{
    Clip clip;
    clip.toneHz = 440;
    clip.frames = kLongFrames;
    write("long.mp4", clip);
    clip.frames = kShortFrames;
    write("short.mp4", clip);
    clip.size = {512, 256};
    clip.codec = Clip::Hevc;
    write("short.mkv", clip);
    clip.toneHz = 0;
    clip.codec = Clip::Vp9;
    write("vp9.mkv", clip);
    clip.codec = Clip::H264;
    clip.size = {1024, 512};
    write("transport.ts", clip);
    clip.size = {546, 274};
    write("padded.mkv", clip);
    clip.pixelFormat = QStringLiteral("yuv420p10le");
    write("deep.mkv", clip);

    QFile noFilm(path("garbage.mp4"));
    QVERIFY(noFilm.open(QIODevice::WriteOnly));
    noFilm.write(garbage(1 << 16));
    noFilm.close();
    const QStringList sound =
        QStringLiteral("-v error -f lavfi -i sine=duration=0.5").split(QLatin1Char(' '))
        << path("sound.ogg");
    QCOMPARE(QProcess::execute(QStringLiteral("ffmpeg"), sound), 0);
    for (const char *name : {"garbage.mp4", "sound.ogg", "missing.mp4"})
        m_sources.append({path(name), -1});

    m_stage = std::make_unique<VlcStage>();
    m_stage->show();
    for (const Source &source : qAsConst(m_sources))
        openAndWatch(source);
    m_stage->player->stop();
    QTRY_COMPARE(m_stage->player->textureId(), 0);
    m_level = ProcessLevel::now();
}

void tst_VlcSoak::cleanup()
{
    WarningsFail::cleanup();
    m_stage->player->stop();
    ProcessLevel level;
    const bool fell = QTest::qWaitFor([&] {
        level = ProcessLevel::now();
        return level.isWithin(m_level);
    });
    qInfo("%s; now %s", qPrintable(m_level.text()), qPrintable(level.text()));
    QVERIFY(fell);
}

/// Waits for a frame of the source, or for the news that it has none.
void tst_VlcSoak::openAndWatch(const Source &source)
{
    m_stage->states.clear();
    m_stage->playFile(source.path);
    if (source.firstNumber < 0) {
        QVERIFY2(m_stage->waitForState(Player::Error), qPrintable(source.path));
        return;
    }
    QVERIFY2(m_stage->waitForFrame([&](int number) {
        return number / kNumbersApart == source.firstNumber / kNumbersApart;
    }),
             qPrintable(source.path));
}

void tst_VlcSoak::filesFollowEachOther()
{
    for (int i = 0; i < soakTimes(200) && !QTest::currentTestFailed(); ++i)
        openAndWatch(m_sources.at(m_random.bounded(m_sources.size())));
}

void tst_VlcSoak::aFilmRunsInALoop()
{
    const Source &film = m_sources.at(1);
    openAndWatch(film);
    for (int i = 0; i < soakTimes(100) && !QTest::currentTestFailed(); ++i) {
        QVERIFY(m_stage->waitForState(Player::Ended));
        m_stage->states.clear();
        m_stage->player->restart();
        // The end of the turn before has the last number of all.
        const int last = film.firstNumber + kShortFrames - 1;
        QVERIFY(m_stage->waitForFrame([last](int number) { return number < last; }));
    }
}

void tst_VlcSoak::aPlaylistStepsOn()
{
    for (int i = 0; i < soakTimes(100) && !QTest::currentTestFailed(); ++i) {
        openAndWatch(m_sources.at(1 + i % 2));
        QVERIFY(m_stage->waitForState(Player::Ended));
    }
}

void tst_VlcSoak::controlsComeInAnyOrder()
{
    openAndWatch(m_sources.first());
    Player *player = m_stage->player.get();
    const auto settle = [&](Player::VlcState wanted) {
        return QTest::qWaitFor(
            [&] { return m_stage->state() == wanted || m_stage->state() == Player::Ended; });
    };
    for (int i = 1; i <= soakTimes(500); ++i) {
        // libVLC 3 may stay paused when orders come faster than it follows them, and may not show
        // the last of several seeks while it is paused.
        const bool watch = i % 3 == 0;
        const int order = watch ? 1 : m_random.bounded(4);
        if (order == 0)
            player->pause();
        else if (order == 1)
            player->play();
        else if (order == 2)
            player->setVolume(float(m_random.bounded(1.5)));
        if (order < 2)
            QVERIFY(settle(order == 0 ? Player::Paused : Player::Playing));
        if (m_stage->state() == Player::Ended) {
            m_stage->states.clear();
            player->play();
            QVERIFY(m_stage->waitForState(Player::Playing));
        }
        // The last second is left out, so that the film ends seldom.
        const int wanted = m_random.bounded(kLongFrames - kFramesPerSecond);
        player->seek(wanted * 1000 / kFramesPerSecond);
        const auto isNear = [wanted](int number) {
            return number >= wanted - 1 && number < wanted + kFramesPerSecond;
        };
        if (watch)
            QVERIFY2(m_stage->waitForFrame(isNear),
                     qPrintable(QStringLiteral("seek %1 to frame %2").arg(i).arg(wanted)));
    }
}

void tst_VlcSoak::aWindowMayBeShownLate()
{
    for (int i = 0; i < soakTimes(10); ++i) {
        VlcStage stage;
        stage.playFile(m_sources.first().path);
        QVERIFY(stage.waitForState(Player::Playing));
        stage.show();
        QVERIFY(stage.waitForFrame([](int number) { return number < kLongFrames; }));
    }
}

void tst_VlcSoak::aPlayerMayGoAtAnyTime_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<int>("state"); ///< the first that it waits for; -1: for a random while
    QTest::addColumn<bool>("shown");
    const int missing = m_sources.size() - 1;
    QTest::newRow("at once") << 0 << int(Player::Idle) << true;
    QTest::newRow("opening") << 0 << int(Player::Opening) << true;
    QTest::newRow("playing") << 0 << int(Player::Playing) << true;
    QTest::newRow("paused") << 0 << int(Player::Paused) << true;
    QTest::newRow("ended") << 1 << int(Player::Ended) << true;
    QTest::newRow("after an error") << missing << int(Player::Error) << true;
    QTest::newRow("at a random moment") << 0 << -1 << true;
    QTest::newRow("while the decoder waits for a window") << 0 << int(Player::Playing) << false;
    QTest::newRow("never shown, at a random moment") << 0 << -1 << false;
}

void tst_VlcSoak::aPlayerMayGoAtAnyTime()
{
    QFETCH(int, source);
    QFETCH(int, state);
    QFETCH(bool, shown);
    constexpr int kLongestMs = 500;
    for (int i = 0; i < soakTimes(20); ++i, ++m_players) {
        VlcOptions::process().textureTransfer = 2 + m_players % 2;
        auto window = std::make_unique<QQuickWindow>();
        auto *player = new Player(window->contentItem());
        player->setSize({320, 200});
        player->setUploadRoute(UploadRoute(RouteQueuedPaint + m_players % 3));
        const QSignalSpy states(player, &Player::vlcStateChanged);
        connect(player, &Player::vlcStateChanged, player, [player, state](int now) {
            if (now == Player::Playing && state == Player::Paused)
                player->pause();
        });
        if (shown)
            window->show();
        player->openFile(QUrl::fromLocalFile(m_sources.at(source).path));
        if (state < 0)
            QTest::qWait(m_random.bounded(kLongestMs));
        else
            QVERIFY(QTest::qWaitFor(
                [&] { return state == Player::Idle || states.contains(QVariantList{state}); }));
        if (m_players / 2 % 2)
            delete player; // else it goes with its window
    }
    VlcOptions::process().textureTransfer = 0;
}

/// Nobody may hear from a player that is being destroyed.
void tst_VlcSoak::aPlayerMayGoAfterItsFirstPicture()
{
    QQuickWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    for (int i = 0; i < soakTimes(20); ++i) {
        auto player = std::make_unique<Player>(window.contentItem());
        player->setSize({320, 200});
        player->openFile(QUrl::fromLocalFile(m_sources.first().path));
        const QSignalSpy changes(player.get(), &Player::textureTransferChanged);
        QEvent draw(QEvent::UpdateRequest);
        QCoreApplication::sendEvent(&window, &draw);
        QVERIFY(!player->textureTransfer().isEmpty());
        QVERIFY(changes.isEmpty());
        player.reset();
        QVERIFY(changes.isEmpty());
    }
}

#if defined(__SANITIZE_ADDRESS__)
/// The leak detector knows the name of a library, such as a plug-in, only while it is loaded.
extern "C" int dlclose(void *)
{
    return 0;
}
#endif

int main(int argc, char **argv)
{
    // One heap that gives back what is free: else the threads' heaps grow to their largest moments.
    mallopt(M_ARENA_MAX, 1);
    mallopt(M_MMAP_THRESHOLD, kLargeBlock);
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QGuiApplication application(argc, argv);
    tst_VlcSoak test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_VlcSoak.moc"
