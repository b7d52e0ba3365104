#include "ClipWriter.h"
#include "VlcOptions.h"
#include "VlcStage.h"
#include "WarningsFail.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QProcess>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>

using Player = OrbuiQuickVideoPlayerVlc;

namespace {
constexpr int kFilmFrames = 100;
constexpr int kFrameMs = 40;
} // namespace

/// How libVLC is started, steered and followed.
class tst_VlcPlayer : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theFilmIsFollowedFromStartToEnd();
    void aSeekWhilePausedShowsPositionAndFrameAtOnce();
    void aStandingPictureIsUploadedOnce();
    void theEndIsReachedAndTheFilmStartsAgain();
    void anEmptySourceChangesNothing();
    void anotherFileTakesOverWithItsSize();
    void theVolumeIsThatOfLibVlc_data();
    void theVolumeIsThatOfLibVlc();
    void badMediaAreReportedAndTheNextFilePlays_data();
    void badMediaAreReportedAndTheNextFilePlays();
    void aServerThatNeverAnswersHoldsNothingUp();
    void aPauseWhileOpeningHoldsAndPlayGoesOn();
    void aWindowThatIsNotShownHoldsNothingUp_data();
    void aWindowThatIsNotShownHoldsNothingUp();
    void aCameraAngleIsKeptAndReportedOnce();

private:
    QString path(const QString &name) const { return m_folder.filePath(name); }
    QString film() const { return path(QStringLiteral("film.mp4")); }

    QTemporaryDir m_folder;
};

void tst_VlcPlayer::initTestCase()
{
    Clip clip;
    clip.toneHz = 440;
    clip.frames = kFilmFrames;
    QCOMPARE(ClipWriter::write(film(), clip), QString());
    clip.size = {1024, 512};
    clip.firstNumber = 1000;
    QCOMPARE(ClipWriter::write(path(QStringLiteral("other.mkv")), clip), QString());
}

void tst_VlcPlayer::theFilmIsFollowedFromStartToEnd()
{
    VlcStage stage;
    stage.show();
    QSignalSpy durations(stage.player.get(), &Player::durationChanged);
    QSignalSpy positions(stage.player.get(), &Player::positionChanged);
    stage.playFile(film());
    QCOMPARE(stage.player->source(), QUrl::fromLocalFile(film()));
    QVERIFY(stage.waitForState(Player::Ended));
    const QVector<int> expected{Player::Opening, Player::Playing, Player::Ended};
    QCOMPARE(stage.states.mid(stage.states.indexOf(Player::Opening), 3), expected);
    QVERIFY(!stage.states.contains(Player::Error));
    QVERIFY(stage.errors.isEmpty());
    QCOMPARE(durations.last().first().toInt(), kFilmFrames * kFrameMs);
    int last = 0;
    for (const QList<QVariant> &position : positions) {
        QVERIFY(position.first().toInt() >= last);
        last = position.first().toInt();
    }
    QVERIFY(last > kFilmFrames * kFrameMs / 2);
}

void tst_VlcPlayer::aSeekWhilePausedShowsPositionAndFrameAtOnce()
{
    VlcStage stage;
    stage.show();
    stage.playFile(film());
    QVERIFY(stage.waitForFrame([](int number) { return number >= 10; }));
    stage.player->pause();
    QVERIFY(stage.waitForState(Player::Paused));
    QSignalSpy positions(stage.player.get(), &Player::positionChanged);
    // To a keyframe, amid a group of pictures, and back.
    for (const int ms : {1000, 2600, 200}) {
        positions.clear();
        stage.player->seek(ms);
        QCOMPARE(positions.count(), 1);
        QCOMPARE(positions.first().first().toInt(), ms);
        QVERIFY(stage.waitForFrame(
            [ms](int number) { return qAbs(number * kFrameMs - ms) <= 2 * kFrameMs; }));
        QCOMPARE(stage.state(), Player::Paused);
    }
    stage.player->play();
    QVERIFY(stage.waitForFrame([](int number) { return number * kFrameMs > 300; }));
}

/// libVLC hands the picture of a pause over several times a second.
void tst_VlcPlayer::aStandingPictureIsUploadedOnce()
{
    VlcStage stage;
    stage.show();
    stage.playFile(film());
    QVERIFY(stage.waitForFrame([](int number) { return number >= 5; }));
    stage.player->pause();
    QVERIFY(stage.waitForState(Player::Paused));
    QSignalSpy uploads(stage.player.get(), &Player::textureIdChanged);
    constexpr int kQuietMs = 1000;
    QTRY_VERIFY(!uploads.wait(kQuietMs));
    QVERIFY(stage.frameNumber());
    stage.player->play();
    QVERIFY(uploads.wait());
}

void tst_VlcPlayer::theEndIsReachedAndTheFilmStartsAgain()
{
    VlcStage stage;
    stage.show();
    stage.playFile(film());
    QSignalSpy sources(stage.player.get(), &Player::sourceChanged);
    for (int turn = 0; turn < 3; ++turn) {
        QVERIFY(stage.waitForFrame([](int number) { return number >= 5 && number < 50; }));
        stage.player->seek(3700);
        QVERIFY(stage.waitForState(Player::Ended));
        stage.player->restart();
        QVERIFY(stage.waitForState(Player::Playing));
    }
    stage.player->seek(3700);
    QVERIFY(stage.waitForState(Player::Ended));
    stage.player->play(); // libVLC's own play does nothing from here
    QVERIFY(stage.waitForFrame([](int number) { return number < 50; }));
    QCOMPARE(sources.count(), 0);
    QVERIFY(stage.errors.isEmpty());
}

void tst_VlcPlayer::anEmptySourceChangesNothing()
{
    VlcStage stage;
    stage.show();
    stage.playFile(film());
    QVERIFY(stage.waitForFrame([](int number) { return number >= 1; }));
    QSignalSpy sources(stage.player.get(), &Player::sourceChanged);
    const int before = stage.states.count();
    QVERIFY(stage.player->setProperty("source", QUrl()));
    QVERIFY(stage.waitForFrame([](int number) { return number >= 20; }));
    QCOMPARE(stage.states.count(), before);
    QCOMPARE(sources.count(), 0);
    QCOMPARE(stage.player->source(), QUrl::fromLocalFile(film()));
}

void tst_VlcPlayer::anotherFileTakesOverWithItsSize()
{
    VlcStage stage;
    stage.show();
    stage.player->setNativeSize(false);
    stage.playFile(film());
    QVERIFY(stage.waitForFrame([](int number) { return number >= 5; }));
    QCOMPARE(stage.player->size(), QSizeF(320, 200));
    stage.player->setNativeSize(true);
    stage.playFile(path(QStringLiteral("other.mkv")));
    QVERIFY(stage.waitForFrame([](int number) { return number >= 1005; }));
    QCOMPARE(stage.texture().size(), QSize(1024, 512));
    QTRY_COMPARE(stage.player->size(), QSizeF(1024, 512)); // if it should
    QVERIFY(!stage.states.contains(Player::Ended));        // nothing of the first file's way out
    QVERIFY(!stage.states.contains(Player::Error));
}

void tst_VlcPlayer::theVolumeIsThatOfLibVlc_data()
{
    QTest::addColumn<float>("set");
    QTest::addColumn<float>("is");
    QTest::newRow("full") << 1.0F << 1.0F;
    QTest::newRow("truncated") << 0.559F << 0.55F;
    QTest::newRow("silent") << 0.0F << 0.0F;
    QTest::newRow("less than nothing") << -3.0F << 0.0F;
    QTest::newRow("no number") << std::numeric_limits<float>::quiet_NaN() << 0.8F;
}

void tst_VlcPlayer::theVolumeIsThatOfLibVlc()
{
    QFETCH(float, set);
    QFETCH(float, is);
    VlcStage stage;
    stage.show();
    stage.playFile(film());
    QVERIFY(stage.waitForState(Player::Playing));
    stage.player->setVolume(0.8F);
    QSignalSpy changes(stage.player.get(), &Player::volumeChanged);
    stage.player->setVolume(set);
    QCOMPARE(changes.count(), std::isnan(set) ? 0 : 1);
    QTRY_COMPARE(stage.player->volume(), is);
}

void tst_VlcPlayer::badMediaAreReportedAndTheNextFilePlays_data()
{
    // More of them, and each in the real program: tst_VideoSources.
    const auto encoded = [this](const char *name, const QString &input) {
        QProcess::execute(QStringLiteral("ffmpeg"),
                          QStringLiteral("-y -v error %1 %2")
                              .arg(input, path(QLatin1String(name)))
                              .split(QLatin1Char(' ')));
        return QUrl::fromLocalFile(path(QLatin1String(name)));
    };
    QFile titles(path(QStringLiteral("titles.srt")));
    QVERIFY(titles.open(QIODevice::WriteOnly));
    titles.write("1\n00:00:00,000 --> 00:00:01,000\nhello\n");
    titles.close();

    QTest::addColumn<QUrl>("url");
    QTest::newRow("a missing file") << QUrl::fromLocalFile(path(QStringLiteral("missing.mp4")));
    QTest::newRow("short sound") << encoded("short.mp4", QStringLiteral("-f lavfi -i sine=d=0.4"));
    QTest::newRow("subtitles alone")
        << encoded("titles.mp4", QStringLiteral("-i %1 -c:s mov_text").arg(titles.fileName()));
    QTest::newRow("an unknown scheme") << QUrl(QStringLiteral("nonsense://film"));
}

void tst_VlcPlayer::badMediaAreReportedAndTheNextFilePlays()
{
    QFETCH(QUrl, url);
    VlcStage stage;
    stage.show();
    stage.player->openFile(url);
    QVERIFY(stage.waitForState(Player::Error));
    QTRY_VERIFY(!stage.errors.isEmpty());
    // An end would make the scene start it again, for ever.
    QVERIFY(!QTest::qWaitFor([&] { return stage.state() != Player::Error; }, 300));
    QVERIFY(!stage.states.contains(Player::Ended));
    stage.playFile(film());
    QVERIFY(stage.waitForFrame([](int number) { return number >= 5; }));
    QCOMPARE(stage.state(), Player::Playing);
}

void tst_VlcPlayer::aServerThatNeverAnswersHoldsNothingUp()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    VlcStage stage;
    stage.show();
    stage.player->openFile(
        QUrl(QStringLiteral("http://127.0.0.1:%1/film.mp4").arg(server.serverPort())));
    QTRY_VERIFY(server.hasPendingConnections());
    QCOMPARE(stage.state(), Player::Opening);
    stage.playFile(film());
    QVERIFY(stage.waitForFrame([](int number) { return number >= 2; }));
}

void tst_VlcPlayer::aPauseWhileOpeningHoldsAndPlayGoesOn()
{
    VlcStage stage;
    stage.show();
    stage.playFile(film());
    stage.player->pause();
    QVERIFY(stage.waitForState(Player::Paused));
    QVERIFY(!stage.states.contains(Player::Ended)); // or the scene would start it again
    stage.player->play();
    QVERIFY(stage.waitForFrame([](int number) { return number >= 5; }));
}

void tst_VlcPlayer::aWindowThatIsNotShownHoldsNothingUp_data()
{
    QTest::addColumn<QByteArray>("then");
    for (const char *then : {"stop", "restart", "close", "another file", "nothing"})
        QTest::newRow(then) << QByteArray(then);
}

void tst_VlcPlayer::aWindowThatIsNotShownHoldsNothingUp()
{
    QFETCH(QByteArray, then);
    VlcStage stage;
    stage.playFile(film());
    QVERIFY(stage.waitForState(Player::Playing));
    // The decoder waits for the scene now, or will; each way out ends the wait.
    if (then == "another file")
        stage.playFile(path(QStringLiteral("other.mkv")));
    else if (then != "nothing")
        QMetaObject::invokeMethod(stage.player.get(), then);
    QVERIFY(!stage.states.contains(Player::Error));
    if (then != "close" && then != "nothing") {
        stage.show();
        stage.player->play();
        QVERIFY(stage.waitForFrame([](int number) { return number % 1000 >= 5; }));
    }
}

void tst_VlcPlayer::aCameraAngleIsKeptAndReportedOnce()
{
    VlcStage stage;
    for (const char *angle : {"yaw", "pitch", "roll"}) {
        const QByteArray signal = QByteArray("2") + angle + "Changed()";
        QSignalSpy changes(stage.player.get(), signal.constData());
        for (int i = 0; i < 2; ++i)
            QVERIFY(stage.player->setProperty(angle, 0.5F));
        QCOMPARE(changes.count(), 1);
        QCOMPARE(stage.player->property(angle).toFloat(), 0.5F);
    }
}

int main(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QGuiApplication application(argc, argv);
    tst_VlcPlayer test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_VlcPlayer.moc"
