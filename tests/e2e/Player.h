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

    /// Has the program started by another that takes the command behind its own arguments.
    void startBy(const QStringList &command) { m_starter = command; }

    /// Another copy of the program than the one beside the tests.
    void setProgram(const QString &path) { m_program = path; }

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

    /// A property of an object that the scene knows by this name, or of one that hangs on it as
    /// "object.property", once a window is shown.
    QVariant value(const char *object, const char *property);

    /// The state that was last told.
    QJsonObject lastState() const { return m_lastState; }

    /// Whether a text that contains `part` can be seen in such a state.
    static bool shows(const QJsonObject &state, const QString &part);

    /// Opens a file or an address as the dialog for it does, once a window is shown.
    void open(const QString &text);

    /// Another command of the driver without an answer, such as "place 0 0 640 360".
    void order(const QByteArray &line);

    /// Sends the process this signal.
    void raise(int signal);

    /// Ends the event loop with this code.
    void exit(int code);

    /// Closes the window.
    void close();

    bool isRunning() const { return m_process.state() == QProcess::Running; }

    /// Waits for the end and tells its code, behind it the lines on standard error that do not
    /// match `ignored`. What else may happen it tells in words.
    QString ending(const QString &ignored = {});

    /// What the program has written to standard error.
    QString errors() const;

    /// The processes of this run, those that the program has started too.
    QVector<pid_t> processes() const;

    /// The entries of the driver's log of one kind, "start", "frame" or "end".
    QVector<QJsonObject> log(const QString &event) const;

private:
    QString settingsFile() const;

    /// What the driver answers to a command; empty if it does not in time.
    QJsonObject ask(const QByteArray &command);

    QTemporaryDir m_files;
    QString m_program;
    QProcessEnvironment m_environment;
    QStringList m_starter;
    QProcess m_process;
    QJsonObject m_lastState;
};
