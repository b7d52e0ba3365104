#pragma once

#include <QObject>
#include <QString>

#include <client/linux/handler/exception_handler.h>

/// Writes the dumps: of a crash, on the thread that crashed, and of the running program.
///
/// The signal is emitted from within the handler of a crash. The heap may be in disorder there and
/// its locks taken: the texts that it carries were allocated before, and a receiver, connected
/// directly, must neither allocate nor copy them, nor take a lock.
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
    QString m_minidumpId; ///< of the last dump, written into where it stands
    QChar *m_idLetters;   ///< of m_minidumpId
};
