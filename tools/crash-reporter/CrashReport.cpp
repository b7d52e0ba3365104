#include "CrashReport.h"

#include <QDir>
#include <QLocale>
#include <QRegularExpression>

namespace {

constexpr int kArguments = 9;
constexpr int kLongestName = 40;
constexpr int kLongestArgument = 1000;
constexpr int kLongestPath = 4096;
constexpr int kLongestComment = 10000;

bool isPrintable(uint letter)
{
    const QChar::Category category = QChar::category(letter);
    return QChar::isPrint(letter) && category != QChar::Separator_Line
        && category != QChar::Separator_Paragraph;
}

QString printableLines(const QString &text, int longest)
{
    QStringList lines = text.left(longest).split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = CrashReport::printable(line, longest);
    return lines.join(QLatin1Char('\n'));
}

} // namespace

ParsedReport CrashReport::parse(const QStringList &arguments)
{
    if (arguments.size() != kArguments)
        return {{},
                tr("This program is started by Orbix Sight after a crash, with %1 arguments. "
                   "%2 came.")
                    .arg(kArguments)
                    .arg(arguments.size())};
    static const QRegularExpression idForm(
        QStringLiteral("\\A[0-9a-fA-F]{8}-([0-9a-fA-F]{4}-){2}[0-9a-fA-F]{8}-[0-9a-fA-F]{8}\\z"));
    if (!idForm.match(arguments.at(6)).hasMatch())
        return {{},
                tr("This is no name of a crash file of Orbix Sight: \"%1\".")
                    .arg(printable(arguments.at(6), kLongestName))};
    if (arguments.at(5).isEmpty())
        return {{}, tr("Orbix Sight did not say in which folder its crash file is.")};

    CrashReport report;
    report.applicationName = printable(arguments.at(0), kLongestName).trimmed();
    if (report.applicationName.isEmpty())
        report.applicationName = tr("The program");
    report.version = printable(arguments.at(1), kLongestName);
    report.userArgument = printable(arguments.at(2), kLongestArgument);
    report.localeName = printable(arguments.at(3), kLongestName);
    report.extraArgument = printable(arguments.at(4), kLongestArgument);
    report.id = arguments.at(6);
    report.dumpPath = QDir(arguments.at(5)).absoluteFilePath(report.id + QLatin1String(".dmp"));
    report.comment = printableLines(arguments.at(7), kLongestComment);
    report.maySend = arguments.at(8) == QLatin1String("1");
    return {report, {}};
}

CrashReport::FormFields CrashReport::formFields(const QString &userComment) const
{
    FormFields fields{{QStringLiteral("prod"), applicationName},
                      {QStringLiteral("ver"), version},
                      {QStringLiteral("guid"), id},
                      {QStringLiteral("comments"), userComment},
                      {QStringLiteral("lang"), localeName}};
    if (!userArgument.isEmpty())
        fields.append({QStringLiteral("user"), userArgument});
    if (!extraArgument.isEmpty())
        fields.append({QStringLiteral("extra"), extraArgument});
    return fields;
}

QString CrashReport::sizeText(qint64 bytes) const
{
    return QLocale(localeName).formattedDataSize(bytes);
}

QString CrashReport::details(const QString &system, qint64 dumpBytes, const QString &dumpProblem,
                             const QString &userComment) const
{
    QStringList lines{tr("Program: %1 %2").arg(applicationName, version),
                      tr("Language: %1").arg(localeName), tr("System: %1").arg(system),
                      tr("Crash file: %1").arg(printable(dumpPath, kLongestPath))};
    if (!userArgument.isEmpty())
        lines += tr("User: %1").arg(userArgument);
    if (!extraArgument.isEmpty())
        lines += tr("Further: %1").arg(extraArgument);
    if (dumpBytes >= 0)
        lines += tr("Size: %1 (%2 bytes)").arg(sizeText(dumpBytes)).arg(dumpBytes);
    if (!dumpProblem.isEmpty())
        lines += dumpProblem;
    if (!userComment.isEmpty())
        lines += tr("Comment: %1").arg(userComment);
    return lines.join(QLatin1Char('\n'));
}

QString CrashReport::printable(const QString &text, int longest)
{
    QVector<uint> letters = text.toUcs4();
    if (letters.size() > longest) {
        letters.resize(longest);
        letters.last() = 0x2026; // an ellipsis
    }
    for (uint &letter : letters) {
        if (!isPrintable(letter))
            letter = QChar::ReplacementCharacter;
    }
    return QString::fromUcs4(letters.constData(), letters.size());
}
