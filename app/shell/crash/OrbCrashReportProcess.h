#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <array>

/// Starts the crash reporter, a program beside this one, with nine arguments: application name,
/// version, user argument, locale name, extra argument, dump folder, dump id, comment and whether
/// the report may be sent.
class OrbCrashReportProcess : public QObject
{
    Q_OBJECT

public:
    OrbCrashReportProcess(const QString &applicationName, const QString &version,
                          const QString &localeName, const QString &extraArgument);

    /// Makes the arguments for dumps in this folder, so that `run` allocates nothing. Before it
    /// `run` does nothing.
    void prepare(const QString &dumpFolder);

public slots:
    /// Starts the reporter for a dump in the folder that was prepared for, which `dump_path` is.
    /// Any thread, also within the handler of a crash: there is nothing here but system calls. The
    /// reporter is no one's child and has a session of its own. If it cannot be started, a line on
    /// standard error says so.
    void run(const QString &dump_path, const QString &minidump_id);

private:
    static constexpr int kArguments = 9;
    static constexpr int kMaxIdLength = 63;

    void startReporter();
    [[noreturn]] void becomeReporter();
    void complain();

    QString m_program;
    QString m_workingDirectory;
    QString m_applicationName;
    QString m_version;
    QString m_localeName;
    QString m_extraArgument;
    QString m_userArgument;
    QString m_comment;
    int m_send = 1;

    // What becomes of these for the system.
    QByteArray m_file; ///< with its folder
    QByteArray m_folder;
    std::array<QByteArray, kArguments> m_texts;
    std::array<char, kMaxIdLength + 1> m_id{};
    std::array<char *, kArguments + 2> m_arguments{}; ///< the program's name, all texts, null
    QByteArray m_complaint;                           ///< up to the dump's id, with room behind it
    char *m_complaintEnd = nullptr;                   ///< where the id goes
};
