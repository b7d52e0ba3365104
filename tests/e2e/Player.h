#pragma once

#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QVector>

#include <sys/types.h>
#include <functional>

/// One run of the real program with the driver in it and a configuration of its own. What is still
/// running at the end is killed, whatever the program has started too.
class Player
{
public:
    Player();
    ~Player();

    /// Starts the program in `folder`; empty: where the test runs.
    void start(const QStringList &arguments, const QString &folder = QString());

    void setEnvironment(const QString &name, const QString &value);

    /// Writes the settings that the program will find.
    void setSetting(const QString &key, const QVariant &value);

    /// The settings as they stand on the disk now.
    QVariantMap settings() const;

    /// The program's pictures, playlists and so on.
    QString folder() const { return m_files.path(); }

    /// What the program answers, or an empty object if it does not answer in time.
    QJsonObject state();

    /// Asks for the state until it pleases; false after the deadline, or when no answer comes.
    bool waitForState(const std::function<bool(const QJsonObject &)> &isWanted);

    /// The state that was last told.
    QJsonObject lastState() const { return m_lastState; }

    /// Opens a file or an address as the dialog for it does, once a window is shown.
    void open(const QString &text);

    /// Ends the event loop with this code.
    void exit(int code);

    /// Asks the window to close, as a window manager does.
    void closeWindow();

    /// Waits for the end; false if it does not come.
    bool waitForEnd();
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    bool crashed() const { return m_process.exitStatus() == QProcess::CrashExit; }
    int exitCode() const { return m_process.exitCode(); }

    /// The processes of this run, those that the program has started too.
    QVector<pid_t> processes() const;

    /// The entries of the driver's log of one kind, "start", "frame" or "end".
    QVector<QJsonObject> log(const QString &event) const;

    /// What the program and those that it started have written to standard error, in lines.
    QStringList errorOutput() const;

private:
    QString settingsFile() const;

    QTemporaryDir m_files;
    QProcessEnvironment m_environment;
    QProcess m_process;
    QJsonObject m_lastState;
};
