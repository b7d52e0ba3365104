#include "ServiceSource.h"

#include <QLoggingCategory>
#include <QNetworkProxy>
#include <QWebSocket>

#include <algorithm>
#include <utility>

namespace {

Q_LOGGING_CATEGORY(lcHands, "orbix.hands", QtWarningMsg)

using namespace Leap;
using namespace std::chrono_literals;

constexpr auto kPatience = 2s;         // the service is on this machine
constexpr std::size_t kMaxWaiting = 8; // frames; older ones only delay the hands
constexpr auto kWatchInterval = 100ms;
constexpr qint64 kMaxGreetingBytes = 16384; // at once
constexpr int kMaxReason = 200;             // characters, some of which the service chooses

/// Why it has been disconnected.
QString reasonOf(const QWebSocket &socket)
{
    if (!socket.closeReason().isEmpty())
        return socket.closeReason();
    return socket.error() == QAbstractSocket::UnknownSocketError
        ? QStringLiteral("It has closed the connection")
        : socket.errorString();
}

} // namespace

QUrl ServiceSource::defaultUrl()
{
    return QUrl(
        qEnvironmentVariable("ORBIX_HANDS_SERVICE", QStringLiteral("ws://localhost:6437/v6.json")));
}

ServiceSource::ServiceSource(QUrl url, const ReconnectPauses &pauses)
    : m_url(std::move(url))
    , m_pauses(pauses)
    , m_nextPause(pauses.first)
{
    m_pause.setSingleShot(true);
    m_pause.setTimerType(Qt::PreciseTimer);
    m_patience.setSingleShot(true);
    // Qt answers each ping, and keeps the answers that the other side does not read.
    connect(&m_watch, &QTimer::timeout, this, [this] {
        if (m_socket->bytesToWrite() > kMaxMessageBytes)
            close(QStringLiteral("it does not read"));
    });
    connect(&m_pause, &QTimer::timeout, this, &ServiceSource::open);
    connect(&m_patience, &QTimer::timeout, this, [this] { close(QStringLiteral("No answer")); });
}

void ServiceSource::start()
{
    open();
}

void ServiceSource::open()
{
    m_patience.start(kPatience);
    m_socket = new QWebSocket(QString(), QWebSocketProtocol::VersionLatest, this);
    m_socket->setProxy(QNetworkProxy::NoProxy);
    m_socket->setMaxAllowedIncomingFrameSize(kMaxMessageBytes);
    m_socket->setMaxAllowedIncomingMessageSize(kMaxMessageBytes);
    connect(m_socket, &QWebSocket::connected, this, &ServiceSource::greet);
    connect(m_socket, QOverload<QAbstractSocket::SocketError>::of(&QWebSocket::error), this,
            [this] { close(m_socket->errorString()); });
    connect(m_socket, &QWebSocket::disconnected, this, [this] { close(reasonOf(*m_socket)); });
    connect(m_socket, &QWebSocket::textMessageReceived, this, &ServiceSource::take);
    m_socket->open(m_url); // may fail at once
    if (m_socket)
        m_socket->setReadBufferSize(kMaxGreetingBytes); // Qt would keep an endless one
}

void ServiceSource::greet()
{
    m_patience.stop();
    m_watch.start(kWatchInterval);
    m_socket->setReadBufferSize(2 * qint64(kMaxMessageBytes));
    m_socket->sendTextMessage(QStringLiteral("{\"focused\":true}"));
    m_socket->sendTextMessage(QStringLiteral("{\"background\":true}"));
    m_socket->sendTextMessage(QStringLiteral("{\"optimizeHMD\":false}"));
    m_socket->sendTextMessage(QStringLiteral("{\"enableGestures\":true}")); // older services do
}

void ServiceSource::take(const QString &text)
{
    ServiceMessage message = parseServiceMessage(text.toUtf8());
    if (const auto *error = std::get_if<MessageError>(&message)) {
        warnOnce(error->reason);
        return;
    }
    if (!m_isHeard)
        qCInfo(lcHands, "Connected to the tracking service at %s.",
               qPrintable(m_url.toDisplayString()));
    m_isHeard = true;
    m_saidAbsent = false;
    if (std::holds_alternative<FrameData>(message) || std::holds_alternative<DeviceEvent>(message))
        m_nextPause = m_pauses.first;

    const bool wasConnected = m_stream.isConnected();
    const bool isNew = m_stream.take(message);
    if (m_stream.isConnected() != wasConnected) {
        m_waiting.clear();
        emit connectedChanged(!wasConnected);
    }
    if (!isNew)
        return;
    // Frames that came while the last one was worked on arrive all at once.
    if (m_waiting.empty())
        QMetaObject::invokeMethod(this, &ServiceSource::deliver, Qt::QueuedConnection);
    if (m_waiting.size() == kMaxWaiting)
        m_waiting.pop_front();
    m_waiting.push_back(std::get<FrameData>(std::move(message)));
}

void ServiceSource::deliver()
{
    const std::deque<FrameData> frames = std::exchange(m_waiting, {});
    for (const FrameData &frame : frames)
        emit frameArrived(frame);
}

void ServiceSource::close(const QString &reason)
{
    m_socket->disconnect(this);
    m_socket->deleteLater();
    m_socket = nullptr;
    m_patience.stop();
    m_watch.stop();
    const QString said = reason.simplified().left(kMaxReason);
    if (m_isHeard)
        qCInfo(lcHands, "The tracking service has gone: %s", qPrintable(said));
    else if (!m_saidAbsent)
        qCInfo(lcHands, "No tracking service at %s: %s", qPrintable(m_url.toDisplayString()),
               qPrintable(said));
    m_saidAbsent = !m_isHeard;
    m_isHeard = false;
    m_waiting.clear();
    if (std::exchange(m_stream, {}).isConnected())
        emit connectedChanged(false);
    m_pause.start(m_nextPause);
    m_nextPause = std::min(2 * m_nextPause, m_pauses.longest);
}

void ServiceSource::warnOnce(const QString &reason)
{
    if (m_warnings.contains(reason))
        return;
    m_warnings.insert(reason);
    qCWarning(lcHands, "A message of the tracking service cannot be read: %s", qPrintable(reason));
}
