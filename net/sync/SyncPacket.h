#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// What a master tells its slaves, whole in every datagram: where it looks and what it plays. On
/// the wire it is one JSON object, as compact text or in Qt's binary form of the same document.
struct SyncPacket
{
    QString id;    ///< "oxs" marks the packets of this program
    float yaw = 0; ///< radians, as the others
    float pitch = 0;
    float roll = 0;
    QString url;      ///< the media; empty for none
    int state = 0;    ///< 0 stopped, 1 playing, 2 paused
    int position = 0; ///< milliseconds

    QByteArray toText() const;
    QByteArray toBinary() const;

    /// The packet in any bytes. Nothing if they are no such document with at least one member, if a
    /// member is an object or array, which no packet has, if an angle is not finite, a number out
    /// of its type's range, or the url longer than any of use. A member that is missing or no
    /// number counts as 0 or empty.
    static std::optional<SyncPacket> fromText(const QByteArray &bytes);
    static std::optional<SyncPacket> fromBinary(const QByteArray &bytes);
};
