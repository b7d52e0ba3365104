#pragma once

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QTcpServer>
#include <QVector>

class QSslSocket;

/// A hosting service on loopback, over HTTPS with a certificate that it signed itself. Works in the
/// event loop of its thread.
///
/// It plays the service: every login and refresh succeeds, what lies under "oauth/" wants the
/// access token, and the lists are those given. Answers that were queued come before that, whatever
/// is asked.
class HostingServer : public QTcpServer
{
    Q_OBJECT

public:
    struct Request
    {
        QByteArray method;
        QByteArray path;                       ///< below the root of the service, as it was sent
        QHash<QByteArray, QByteArray> headers; ///< names in lower case
        QByteArray body;
    };

    struct Answer
    {
        enum Way {
            Whole,
            CutShort, ///< the connection ends before the announced length
            Endless,  ///< the body comes again and again
            Never,
        };

        QByteArray body;
        int status = 200;
        Way way = Whole;
        QByteArray header; ///< further header lines, each with its line end
    };

    static Answer json(const QJsonObject &object);
    static Answer json(const QJsonArray &array);
    static Answer error(const QString &error, const QString &description);

    /// Fails the process if `port` is taken; 0 is any that is free.
    explicit HostingServer(quint16 port = 0);

    /// The root of the service, ending in "/".
    QString baseUrl() const;

    void queue(const Answer &answer) { m_queue.append(answer); }

    /// `path` below the root, such as "public/videos".
    void setList(const QByteArray &path, const QJsonArray &videos) { m_lists[path] = videos; }

    const QVector<Request> &requests() const { return m_requests; }

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    void read(QSslSocket *socket);
    void send(QSslSocket *socket, const Answer &answer);
    Answer played(const Request &request) const;

    QVector<Answer> m_queue;
    QHash<QByteArray, QJsonArray> m_lists;
    QVector<Request> m_requests;
};
