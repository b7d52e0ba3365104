#pragma once

#include <QTcpServer>

class QTcpSocket;

/// Serves the files of a folder over HTTP on the loopback interface, ranges of them too. Works in
/// the event loop of its thread.
class FilmServer : public QTcpServer
{
    Q_OBJECT

public:
    explicit FilmServer(const QString &folder);

    /// The address of a file, encoded.
    QString address(const QString &file) const;

private:
    void accept();
    void answer(QTcpSocket *socket, const QByteArray &request);

    QString m_folder;
};
