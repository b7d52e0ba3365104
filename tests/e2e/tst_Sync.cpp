#include "ClipWriter.h"
#include "FrameCode.h"
#include "FreePort.h"
#include "Wall.h"
#include "WarningsFail.h"

#include <QUdpSocket>
#include <QtTest>

#include <atomic>
#include <cmath>
#include <thread>
#include <utility>

namespace {

constexpr int kFramesPerSecond = 10;

/// All slaves of this machine hear what goes there.
const QString kLoopbackBroadcast = QStringLiteral("127.255.255.255");

/// A datagram of a master that looks there and shows nothing.
QByteArray packet(double yaw)
{
    return R"({"id":"oxs","pitch":0,"position":0,"roll":0,"state":0,"url":"","yaw":)"
        + QByteArray::number(yaw) + '}';
}

} // namespace

/// Copies of the real program in step, as their pictures show.
class tst_Sync : public WarningsFail
{
    Q_OBJECT

private slots:
    void slavesFollowTheirMaster();
    void aFloodLeavesASlaveResponsive();

private:
    bool allAlike();
    bool masterHasTurned(const QImage &before);
    QVector<int> frames();
    bool allPlay();
    bool allStand();
    bool allNear(int frame);

    std::unique_ptr<Wall> m_wall;
};

bool tst_Sync::allAlike()
{
    const auto pictures = m_wall->pictures();
    return std::all_of(pictures.begin(), pictures.end(), [&pictures](const QImage &picture) {
        return Wall::areAlike(picture, pictures[0]);
    });
}

bool tst_Sync::masterHasTurned(const QImage &before)
{
    return !Wall::areAlike(m_wall->pictures()[0], before);
}

/// The numbers of the film's frames that the copies show; -1 where none can be read.
QVector<int> tst_Sync::frames()
{
    QVector<int> numbers;
    for (const QImage &picture : m_wall->pictures())
        numbers += FrameCode::read(picture).value_or(-1);
    return numbers;
}

/// Each copy's film goes on, near the master's.
bool tst_Sync::allPlay()
{
    const QVector<int> before = frames();
    QTest::qWait(500);
    const QVector<int> after = frames();
    for (int i = 0; i < after.size(); ++i) {
        if (before[i] < 0 || after[i] <= before[i])
            return false;
    }
    return allNear(after[0]);
}

bool tst_Sync::allStand()
{
    const QVector<int> before = frames();
    QTest::qWait(1000);
    return !before.contains(-1) && frames() == before && allNear(before[0]);
}

/// A drift of three seconds is allowed, and a frame for the time that the pictures take.
bool tst_Sync::allNear(int frame)
{
    const QVector<int> numbers = frames();
    return std::all_of(numbers.begin(), numbers.end(), [frame](int number) {
        return number >= 0 && std::abs(number - frame) <= 3 * kFramesPerSecond + 1;
    });
}

void tst_Sync::slavesFollowTheirMaster()
{
    const QTemporaryDir media;
    const QString panorama = media.filePath(QStringLiteral("panorama.png"));
    const QString film = media.filePath(QStringLiteral("a film.mp4"));
    QVERIFY(Wall::writePanorama(panorama));
    Clip clip;
    clip.framesPerSecond = kFramesPerSecond;
    clip.frames = 120 * kFramesPerSecond;
    QCOMPARE(ClipWriter::write(film, clip), QString());

    m_wall = std::make_unique<Wall>();
    const QVariantMap settings{{QStringLiteral("port"), freePort()},
                               {QStringLiteral("ipMode"), QStringLiteral("custom")},
                               {QStringLiteral("ipCustom"), kLoopbackBroadcast}};
    for (int i = 0; i < 4; ++i)
        m_wall->add(settings);
    for (int i = 1; i < 4; ++i)
        QVERIFY(m_wall->start(i, {QStringLiteral("--udp"), QStringLiteral("slave")}));
    QVERIFY(m_wall->start(0, {QStringLiteral("-u"), QStringLiteral("master"), panorama}));
    Player &master = m_wall->player(0);

    QTRY_VERIFY_WITH_TIMEOUT(allAlike(), 20000); // the media
    QImage before = m_wall->pictures()[0];
    QVERIFY(before.pixelColor(320, 120) != before.pixelColor(320, 40));
    master.order("drag 320 180 -90 40");
    QTRY_VERIFY(masterHasTurned(before));
    QTRY_VERIFY(allAlike());
    before = m_wall->pictures()[0];
    master.order("turn -2.5 -0.3 0.7");
    QTRY_VERIFY(masterHasTurned(before));
    QTRY_VERIFY(allAlike());

    master.order("turn 0 0 0");
    master.open(film);
    QTRY_VERIFY_WITH_TIMEOUT(allPlay(), 30000);
    master.order("key Space");
    QTRY_VERIFY_WITH_TIMEOUT(allStand(), 20000);
    const int pausedAt = frames().constFirst();
    for (int i = 0; i < 3; ++i)
        master.order("key Ctrl+Up"); // six seconds each
    QTRY_VERIFY_WITH_TIMEOUT(frames().constFirst() > pausedAt + 17 * kFramesPerSecond && allStand(),
                             20000);
    master.order("key Space");
    QTRY_VERIFY_WITH_TIMEOUT(allPlay(), 20000);
    QCOMPARE(m_wall->end(), QString());
}

void tst_Sync::aFloodLeavesASlaveResponsive()
{
    const QTemporaryDir media;
    const QString panorama = media.filePath(QStringLiteral("panorama.png"));
    QVERIFY(Wall::writePanorama(panorama));
    const quint16 port = freePort();
    m_wall = std::make_unique<Wall>();
    m_wall->add(
        {{QStringLiteral("port"), port}, {QStringLiteral("state"), QStringLiteral("slave")}});
    QVERIFY(m_wall->start(0, {panorama}));
    QUdpSocket master;
    const auto send = [&](double yaw) {
        master.writeDatagram(packet(yaw), QHostAddress::LocalHost, port);
    };
    const QImage before = m_wall->pictures()[0];
    QImage turned;
    const auto hasTurned = [&] { // and stands
        send(1);
        return masterHasTurned(before)
            && Wall::areAlike(std::exchange(turned, m_wall->pictures()[0]), turned);
    };
    QTRY_VERIFY(hasTurned());

    std::atomic<bool> ends{false};
    std::atomic<int> sent{0};
    std::thread flood([&] {
        QUdpSocket socket;
        const auto start = std::chrono::steady_clock::now();
        for (int burst = 1; !ends; ++burst) {
            for (int i = 0; i < 100; ++i)
                sent += socket.writeDatagram(packet(-2 + sent % 10 * 0.01), QHostAddress::LocalHost,
                                             port)
                    > 0;
            std::this_thread::sleep_until(start + std::chrono::milliseconds(5 * burst));
        }
    });
    qint64 slowestAnswerMs = 0;
    const int framesBefore = m_wall->player(0).state().value(QLatin1String("frames")).toInt();
    QElapsedTimer lasting;
    for (lasting.start(); lasting.elapsed() < 4000;) {
        QElapsedTimer answering;
        answering.start();
        m_wall->player(0).state();
        slowestAnswerMs = qMax(slowestAnswerMs, answering.elapsed());
    }
    const int framesOfFlood = m_wall->player(0).state().value(QLatin1String("frames")).toInt()
        - framesBefore;
    const double seconds = double(lasting.elapsed()) / 1000;
    ends = true;
    flood.join();
    const auto isBack = [&] { // the buffer may be full still
        send(1);
        return Wall::areAlike(m_wall->pictures()[0], turned);
    };
    QTRY_VERIFY_WITH_TIMEOUT(isBack(), 1000);
    qInfo("%.0f datagrams a second, slowest answer after %lld ms, %.1f frames a second",
          sent / seconds, slowestAnswerMs, framesOfFlood / seconds);
    QVERIFY(slowestAnswerMs < 1000);
    QVERIFY(framesOfFlood > 4);
    QCOMPARE(m_wall->end(), QString());
}

QTEST_MAIN(tst_Sync)
#include "tst_Sync.moc"
