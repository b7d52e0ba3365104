#pragma once

#include <QUdpSocket>

/// A UDP port of this machine where nobody listens.
inline quint16 freePort()
{
    QUdpSocket socket;
    socket.bind();
    return socket.localPort();
}
