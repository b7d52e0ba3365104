#include "ServiceSource.h"

#include "WarningsFail.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QWebSocket>
#include <QWebSocketServer>
#include <QtTest>

#include <memory>
#include <vector>

using namespace std::chrono_literals;

namespace {

/// A tracking service on a port of its own.
class Service
{
public:
    Service()
    {
        m_clock.start();
        QObject::connect(&m_server, &QWebSocketServer::newConnection, &m_server, [this] {
            m_socket.reset(m_server.nextPendingConnection());
            connectedAtMs.push_back(m_clock.elapsed());
            QObject::connect(m_socket.get(), &QWebSocket::textMessageReceived, &m_server,
                             [this](const QString &text) { received.append(text); });
            for (const QString &message : qAsConst(onConnect))
                send(message);
            if (closesAtOnce)
                m_socket->close();
        });
        m_server.listen(QHostAddress::LocalHost);
    }

    QUrl url() const { return m_server.serverUrl(); }
    void send(const QString &message) { m_socket->sendTextMessage(message); }
    void sendDevice(bool isAttached)
    {
        send(QStringLiteral(R"({"event": {"type": "deviceEvent", "state":
            {"id": "A", "attached": %1, "streaming": %1}}})")
                 .arg(isAttached ? QStringLiteral("true") : QStringLiteral("false")));
    }
    void sendFrame(int id)
    {
        send(QStringLiteral(R"({"id": %1, "timestamp": %1, "hands": []})").arg(id));
    }
    void sendBytes(const QByteArray &bytes) { m_socket->sendBinaryMessage(bytes); }
    void flush() { m_socket->flush(); }
    void hangUp() { m_socket->close(); }
    void stop()
    {
        m_server.close();
        m_socket->abort();
    }

    QStringList onConnect; ///< what it sends at once
    bool closesAtOnce = false;
    QStringList received;
    std::vector<qint64> connectedAtMs;

private:
    QElapsedTimer m_clock;
    QWebSocketServer m_server{QStringLiteral("hands"), QWebSocketServer::NonSecureMode};
    std::unique_ptr<QWebSocket> m_socket; ///< of the newest connection
};

/// What a source tells, as text: + and - for the device, numbers for frames.
struct Told
{
    explicit Told(const FrameSource &source)
    {
        QObject::connect(&source, &FrameSource::connectedChanged, &source, [this](bool connected) {
            events.append(connected ? QStringLiteral("+") : QStringLiteral("-"));
        });
        QObject::connect(&source, &FrameSource::frameArrived, &source,
                         [this](const Leap::FrameData &frame) {
                             events.append(QString::number(frame.id));
                         });
    }

    QStringList events;
};

/// Counts the warnings of the program while it lives.
struct Warnings
{
    Warnings()
    {
        count = 0;
        next = qInstallMessageHandler(
            [](QtMsgType type, const QMessageLogContext &context, const QString &text) {
                count += type == QtWarningMsg ? 1 : 0;
                next(type, context, text);
            });
    }
    ~Warnings() { qInstallMessageHandler(next); }
    Q_DISABLE_COPY(Warnings)

    static int count;
    static QtMessageHandler next;
};

int Warnings::count = 0;
QtMessageHandler Warnings::next = nullptr;

constexpr ReconnectPauses kQuick{10ms, 10ms};

} // namespace

class tst_LeapServiceSource : public WarningsFail
{
    Q_OBJECT

private slots:
    void asksForFramesAndPassesThemOn();
    void knowsADeviceByItsFrames();
    void waitsLongerEachTime();
    void outlivesNonsense();
    void outlivesWhatIsNoService();
    void followsAServiceThatStartsAnew();
    void dropsOldFramesOfAFlood();
    void takesTheAddressFromTheEnvironment();
};

void tst_LeapServiceSource::asksForFramesAndPassesThemOn()
{
    Service service;
    ServiceSource source(service.url());
    const Told told(source);
    source.start();
    QTRY_COMPARE(service.received.size(), 4);
    QCOMPARE(service.received,
             (QStringList{R"({"focused":true})", R"({"background":true})",
                          R"({"optimizeHMD":false})", R"({"enableGestures":true})"}));
    service.send(QStringLiteral(R"({"version": 6})"));
    service.sendDevice(true);
    service.sendFrame(1);
    service.sendFrame(3);
    service.sendFrame(2);
    service.sendFrame(4);
    QTRY_COMPARE(told.events.join(QLatin1Char(' ')), QStringLiteral("+ 1 3 4"));
    service.sendDevice(false);
    service.sendFrame(5);
    service.sendDevice(true);
    service.sendFrame(6);
    QTRY_COMPARE(told.events.join(QLatin1Char(' ')), QStringLiteral("+ 1 3 4 - + 6"));
    // A frame that the device's end overtakes is gone.
    service.sendFrame(7);
    service.sendDevice(false);
    service.sendDevice(true);
    service.sendFrame(8);
    QTRY_COMPARE(told.events.mid(told.events.lastIndexOf(QStringLiteral("-"))),
                 (QStringList{QStringLiteral("-"), QStringLiteral("+"), QStringLiteral("8")}));
    QCOMPARE(service.received.size(), 4);
}

void tst_LeapServiceSource::knowsADeviceByItsFrames()
{
    Service service;
    service.onConnect.append(QStringLiteral(R"({"version": 6})"));
    ServiceSource source(service.url());
    const Told told(source);
    source.start();
    QTRY_COMPARE(service.received.size(), 4);
    QVERIFY(told.events.isEmpty());
    service.sendFrame(1);
    QTRY_COMPARE(told.events.join(QLatin1Char(' ')), QStringLiteral("+ 1"));
}

void tst_LeapServiceSource::waitsLongerEachTime()
{
    Service service;
    service.closesAtOnce = true;
    ServiceSource source(service.url(), {20ms, 320ms});
    source.start();
    const auto &at = service.connectedAtMs;
    QTRY_VERIFY(at.size() >= 7);
    qint64 pause = 20;
    for (std::size_t i = 1; i < at.size(); ++i) {
        QVERIFY2(at[i] - at[i - 1] >= pause - 1, qPrintable(QString::number(at[i] - at[i - 1])));
        pause = qMin(2 * pause, qint64(320));
    }
    // The last two, of the longest pause; then one that tells of a device.
    service.onConnect.append(QStringLiteral(
        R"({"event": {"type": "deviceEvent", "state": {"attached": true, "id": "1"}}})"));
    const std::size_t before = at.size();
    QTRY_VERIFY(at.size() >= before + 2);
    QVERIFY2(at[before + 1] - at[before] < 320, "the pauses did not begin anew");
}

void tst_LeapServiceSource::outlivesNonsense()
{
    expectWarning(QStringLiteral("cannot be read: No JSON$"));
    expectWarning(QStringLiteral("cannot be read: A frame without id or timestamp$"));
    Service service;
    ServiceSource source(service.url(), kQuick);
    const Told told(source);
    source.start();
    QTRY_COMPARE(service.received.size(), 4);
    const Warnings warnings;
    for (int i = 0; i < 3; ++i) {
        service.send(QStringLiteral("{\"id"));
        service.send(QStringLiteral(R"({"timestamp": []})"));
    }
    service.sendBytes("\xff\xfe{}");
    service.sendFrame(1);
    QTRY_COMPARE(told.events.join(QLatin1Char(' ')), QStringLiteral("+ 1"));
    QCOMPARE(Warnings::count, 2);

    service.send(QString(2 * Leap::kMaxMessageBytes, QLatin1Char(' ')));
    QTRY_COMPARE(service.connectedAtMs.size(), 2U);
    service.sendFrame(1);
    QTRY_COMPARE(told.events.join(QLatin1Char(' ')), QStringLiteral("+ 1 - + 1"));
}

void tst_LeapServiceSource::outlivesWhatIsNoService()
{
    QTcpServer server;
    int connections = 0;
    connect(&server, &QTcpServer::newConnection, &server, [&server, count = &connections] {
        ++*count;
        QTcpSocket *socket = server.nextPendingConnection();
        socket->write("HTTP/1.1 200 OK\r\nServer: none\r\n\r\n" + QByteArray(100, '\xff'));
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    });
    QVERIFY(server.listen(QHostAddress::LocalHost));
    ServiceSource source(QUrl(QStringLiteral("ws://127.0.0.1:%1/").arg(server.serverPort())),
                         kQuick);
    const Told told(source);
    source.start();
    QTRY_VERIFY(connections >= 3);
    QVERIFY(told.events.isEmpty());

    for (const char *url : {"", "http://127.0.0.1:1/", "ws://", "ws://127.0.0.1:1/"}) {
        ServiceSource other(QUrl(QString::fromLatin1(url)), kQuick);
        const Told toldByOther(other);
        other.start();
        QTest::qWait(30);
        QVERIFY(toldByOther.events.isEmpty());
    }
}

void tst_LeapServiceSource::followsAServiceThatStartsAnew()
{
    Service service;
    ServiceSource source(service.url(), kQuick);
    const Told told(source);
    source.start();
    QTRY_COMPARE(service.received.size(), 4);
    service.sendDevice(true);
    service.sendFrame(1000);
    QTRY_COMPARE(told.events.size(), 2);
    service.hangUp();
    QTRY_COMPARE(service.received.size(), 8);
    QCOMPARE(told.events.last(), QStringLiteral("-"));
    service.sendFrame(1); // this one sends no events
    QTRY_COMPARE(told.events.join(QLatin1Char(' ')), QStringLiteral("+ 1000 - + 1"));
    service.stop();
    QTRY_COMPARE(told.events.last(), QStringLiteral("-"));
}

/// All that comes in one go is more than anyone wants to see late.
void tst_LeapServiceSource::dropsOldFramesOfAFlood()
{
    constexpr int kFrames = 2000;
    Service service;
    ServiceSource source(service.url());
    const Told told(source);
    source.start();
    QTRY_COMPARE(service.received.size(), 4);
    for (int id = 1; id <= kFrames; ++id)
        service.sendFrame(id);
    service.flush();
    QTRY_COMPARE(told.events.value(told.events.size() - 1), QString::number(kFrames));
    QVERIFY2(told.events.size() < kFrames / 4, qPrintable(QString::number(told.events.size())));
}

void tst_LeapServiceSource::takesTheAddressFromTheEnvironment()
{
    QCOMPARE(ServiceSource::defaultUrl(), QUrl(QStringLiteral("ws://localhost:6437/v6.json")));
    qputenv("ORBIX_HANDS_SERVICE", "ws://[::1]:7000/x");
    QCOMPARE(ServiceSource::defaultUrl(), QUrl(QStringLiteral("ws://[::1]:7000/x")));
}

QTEST_GUILESS_MAIN(tst_LeapServiceSource)
#include "tst_LeapServiceSource.moc"
