#pragma once

#include <QCoreApplication>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

struct ParsedReport;

/// What the player tells of its crash. All of it is foreign: texts that are shown or sent hold no
/// letters that could change what stands around them, and are of bounded length.
struct CrashReport
{
    Q_DECLARE_TR_FUNCTIONS(CrashReport)

public:
    using FormFields = QVector<QPair<QString, QString>>; ///< name and value

    QString applicationName; ///< never empty
    QString version;
    QString userArgument;
    QString localeName;
    QString extraArgument;
    QString dumpPath; ///< absolute; the one file that is read and sent
    QString id;       ///< of the minidump, hexadecimal digits in groups of 8, 4, 4, 8 and 8
    QString comment;  ///< may have several lines
    bool maySend = false;

    /// `arguments` without the program's own name.
    static ParsedReport parse(const QStringList &arguments);

    /// What servers of minidumps expect beside the file.
    FormFields formFields(const QString &userComment) const;

    QString sizeText(qint64 bytes) const; ///< in the player's language

    /// For the clipboard. `dumpProblem` is empty for an intact dump, `dumpBytes` negative
    /// for none.
    QString details(const QString &system, qint64 dumpBytes, const QString &dumpProblem,
                    const QString &userComment) const;

    /// One line of at most `longest` letters; what cannot be printed is replaced by a sign.
    static QString printable(const QString &text, int longest);
};

struct ParsedReport
{
    CrashReport report;
    QString error; ///< why there is no report, in one line; empty if there is
};
