#include "UpdateServer.h"

#include "Product.h"

#include <QTcpSocket>
#include <QUrl>

bool UpdateServer::start()
{
    connect(this, &QTcpServer::newConnection, this, [this] {
        QTcpSocket *socket = nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    });
    const QUrl address(Product::updateServerUrl());
    return listen(QHostAddress::LocalHost, static_cast<quint16>(address.port()));
}

void UpdateServer::answer(QTcpSocket *socket)
{
    if (!socket->peek(1 << 16).contains("\r\n\r\n"))
        return;
    const QString target = QString::fromLatin1(socket->readAll().split(' ').value(1));
    m_asked += target;
    const auto file = m_files.constFind(target.section(QLatin1Char('?'), 0, 0));
    const bool found = file != m_files.constEnd();
    const QByteArray content = found ? *file : QByteArray();
    socket->write((found ? "HTTP/1.1 200 OK" : "HTTP/1.1 404 Not Found")
                  + QByteArray("\r\nConnection: close\r\nContent-Length: ")
                  + QByteArray::number(content.size()) + "\r\n\r\n" + content);
    socket->disconnectFromHost();
}
