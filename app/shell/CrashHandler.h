#pragma once

#include <QString>

/// The process's crash handler: what a crash report will say of the program.
namespace CrashHandler {

struct Configuration
{
    int dumpType = 0; ///< kind of dump, 0 the smallest
    QString extraArgument;
    QString localeName;
    QString version;
    QString applicationName;
    QString dumpFolder;
};

void install(const Configuration &configuration);
void remove();

/// Text of the failure that is about to end the program.
void setMessage(const QString &message);
QString message();

/// Writes a report of the running program; false if the handler cannot.
bool writeReport();

} // namespace CrashHandler
