#pragma once

#include "FrameSource.h"
#include "MessageStream.h"

#include <QTimer>
#include <QUrl>

#include <chrono>
#include <deque>

class QWebSocket;

/// Between attempts to connect: each pause is twice as long as the one before it, up to the
/// longest.
struct ReconnectPauses
{
    std::chrono::milliseconds first{500};
    std::chrono::milliseconds longest{15'000};
};

/// The tracking service of this machine, over WebSocket. It tries to connect for ever; a connection
/// that told of a device starts the pauses anew. What is wrong with a message is logged once, that
/// there is no service once until there was one.
class ServiceSource : public FrameSource
{
    Q_OBJECT

public:
    /// The service's usual address, or that of the environment variable ORBIX_HANDS_SERVICE, such
    /// as ws://localhost:6438/v6.json, for a service on another port.
    static QUrl defaultUrl();

    explicit ServiceSource(QUrl url = defaultUrl(), const ReconnectPauses &pauses = {});

    void start() override;

private:
    void open();
    void greet();
    void take(const QString &text);
    void deliver();
    void close(const QString &reason);
    void warnOnce(const QString &reason);

    const QUrl m_url;
    const ReconnectPauses m_pauses;
    std::chrono::milliseconds m_nextPause;
    QTimer m_pause;    ///< until the next attempt
    QTimer m_patience; ///< with the one that is under way
    QTimer m_watch;    ///< over the connection
    QWebSocket *m_socket = nullptr;
    bool m_isHeard = false;    ///< has the connection given a message?
    bool m_saidAbsent = false; ///< since it was last heard
    QSet<QString> m_warnings;  ///< that were logged
    Leap::MessageStream m_stream;
    std::deque<Leap::FrameData> m_waiting; ///< the newest that came since the last pass
};
