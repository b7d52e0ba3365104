#pragma once

#include <QObject>

class OrbGlobalObject;

/// Keeps copies of the program in step over UDP. The scene sees its enumerations only. Main thread.
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

    /// `state` is not owned. `mode` is "master" or "slave", or empty for what the settings say.
    OrbUdpSocket(OrbGlobalObject *state, const QString &mode, QObject *parent = nullptr);
};
