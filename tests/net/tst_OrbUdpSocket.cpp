#include "OrbUdpSocket.h"

#include "FreePort.h"
#include "GlobalObjectFixture.h"
#include "SyncPacket.h"
#include "WarningsFail.h"

#include <QSocketNotifier>
#include <QTimer>
#include <QUdpSocket>
#include <QtTest>

#include <chrono>
#include <thread>

namespace {

/// Plays what it is told; its log says what it was told.
class Player : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QUrl mediaSource MEMBER mediaSource)
    Q_PROPERTY(int playbackState MEMBER playbackState)
    Q_PROPERTY(int position MEMBER at)

public:
    explicit Player(QStringList *callLog)
        : log(callLog)
    {}

    Q_INVOKABLE void seek(const QVariant &offset) const
    {
        *log += QStringLiteral("seek %1").arg(offset.toInt());
    }

    QUrl mediaSource;
    int playbackState = 0;
    int at = 0;
    QStringList *log;
};

/// Stands in for the scene's item that opens sources.
class Loader : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *mediaPlayer MEMBER player)

public:
    Q_INVOKABLE void processFileSource(const QVariant &source, const QVariant &checkFile,
                                       const QVariant &clearPlayList, const QVariant &error)
    {
        log += QStringLiteral("open %1").arg(source.toUrl().toString());
        if (refuses)
            return;
        if (!checkFile.toBool() || !clearPlayList.toBool() || !error.toString().isEmpty())
            log += QStringLiteral("with other arguments");
        video.mediaSource = source.toUrl();
    }

    Q_INVOKABLE void syncPlaybackState(const QVariant &state)
    {
        log += QStringLiteral("state %1").arg(state.toInt());
        std::this_thread::sleep_for(std::chrono::milliseconds(busyMs));
    }

    QStringList log;
    bool refuses = false; ///< what it should open
    int busyMs = 0;       ///< that a change of state takes
    Player video{&log};
    QObject *player = &video;
};

constexpr char kFilm[] = "file:///film.mp4";

SyncPacket packet(int position = 0, int state = 0, const char *url = kFilm)
{
    SyncPacket packet;
    packet.id = QStringLiteral("oxs");
    packet.yaw = 0.5F;
    packet.pitch = -0.25F;
    packet.roll = 1.F;
    packet.url = QString::fromUtf8(url);
    packet.state = state;
    packet.position = position;
    return packet;
}

/// Settings below "application/communication/", the port with them.
QVariantMap communication(const QVariantMap &values, quint16 port)
{
    QVariantMap stored{{QStringLiteral("application/communication/port"), port}};
    for (auto value = values.begin(); value != values.end(); ++value)
        stored.insert(QStringLiteral("application/communication/") + value.key(), value.value());
    return stored;
}

/// A slave that plays the film, and the plain socket that speaks to it.
struct Slave
{
    explicit Slave(const QVariantMap &settings = {})
        : camera(communication(settings, port))
    {
        camera.object.setMediaLoader(&loader);
        loader.video.mediaSource = QUrl(QString::fromUtf8(kFilm));
    }

    /// On loopback a datagram waits for its reader as soon as it is sent.
    void send(const QByteArray &datagram)
    {
        const auto *reader = socket.findChild<QUdpSocket *>();
        master.writeDatagram(datagram, QHostAddress::LocalHost, port);
        QVERIFY(QTest::qWaitFor([reader] { return !reader->hasPendingDatagrams(); }));
    }

    void send(const SyncPacket &sent) { send(sent.toText()); }

    bool hasTurned() const { return camera.object.yaw() == 0.5F; }

    quint16 port = freePort();
    GlobalObjectFixture camera;
    Loader loader;
    OrbUdpSocket socket{&camera.object, QStringLiteral("slave")};
    QUdpSocket master;
};

} // namespace

class tst_OrbUdpSocket : public WarningsFail
{
    Q_OBJECT

private slots:
    void theModeDecidesWhatTheCopyIs_data();
    void theModeDecidesWhatTheCopyIs();
    void aMasterSendsItsState_data();
    void aMasterSendsItsState();
    void theRateIsTheTimersInterval();
    void aSlaveTakesOnlyPacketsOfItsKind_data();
    void aSlaveTakesOnlyPacketsOfItsKind();
    void aSlaveFindsItsMediaByTheUrlMode_data();
    void aSlaveFindsItsMediaByTheUrlMode();
    void aSlaveWithoutMediaFollowsTheCameraAlone();
    void whatCannotBeOpenedIsTriedOnce();
    void theStateIsAskedForUntilItAgrees();
    void onlyMoreThanThreeSecondsAreSought_data();
    void onlyMoreThanThreeSecondsAreSought();
    void aSecondPassesBetweenTwoSeeks();
    void aFloodLeavesTheEventLoopItsTurn();
    void aDatagramThatIsGoneStopsNothing();
};

void tst_OrbUdpSocket::theModeDecidesWhatTheCopyIs_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QString>("role");
    const auto row = [](const char *argument, const char *setting, const char *role) {
        QTest::addRow("\"%s\", stored \"%s\"", argument, setting)
            << QString::fromUtf8(argument) << QString::fromUtf8(setting) << QString::fromUtf8(role);
    };
    row("", "off", "none");
    row("", "master", "master");
    row("", "slave", "slave");
    row("", "Slave", "none");
    row("slave", "off", "slave");
    row("master", "slave", "master");
    row("nonsense", "master", "none");
}

void tst_OrbUdpSocket::theModeDecidesWhatTheCopyIs()
{
    QFETCH(QString, argument);
    QFETCH(QString, setting);
    GlobalObjectFixture camera(communication({{QStringLiteral("state"), setting}}, freePort()));
    const OrbUdpSocket socket(&camera.object, argument);
    const auto *udp = socket.findChild<QUdpSocket *>();
    const auto *timer = socket.findChild<QTimer *>();
    QString role = QStringLiteral("none");
    if (udp)
        role = timer && timer->isActive() && udp->state() == QUdpSocket::UnconnectedState
            ? QStringLiteral("master")
            : QStringLiteral("slave");
    QTEST(role, "role");
    QCOMPARE(udp && udp->state() == QUdpSocket::BoundState, role == QLatin1String("slave"));
    QCOMPARE(timer ? timer->interval() : 20, 20);
}

void tst_OrbUdpSocket::theRateIsTheTimersInterval()
{
    for (const int rate : {50, 0, -5}) {
        GlobalObjectFixture camera(communication({{QStringLiteral("rate"), rate}}, freePort()));
        const OrbUdpSocket socket(&camera.object, QStringLiteral("master"));
        QCOMPARE(socket.findChild<QTimer *>()->interval(), qMax(0, rate));
    }
}

void tst_OrbUdpSocket::aMasterSendsItsState_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("ipMode");
    QTest::addColumn<bool>("hasScene");
    QTest::addRow("text") << 0 << "localhost" << true;
    QTest::addRow("binary") << 1 << "localhost" << true;
    QTest::addRow("to an address") << 0 << "custom" << true;
    QTest::addRow("before the scene stands") << 0 << "localhost" << false;
}

void tst_OrbUdpSocket::aMasterSendsItsState()
{
    QFETCH(int, format);
    QFETCH(QString, ipMode);
    QFETCH(bool, hasScene);
    QUdpSocket slave;
    QVERIFY(
        slave.bind(QHostAddress(ipMode == QLatin1String("custom") ? "127.0.0.2" : "127.0.0.1")));
    GlobalObjectFixture camera(communication({{QStringLiteral("format"), format},
                                              {QStringLiteral("ipMode"), ipMode},
                                              {QStringLiteral("ipCustom"), "127.0.0.2"}},
                                             slave.localPort()));
    Loader loader;
    loader.video.mediaSource = QUrl(QStringLiteral("file:///a%20b.mp4"));
    loader.video.playbackState = 2;
    loader.video.at = 7000;
    camera.object.setYaw(1.5F);
    camera.object.setPitch(0.1F);
    if (hasScene)
        camera.object.setMediaLoader(&loader);
    const OrbUdpSocket socket(&camera.object, QStringLiteral("master"));

    for (int i = 0; i < 3; ++i) {
        QTRY_VERIFY(slave.hasPendingDatagrams());
        QByteArray bytes(int(slave.pendingDatagramSize()), '\0');
        slave.readDatagram(bytes.data(), bytes.size());
        const QByteArray text = hasScene
            ? R"({"id":"oxs","pitch":0.10000000149011612,"position":7000,"roll":0,"state":2,)"
              R"("url":"file:///a b.mp4","yaw":1.5})"
            : R"({"id":"oxs","pitch":0.10000000149011612,"position":0,"roll":0,"state":0,)"
              R"("url":"","yaw":1.5})";
        // The binary form itself is held to a fixture beside the packet.
        QCOMPARE(bytes, format == 0 ? text : SyncPacket::fromText(text)->toBinary());
    }
}

void tst_OrbUdpSocket::aSlaveTakesOnlyPacketsOfItsKind_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<bool>("orientation");
    QTest::addColumn<QByteArray>("datagram");
    QTest::addColumn<bool>("turns");
    QTest::addColumn<bool>("plays");
    SyncPacket foreign = packet(0, 1);
    foreign.id = QStringLiteral("OXS");
    SyncPacket nameless = packet(0, 1);
    nameless.id.clear();
    const QByteArray text = packet(0, 1).toText();
    QTest::addRow("text") << 0 << true << text << true << true;
    QTest::addRow("binary") << 1 << true << packet(0, 1).toBinary() << true << true;
    QTest::addRow("an unknown format is text") << 9 << true << text << true << true;
    QTest::addRow("text for binary") << 1 << true << text << false << false;
    QTest::addRow("binary for text") << 0 << true << packet(0, 1).toBinary() << false << false;
    QTest::addRow("foreign id") << 0 << true << foreign.toText() << false << false;
    QTest::addRow("no id") << 0 << true << nameless.toText() << false << false;
    QTest::addRow("nothing") << 0 << true << QByteArray() << false << false;
    QTest::addRow("the largest datagram")
        << 0 << true << text + QByteArray(65507 - text.size(), ' ') << true << true;
    QTest::addRow("without the camera") << 0 << false << text << false << true;
}

void tst_OrbUdpSocket::aSlaveTakesOnlyPacketsOfItsKind()
{
    QFETCH(int, format);
    QFETCH(bool, orientation);
    QFETCH(QByteArray, datagram);
    Slave slave({{QStringLiteral("format"), format}, {QStringLiteral("orientation"), orientation}});
    slave.send(datagram);
    QTEST(slave.hasTurned(), "turns");
    QCOMPARE(slave.camera.object.pitch(), slave.hasTurned() ? -0.25F : 0.F);
    QCOMPARE(slave.camera.object.roll(), slave.hasTurned() ? 1.F : 0.F);
    QTEST(slave.loader.log == QStringList{QStringLiteral("state 1")}, "plays");
}

void tst_OrbUdpSocket::aSlaveFindsItsMediaByTheUrlMode_data()
{
    QTest::addColumn<int>("urlMode");
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("opened");
    const QDir home = QDir::home();
    for (const char *name :
         {"Videos/here/below.mp4", "Videos/a b.mp4", "Desktop/desk.mp4", "outside.mp4"}) {
        QVERIFY(home.mkpath(QFileInfo(QString::fromUtf8(name)).path()));
        QVERIFY(QFile(home.filePath(QString::fromUtf8(name))).open(QIODevice::WriteOnly));
    }
    const auto row = [&home](const char *name, int mode, const char *url, const char *file) {
        const QString path = home.filePath(QString::fromUtf8(file));
        QTest::newRow(name) << mode << QString::fromUtf8(url)
                            << (*file ? QUrl::fromLocalFile(path).toString() : QString());
    };
    QTest::addRow("as it stands") << 0 << "http://host/other.mp4"
                                  << "http://host/other.mp4";
    QTest::addRow("an unknown mode") << 7 << "file:///other.mp4"
                                     << "file:///other.mp4";
    QTest::addRow("no url") << 0 << "http://["
                            << "";
    QTest::addRow("empty") << 0 << ""
                           << "";
    row("movies", 1, "file:///C:/x/y/a%20b.mp4", "Videos/a b.mp4");
    row("not in the movies", 1, "file:///desk.mp4", "");
    row("below a folder of the movies", 1, "file:///below.mp4", "");
    row("out of the movies", 1, "file:///..%2Foutside.mp4", "");
    row("a folder of the movies", 1, "file:///here", "");
    row("desktop", 2, "file:///media/desk.mp4", "Desktop/desk.mp4");
    QTest::addRow("off takes the media away") << 3 << "file:///other.mp4"
                                              << "nothing";
}

void tst_OrbUdpSocket::aSlaveFindsItsMediaByTheUrlMode()
{
    QFETCH(int, urlMode);
    QFETCH(QString, url);
    QFETCH(QString, opened);
    Slave slave({{QStringLiteral("urlMode"), urlMode}});
    QStringList expected;
    if (opened == QLatin1String("nothing"))
        expected = QStringList{QStringLiteral("open "), QStringLiteral("state 1")};
    else if (!opened.isEmpty())
        expected = QStringList{QStringLiteral("open ") + opened, QStringLiteral("state 1")};
    slave.send(packet(0, 1, url.toUtf8().constData()));
    QCOMPARE(slave.loader.log, expected);
    QVERIFY(slave.hasTurned());
    slave.loader.log.clear();
    slave.send(packet(0, 0, url.toUtf8().constData()));
    QVERIFY(slave.loader.log.isEmpty()); // it is open already
}

void tst_OrbUdpSocket::aSlaveWithoutMediaFollowsTheCameraAlone()
{
    Slave slave;
    slave.loader.player = nullptr;
    slave.send(packet(9000, 1));
    QVERIFY(slave.hasTurned());
    QVERIFY(slave.loader.log.isEmpty());
    slave.camera.object.setYaw(0);
    slave.camera.object.setMediaLoader(nullptr);
    slave.send(packet(9000, 1));
    QVERIFY(slave.hasTurned());
}

void tst_OrbUdpSocket::whatCannotBeOpenedIsTriedOnce()
{
    Slave slave;
    slave.loader.refuses = true;
    for (const char *url : {"rtsp://a", "rtsp://a", "rtsp://b", "rtsp://a", kFilm, "rtsp://a"})
        slave.send(packet(0, 0, url));
    const QStringList tried{"open rtsp://a", "open rtsp://b", "open rtsp://a", "open rtsp://a"};
    QCOMPARE(slave.loader.log, tried);
}

void tst_OrbUdpSocket::theStateIsAskedForUntilItAgrees()
{
    Slave slave;
    slave.loader.video.playbackState = 1;
    slave.send(packet(0, 0));
    slave.send(packet(0, 0));
    slave.loader.video.playbackState = 2;
    slave.send(packet(0, 2));
    QCOMPARE(slave.loader.log, QStringList({QStringLiteral("state 0"), QStringLiteral("state 0")}));
}

void tst_OrbUdpSocket::onlyMoreThanThreeSecondsAreSought_data()
{
    QTest::addColumn<int>("local");
    QTest::addColumn<int>("remote");
    QTest::addColumn<bool>("seeks");
    const auto row = [](int local, int remote, bool seeks) {
        QTest::addRow("%d, master %d", local, remote) << local << remote << seeks;
    };
    row(13000, 10000, false);
    row(13001, 10000, true);
    row(7000, 10000, false);
    row(6999, 10000, true);
    row(0, 2147483647, true);
    row(2147483647, -2147483647, true);
}

void tst_OrbUdpSocket::onlyMoreThanThreeSecondsAreSought()
{
    QFETCH(int, local);
    QFETCH(int, remote);
    QFETCH(bool, seeks);
    Slave slave;
    slave.loader.video.at = local;
    slave.send(packet(remote));
    slave.send(packet(remote));
    const QString seek = QStringLiteral("seek %1").arg(remote);
    QCOMPARE(slave.loader.log, seeks ? QStringList{seek} : QStringList());
}

void tst_OrbUdpSocket::aSecondPassesBetweenTwoSeeks()
{
    Slave slave;
    slave.loader.video.at = 20000;
    QElapsedTimer sinceSeek;
    sinceSeek.start();
    slave.send(packet(10000));
    QCOMPARE(slave.loader.log.size(), 1);
    while (slave.loader.log.size() < 2 && sinceSeek.elapsed() < 5000) {
        QTest::qWait(20);
        slave.send(packet(11000));
    }
    QCOMPARE(slave.loader.log.value(1), QStringLiteral("seek 11000"));
    QVERIFY(sinceSeek.elapsed() >= 1000);
}

void tst_OrbUdpSocket::aFloodLeavesTheEventLoopItsTurn()
{
    Slave slave;
    slave.loader.busyMs = 1;
    constexpr int count = 60;
    for (int i = 0; i < count; ++i)
        slave.master.writeDatagram(packet(0, i + 1).toText(), QHostAddress::LocalHost, slave.port);
    QVector<int> handled{0}; // of all, after each pass
    const QDeadlineTimer deadline(5000);
    while (handled.last() < count && !deadline.hasExpired()) {
        QCoreApplication::processEvents();
        handled += slave.loader.log.size();
    }
    for (int i = 1; i < handled.size(); ++i)
        QVERIFY(handled[i] - handled[i - 1] <= 6);
    QVERIFY(handled.size() >= count / 6);
    QStringList inOrder;
    for (int i = 0; i < count; ++i)
        inOrder += QStringLiteral("state %1").arg(i + 1);
    QCOMPARE(slave.loader.log, inOrder);
}

/// The event loop may tell of a datagram that was read in the same turn already.
void tst_OrbUdpSocket::aDatagramThatIsGoneStopsNothing()
{
    Slave slave;
    auto *notifier = slave.socket.findChild<QSocketNotifier *>();
    QVERIFY(notifier);
    QEvent told(QEvent::SockAct);
    QCoreApplication::sendEvent(notifier, &told);
    slave.send(packet(0, 1));
    QCOMPARE(slave.loader.log.size(), 1);
}

QTEST_MAIN(tst_OrbUdpSocket)
#include "tst_OrbUdpSocket.moc"
