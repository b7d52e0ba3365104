#pragma once

#include "HandMotion.h"

#include <QStringList>
#include <QWebSocketServer>

class QWebSocket;

/// A tracking service with a hand tracker, on a port of its own, for one client.
class TrackingService
{
public:
    TrackingService();
    ~TrackingService();

    /// Where it is to be found.
    QString address() const;

    bool hasClient() const { return m_client != nullptr; }

    /// What the client has said.
    QStringList received() const { return m_received; }

    /// Sends frames with ids and times that go on from what was sent before, each as soon as the
    /// client has taken the one before it; returns when all are worked on. Events are handled
    /// meanwhile.
    void play(std::vector<Leap::FrameData> frames);
    void play(const QString &motion) { play(HandMotion(motion).frames()); }

    /// Says that the device was plugged in or pulled out.
    void attach(bool attached);

    /// As if it had crashed; and comes back at the same address.
    void stop();
    void restart();

private:
    void greet();
    void waitForAnswer() const;

    QWebSocketServer m_server;
    QWebSocket *m_client = nullptr; ///< a child of the server
    quint16 m_port = 0;
    QStringList m_received;
    std::int64_t m_lastId = 1000;
    std::int64_t m_lastTimestamp = 5000000; ///< µs
};
