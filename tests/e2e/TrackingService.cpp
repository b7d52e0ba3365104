#include "TrackingService.h"

#include <QEventLoop>
#include <QTimer>
#include <QWebSocket>

namespace {

constexpr int kPatienceMs = 10000;

} // namespace

TrackingService::TrackingService()
    : m_server(QStringLiteral("hands"), QWebSocketServer::NonSecureMode)
{
    QObject::connect(&m_server, &QWebSocketServer::newConnection, &m_server, [this] { greet(); });
    restart();
}

TrackingService::~TrackingService()
{
    stop();
}

QString TrackingService::address() const
{
    return QStringLiteral("ws://localhost:%1/v6.json").arg(m_port);
}

void TrackingService::restart()
{
    if (!m_server.listen(QHostAddress::LocalHost, m_port))
        qFatal("No tracking service: %s", qPrintable(m_server.errorString()));
    m_port = m_server.serverPort();
}

void TrackingService::stop()
{
    m_server.close();
    delete m_client;
    m_client = nullptr;
}

void TrackingService::greet()
{
    m_client = m_server.nextPendingConnection();
    QObject::connect(m_client, &QWebSocket::textMessageReceived, &m_server,
                     [this](const QString &text) { m_received += text; });
    QObject::connect(m_client, &QWebSocket::disconnected, &m_server,
                     [this] { m_client = nullptr; });
    m_client->sendTextMessage(QStringLiteral("{\"version\":6}"));
    attach(true);
}

void TrackingService::attach(bool attached)
{
    const char *flag = attached ? "true" : "false";
    m_client->sendTextMessage(
        QStringLiteral("{\"event\":{\"type\":\"deviceEvent\",\"state\":{\"attached\":%1,"
                       "\"id\":\"1\",\"streaming\":%1,\"type\":\"peripheral\"}}}")
            .arg(QLatin1String(flag)));
}

void TrackingService::play(std::vector<Leap::FrameData> frames)
{
    const std::int64_t first = frames.front().timestamp;
    const std::int64_t begin = m_lastTimestamp + 10000;
    for (Leap::FrameData &frame : frames) {
        if (!m_client)
            return;
        frame.id = ++m_lastId;
        frame.timestamp = m_lastTimestamp = begin + frame.timestamp - first;
        // The first lines are the greeting.
        const QList<QByteArray> lines = serviceMessages({frame}).trimmed().split('\n');
        m_client->sendTextMessage(QString::fromUtf8(lines.last()));
        waitForAnswer();
    }
    waitForAnswer();
}

/// The client answers in the order in which messages arrive, and looks at all that came with one
/// before the next comes in.
void TrackingService::waitForAnswer() const
{
    if (!m_client)
        return;
    QEventLoop answer;
    QObject::connect(m_client, &QWebSocket::pong, &answer, &QEventLoop::quit);
    QObject::connect(m_client, &QWebSocket::disconnected, &answer, &QEventLoop::quit);
    QTimer::singleShot(kPatienceMs, &answer, [] { qFatal("The player does not answer"); });
    m_client->ping();
    answer.exec();
}
