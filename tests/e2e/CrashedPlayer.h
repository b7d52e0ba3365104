#pragma once

#include "Player.h"

#include <QDir>

/// A copy of the program in a folder of its own, beside it a crash reporter that only writes down
/// what it was given, and a temporary folder for the dumps.
class CrashedPlayer : public Player
{
public:
    CrashedPlayer();

    void removeReporter();

    /// As TMPDIR names it to the program. It may be any folder, or none.
    void setDumpFolder(const QString &path);
    QString dumpFolder() const { return m_dumpFolder; }

    /// The paths of the dumps, the oldest first.
    QStringList dumps() const;

    /// What each reporter that was started has found, by dump id: "dump" or "no dump", the signals
    /// that it does not get, the number of its arguments, and these.
    QMap<QString, QStringList> reports() const;

private:
    QDir m_dir;
    QString m_dumpFolder;
};

/// What google_breakpad's own tools read out of dumps of the program.
class DumpReader
{
public:
    /// Writes down the symbols of the program and of the libraries that an exception or an abort
    /// passes. Returns what went wrong, empty if nothing did.
    QString readSymbols();

    /// The frames of the thread that crashed, the innermost first: "MODULE FUNCTION".
    QStringList frames(const QString &dump) const;

    /// The innermost function that is the program's own; empty if there is none.
    QString function(const QString &dump) const;

private:
    QTemporaryDir m_symbols;
};
