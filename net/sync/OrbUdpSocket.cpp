#include "OrbUdpSocket.h"

OrbUdpSocket::OrbUdpSocket(OrbGlobalObject *, const QString &, QObject *parent)
    : QObject(parent)
{}
