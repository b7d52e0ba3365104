#include "OrbUdpSocket.h"

#include "OrbGlobalObject.h"
#include "SyncPacket.h"

#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QTimer>
#include <QUdpSocket>
#include <QUrl>
#include <QVariant>

#include <chrono>

namespace {

Q_LOGGING_CATEGORY(lcNet, "orbix.net")

using namespace std::chrono_literals;

constexpr int kSeekThresholdMs = 3000;
constexpr auto kSeekPause = 1000ms;
constexpr qint64 kReadingNs = 5'000'000; // in one pass of the event loop

QString key(const char *name)
{
    return QStringLiteral("application/communication/") + QLatin1String(name);
}

QObject *mediaPlayerOf(const QObject *loader)
{
    return loader ? loader->property("mediaPlayer").value<QObject *>() : nullptr;
}

} // namespace

OrbUdpSocket::OrbUdpSocket(OrbGlobalObject *state, const QString &mode, QObject *parent)
    : QObject(parent)
    , m_state(state)
{
    const QString chosen = mode.isEmpty()
        ? m_state->getSetting(key("state"), QStringLiteral("off")).toString()
        : mode;
    const bool isMaster = chosen == QLatin1String("master");
    if (!isMaster && chosen != QLatin1String("slave"))
        return;
    m_socket = new QUdpSocket(this);
    m_id = QStringLiteral("oxs");
    m_port = m_state->getSetting(key("port"), 7755).toInt();
    m_seekThresholdMs = kSeekThresholdMs;
    m_rateMs = m_state->getSetting(key("rate"), 20).toInt();
    m_format = m_state->getSetting(key("format"), int(JSON)).toInt();
    if (isMaster)
        startMaster();
    else
        startSlave();
}

void OrbUdpSocket::startMaster()
{
    const QString ipMode = m_state->getSetting(key("ipMode"), QStringLiteral("localhost"))
                               .toString();
    if (ipMode == QLatin1String("broadcast")) {
        m_destination = QHostAddress(QHostAddress::Broadcast);
    } else if (ipMode == QLatin1String("localhost")) {
        m_destination = QHostAddress(QHostAddress::LocalHost);
    } else {
        m_destination = QHostAddress(
            m_state->getSetting(key("ipCustom"), QStringLiteral("192.168.1.1")).toString());
    }
    m_sendTimer = new QTimer(this);
    m_sendTimer->setTimerType(Qt::PreciseTimer);
    connect(m_sendTimer, &QTimer::timeout, this, &OrbUdpSocket::writeData);
    m_sendTimer->start(qMax(0, m_rateMs));
}

void OrbUdpSocket::startSlave()
{
    m_urlMode = m_state->getSetting(key("urlMode"), int(Absolute)).toInt();
    m_followsOrientation = m_state->getSetting(key("orientation"), true).toBool();
    connect(m_socket, &QUdpSocket::readyRead, this, &OrbUdpSocket::readData);
    // Shared, so that all copies that drive the screens of one machine hear a broadcast.
    if (!m_socket->bind(static_cast<quint16>(m_port), QUdpSocket::ShareAddress)) {
        qCWarning(lcNet, "A slave cannot listen on port %d: %s", int(static_cast<quint16>(m_port)),
                  qPrintable(m_socket->errorString()));
    }
}

void OrbUdpSocket::writeData()
{
    m_socket->writeDatagram(encode(currentState()), m_destination, static_cast<quint16>(m_port));
}

SyncPacket OrbUdpSocket::currentState() const
{
    SyncPacket packet;
    packet.id = m_id;
    packet.yaw = m_state->yaw();
    packet.pitch = m_state->pitch();
    packet.roll = m_state->roll();
    if (const QObject *player = mediaPlayerOf(m_state->mediaLoader())) {
        packet.url = player->property("mediaSource").toString();
        packet.state = player->property("playbackState").toInt();
        packet.position = player->property("position").toInt();
    }
    return packet;
}

QByteArray OrbUdpSocket::encode(const SyncPacket &packet) const
{
    return m_format == QtBinary ? packet.toBinary() : packet.toText();
}

std::optional<SyncPacket> OrbUdpSocket::decode(const QByteArray &bytes) const
{
    return m_format == QtBinary ? SyncPacket::fromBinary(bytes) : SyncPacket::fromText(bytes);
}

void OrbUdpSocket::readData()
{
    if (m_readsOnLater)
        return; // what has come stands behind what waits
    QElapsedTimer reading;
    reading.start();
    // The last attempt finds nothing and is needed all the same: without one Qt tells of no later
    // datagram, and it tells of some that are gone by now.
    while (reading.nsecsElapsed() < kReadingNs) {
        QByteArray bytes(int(qMax<qint64>(0, m_socket->pendingDatagramSize())), '\0');
        if (m_socket->readDatagram(bytes.data(), bytes.size()) < 0)
            return;
        const std::optional<SyncPacket> packet = decode(bytes);
        if (packet && packet->id == m_id)
            follow(*packet);
    }
    m_readsOnLater = true;
    const auto readOn = [this] {
        m_readsOnLater = false;
        readData();
    };
    QMetaObject::invokeMethod(this, readOn, Qt::QueuedConnection);
}

void OrbUdpSocket::follow(const SyncPacket &packet)
{
    if (m_followsOrientation) {
        m_state->setYaw(packet.yaw, true);
        m_state->setPitch(packet.pitch, true);
        m_state->setRoll(packet.roll, true);
    }
    if (m_state->mediaLoader())
        followMedia(packet);
}

void OrbUdpSocket::followMedia(const SyncPacket &packet)
{
    const QUrl url = localUrl(packet.url);
    if (url.isEmpty() && m_urlMode != Off)
        return;
    QObject *loader = m_state->mediaLoader();
    // What is opened may be shown by another player, which the next datagram finds.
    const QPointer<QObject> player = mediaPlayerOf(loader);
    if (!player)
        return;
    if (m_refused != url) {
        m_refused.reset();
        if (player->property("mediaSource").toUrl() != url)
            open(url);
    }
    if (player && player->property("playbackState").toInt() != packet.state)
        QMetaObject::invokeMethod(loader, "syncPlaybackState", Q_ARG(QVariant, packet.state));
    if (!player || !m_maySeek)
        return;
    const qint64 ahead = player->property("position").toLongLong() - qint64(packet.position);
    if (qAbs(ahead) <= m_seekThresholdMs)
        return;
    m_maySeek = false;
    QMetaObject::invokeMethod(player, "seek", Q_ARG(QVariant, packet.position));
    QTimer::singleShot(kSeekPause, Qt::PreciseTimer, this, &OrbUdpSocket::unlockSync);
}

/// Opens what the master shows. What this copy cannot open it tells the user once, not with every
/// datagram until the master shows something else.
void OrbUdpSocket::open(const QUrl &url)
{
    QObject *loader = m_state->mediaLoader();
    QMetaObject::invokeMethod(loader, "processFileSource", Q_ARG(QVariant, url),
                              Q_ARG(QVariant, true), Q_ARG(QVariant, true),
                              Q_ARG(QVariant, QString()));
    const QObject *player = mediaPlayerOf(m_state->mediaLoader());
    const bool isOpen = player && player->property("mediaSource").toUrl() == url;
    m_refused = isOpen ? std::nullopt : std::optional(url);
}

void OrbUdpSocket::unlockSync()
{
    m_maySeek = true;
}

QUrl OrbUdpSocket::localUrl(const QString &url) const
{
    const QUrl received(url, QUrl::TolerantMode);
    QStandardPaths::StandardLocation location = QStandardPaths::MoviesLocation;
    switch (m_urlMode) {
    case Movies:
        break;
    case Desktop:
        location = QStandardPaths::DesktopLocation;
        break;
    case Off:
        return {};
    default:
        return received.isValid() ? received : QUrl();
    }
    const QString path = QStandardPaths::locate(location, received.fileName(QUrl::FullyDecoded),
                                                QStandardPaths::LocateFile);
    return path.isEmpty() ? QUrl() : QUrl::fromLocalFile(path);
}
