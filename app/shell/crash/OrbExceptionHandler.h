#pragma once

#include <QObject>
#include <QString>

#include <sys/types.h>

#include <atomic>

#include <client/linux/handler/exception_handler.h>

/// Writes the dumps: of a crash, on the thread that crashed, and of the running program.
///
/// The signal is emitted from within the handler of a crash, for the first thread that crashes. The
/// heap may be in disorder there and its locks taken: the texts that it carries were allocated
/// before, and a receiver, connected directly, must neither allocate nor copy them, nor take a
/// lock. Qt itself takes one for a thread other than the main thread, which only a crash within
/// Qt's own connecting may hold: where receivers are not through after ten seconds, SIGALRM ends
/// the program.
class OrbExceptionHandler : public QObject, public google_breakpad::ExceptionHandler
{
    Q_OBJECT

public:
    /// `context` is handed to the receivers of the signal.
    OrbExceptionHandler(const QString &dumpFolder, void *context);

    /// Writes a dump of the running program, with the signal; false if it could not be written.
    /// Not for use in a crash.
    bool write();

signals:
    /// A dump `dump_path`/`minidump_id`.dmp stands there, or could not be written.
    void crash_report_dumped(const QString &dump_path, const QString &minidump_id, void *context,
                             bool succeeded);

private:
    static bool onDumped(const google_breakpad::MinidumpDescriptor &descriptor, void *handler,
                         bool succeeded);

    void *m_context;
    QString m_dumpPath;
    QString m_minidumpId;           ///< of the last dump, written into where it stands
    QChar *m_idLetters;             ///< of m_minidumpId
    bool m_succeeded = false;       ///< the last dump
    std::atomic<pid_t> m_writer{0}; ///< the thread that writes on demand; 0: none
    std::atomic_flag m_hasCrashed = ATOMIC_FLAG_INIT;
};
