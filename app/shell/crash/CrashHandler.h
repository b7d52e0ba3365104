#pragma once

#include <QString>

/// The process's crash handler. From `install` to `remove`, a signal that would end the program
/// first leaves a minidump in the dump folder and starts the crash reporter beside the program.
///
/// Main thread, but for the crash, which any thread may have. A stack overflow is reported only on
/// the thread that installs: no other has a second stack for the handler.
namespace CrashHandler {

struct Configuration
{
    int dumpType = 0; ///< MINIDUMP_TYPE; there is no other than 0, the smallest, on Linux
    QString extraArgument;
    QString localeName;
    QString version;
    QString applicationName;
    QString dumpFolder;
};

/// Before any thread touches memory that has a signal handler of its own (GuardedMemory): that one
/// passes on to this one what is not its own.
void install(const Configuration &configuration);
void remove();

/// Text of the failure that is about to end the program. It stands in every dump from now on, as
/// UTF-8, shortened to a kilobyte.
void setMessage(const QString &message);
QString message();

/// Writes a dump of the running program and starts the reporter; false, with a warning in the log,
/// if there is no handler or the dump cannot be written.
bool writeReport();

} // namespace CrashHandler
