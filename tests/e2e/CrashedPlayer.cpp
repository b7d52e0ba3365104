#include "CrashedPlayer.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace {

constexpr char kReporter[] = R"(#!/bin/bash
{ [ -e "$6/$7.dmp" ] && echo dump || echo 'no dump'
    sed -n 's/^SigBlk:/blocked signals:/p' /proc/self/status; echo "$#"; printf '%s\n' "$@"; } >"$ORBIX_REPORTS/part.$$" &&
    mv "$ORBIX_REPORTS/part.$$" "$ORBIX_REPORTS/report.$7"
)";

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray outputOf(const char *program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.start(QString::fromLocal8Bit(program), arguments);
    return process.waitForFinished() && process.exitCode() == 0 ? process.readAllStandardOutput()
                                                                : QByteArray();
}

/// Where this process has a library from.
QString pathOf(const QString &library)
{
    const QRegularExpression line(QStringLiteral(" (/\\S*/%1)$").arg(library),
                                  QRegularExpression::MultilineOption);
    return line.match(QString::fromLocal8Bit(content(QStringLiteral("/proc/self/maps"))))
        .captured(1);
}

} // namespace

CrashedPlayer::CrashedPlayer()
    : m_dir(folder())
{
    for (const char *name : {"bin", "dumps", "reports"})
        m_dir.mkdir(QLatin1String(name));
    const QString program = m_dir.filePath(QStringLiteral("bin/orbixsight"));
    QFile::copy(QStringLiteral(PLAYER), program);
    setProgram(program);

    QFile reporter(m_dir.filePath(QStringLiteral("bin/OrbCrashReporter")));
    if (reporter.open(QIODevice::WriteOnly))
        reporter.write(kReporter);
    reporter.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    setEnvironment(QStringLiteral("ORBIX_REPORTS"), m_dir.filePath(QStringLiteral("reports")));
    setDumpFolder(m_dir.filePath(QStringLiteral("dumps")));
}

void CrashedPlayer::removeReporter()
{
    m_dir.remove(QStringLiteral("bin/OrbCrashReporter"));
}

void CrashedPlayer::setDumpFolder(const QString &path)
{
    m_dumpFolder = path;
    setEnvironment(QStringLiteral("TMPDIR"), path);
}

QStringList CrashedPlayer::dumps() const
{
    QStringList paths;
    const QFileInfoList files = QDir(m_dumpFolder)
                                    .entryInfoList({QStringLiteral("*.dmp")}, QDir::Files,
                                                   QDir::Time | QDir::Reversed);
    for (const QFileInfo &file : files)
        paths += file.filePath();
    return paths;
}

QMap<QString, QStringList> CrashedPlayer::reports() const
{
    QMap<QString, QStringList> reports;
    const QDir folder(m_dir.filePath(QStringLiteral("reports")));
    const QStringList names = folder.entryList({QStringLiteral("report.*")});
    for (const QString &name : names) {
        QStringList lines = QString::fromUtf8(content(folder.filePath(name)))
                                .split(QLatin1Char('\n'));
        lines.removeLast(); // behind the last end of line
        reports.insert(name.section(QLatin1Char('.'), 1), lines);
    }
    return reports;
}

QString DumpReader::readSymbols()
{
    const QStringList modules{QStringLiteral(PLAYER), pathOf(QStringLiteral("libc\\.so\\.6")),
                              pathOf(QStringLiteral("libstdc\\+\\+\\.so[.0-9]*")),
                              pathOf(QStringLiteral("libgcc_s\\.so[.0-9]*"))};
    for (const QString &module : modules) {
        const QByteArray symbols = outputOf(DUMP_SYMS, {module});
        // MODULE SYSTEM PROCESSOR ID NAME
        const QStringList head = QString::fromUtf8(symbols.left(symbols.indexOf('\n')))
                                     .split(QLatin1Char(' '));
        if (head.size() != 5)
            return QStringLiteral("No symbols of %1").arg(module);
        const QString folder = m_symbols.filePath(head.at(4) + QLatin1Char('/') + head.at(3));
        QDir().mkpath(folder);
        QFile file(QStringLiteral("%1/%2.sym").arg(folder, head.at(4)));
        if (!file.open(QIODevice::WriteOnly) || file.write(symbols) != symbols.size())
            return file.errorString();
    }
    return {};
}

QStringList DumpReader::frames(const QString &dump) const
{
    const QString text = QString::fromUtf8(
        outputOf(MINIDUMP_STACKWALK,
                 {QStringLiteral("-m"), QStringLiteral("-c"), dump, m_symbols.path()}));
    // THREAD|FRAME|MODULE|FUNCTION|FILE|LINE|OFFSET; the thread that crashed comes first.
    QStringList frames;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const QStringList fields = line.split(QLatin1Char('|'));
        if (fields.size() != 7 || fields.at(1) != QString::number(frames.size()))
            continue;
        frames += fields.at(2) + QLatin1Char(' ') + fields.at(3);
    }
    return frames;
}

QString DumpReader::function(const QString &dump) const
{
    const QString own = QStringLiteral("orbixsight ");
    const QStringList ours = frames(dump).filter(QRegularExpression(QLatin1Char('^') + own));
    return ours.isEmpty() ? QString() : ours.constFirst().mid(own.size());
}
