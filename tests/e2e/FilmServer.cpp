#include "FilmServer.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QUrl>

FilmServer::FilmServer(const QString &folder)
    : m_folder(folder)
{
    connect(this, &QTcpServer::newConnection, this, &FilmServer::accept);
    if (!listen(QHostAddress::LocalHost))
        qFatal("The film server has no port: %s", qPrintable(errorString()));
}

QString FilmServer::address(const QString &file) const
{
    return QStringLiteral("http://127.0.0.1:%1/").arg(serverPort())
        + QString::fromLatin1(QUrl::toPercentEncoding(file));
}

void FilmServer::accept()
{
    while (QTcpSocket *socket = nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
            if (socket->peek(socket->bytesAvailable()).contains("\r\n\r\n"))
                answer(socket, socket->readAll());
        });
    }
}

void FilmServer::answer(QTcpSocket *socket, const QByteArray &request)
{
    static const QRegularExpression line(QStringLiteral("^GET /(\\S*) HTTP"));
    static const QRegularExpression range(QStringLiteral("\r\nRange: bytes=(\\d+)-(\\d*)\r\n"));
    const QString text = QString::fromLatin1(request);
    const QByteArray name = line.match(text).captured(1).toLatin1();
    QFile file(QDir(m_folder).filePath(QUrl::fromPercentEncoding(name)));
    QByteArray head = "HTTP/1.1 404 Not Found\r\n";
    QByteArray body;
    if (!name.isEmpty() && file.open(QIODevice::ReadOnly)) {
        head = "HTTP/1.1 200 OK\r\nAccept-Ranges: bytes\r\n";
        body = file.readAll();
    }
    const QRegularExpressionMatch asked = range.match(text);
    if (asked.hasMatch() && !body.isEmpty()) {
        const int all = body.size();
        const int first = asked.captured(1).toInt();
        body = asked.captured(2).isEmpty() ? body.mid(first)
                                           : body.mid(first, asked.captured(2).toInt() - first + 1);
        head = QStringLiteral("HTTP/1.1 206 Partial Content\r\nContent-Range: bytes %1-%2/%3\r\n")
                   .arg(first)
                   .arg(first + body.size() - 1)
                   .arg(all)
                   .toLatin1();
    }
    socket->write(head + "Connection: close\r\nContent-Length: " + QByteArray::number(body.size())
                  + "\r\n\r\n" + body);
    socket->disconnectFromHost();
}
