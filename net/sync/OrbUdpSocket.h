#pragma once

#include <QHostAddress>
#include <QObject>
#include <QString>
#include <QUrl>

#include <optional>

class OrbGlobalObject;
class QTimer;
class QUdpSocket;
struct SyncPacket;

/// Keeps copies of the program in step over UDP. A master sends its camera, media, state and
/// position on a fixed timer; slaves make their own follow. There is no connection and no answer: a
/// lost datagram is replaced by the next. The scene sees the enumerations only.
///
/// All is read from the settings once, in the constructor. Any sender on the network is heard, so
/// what comes is taken for hostile; a flood of it leaves the event loop its turn.
///
/// Main thread. Its slots call into the scene's media loader.
class OrbUdpSocket : public QObject
{
    Q_OBJECT

public:
    /// How a copy finds the media that the master names.
    enum UrlMode {
        Absolute, ///< the received address as it stands
        Movies,   ///< by file name in the user's movies folder
        Desktop,  ///< by file name in the user's desktop folder
        Off,      ///< not at all
    };
    Q_ENUM(UrlMode)

    enum PacketFormat {
        JSON,     ///< compact text
        QtBinary, ///< Qt's binary form of the same document
    };
    Q_ENUM(PacketFormat)

    /// `state` is not owned. `mode` is "master" or "slave", or empty for what the settings say;
    /// with anything else the object does nothing.
    OrbUdpSocket(OrbGlobalObject *state, const QString &mode, QObject *parent = nullptr);

public slots:
    void writeData();

    /// Takes what has come, for at most 5 ms; the rest after the event loop had its turn.
    void readData();

    /// Lets the next datagram seek again.
    void unlockSync();

private:
    void startMaster();
    void startSlave();
    SyncPacket currentState() const;
    QByteArray encode(const SyncPacket &packet) const;
    std::optional<SyncPacket> decode(const QByteArray &bytes) const;
    void follow(const SyncPacket &packet);
    void followMedia(const SyncPacket &packet);
    void open(const QUrl &url);
    QUrl localUrl(const QString &url) const;

    QUdpSocket *m_socket = nullptr; ///< a child, as the timer; none if neither master nor slave
    QTimer *m_sendTimer = nullptr;  ///< on a master
    QHostAddress m_destination;
    qint64 m_port = 0; ///< its low 16 bits count
    QString m_id;
    int m_seekThresholdMs = 0;
    int m_rateMs = 0;
    int m_urlMode = Absolute;
    bool m_followsOrientation = true;
    int m_format = JSON;
    bool m_maySeek = true;         ///< false for a second after a seek
    bool m_readsOnLater = false;   ///< a call of readData() is queued
    std::optional<QUrl> m_refused; ///< what the master shows, if this copy cannot open it
    OrbGlobalObject *m_state;
};
