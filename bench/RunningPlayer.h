#pragma once

#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>

class Screen;

/// One run of a player on the whole of a screen, with settings of its own. It is killed with the
/// object. The players show 90 degrees of the sphere over the screen's height. Mpv draws with its
/// X11 output, the fastest that it has without a graphics processor, MpvGl with OpenGL.
class RunningPlayer
{
public:
    enum Kind { OrbixSight, Vlc, Mpv, MpvGl };
    static QString name(Kind kind);

    /// Below `caches` it keeps what makes a later start faster, as for a user.
    RunningPlayer(Kind kind, Screen *screen, const QString &caches);
    ~RunningPlayer();

    /// False if the program cannot be started.
    bool start(const QString &media);

    bool isRunning();

    /// Connects to the player's remote control and sets its field of view, once it shows a picture.
    /// False if the player has no ear for it.
    bool takeControl();

    void seek(double seconds);

    /// User and system time of the process up to now, in seconds.
    double cpuSeconds() const;

    /// The most physical memory that the process had so far, in MiB.
    double peakMemoryMib() const;

private:
    bool findTimeline();
    void command(const QByteArray &line);
    QByteArray processFile(const char *name) const;

    Kind m_kind;
    Screen *m_screen;
    const QString m_cache;
    QTemporaryDir m_home;
    QProcess m_process;
    QLocalSocket m_remote;
    uint32_t m_window = 0;
    int m_timelineLeft = -1; ///< pixels
    int m_timelineWidth = 0;
};
