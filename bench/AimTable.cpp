#include "AimTable.h"

#include "Median.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

QString key(const QString &measure, const QString &subject)
{
    return measure + QLatin1Char('/') + subject;
}

void printCells(const QString (&cells)[8])
{
    constexpr int kWidths[] = {-38, -13, 12, -14, 12, 7, 8, 0};
    QString line;
    for (int i = 0; i < 8; ++i)
        line += QStringLiteral("%1 ").arg(cells[i], kWidths[i]);
    std::printf("%s\n", qPrintable(line));
}

} // namespace

void AimTable::add(const QString &measure, const QString &subject, double value)
{
    m_values[key(measure, subject)].push_back(value);
}

std::optional<double> AimTable::value(const QString &measure, const QString &subject) const
{
    const auto values = m_values.value(key(measure, subject));
    return values.empty() ? std::nullopt : std::optional<double>(median(values));
}

int AimTable::repetitions()
{
    const QStringList options = QCoreApplication::arguments().filter(
        QStringLiteral("--benchmark_repetitions="));
    return options.isEmpty() ? 3 : options.last().section(QLatin1Char('='), 1).toInt();
}

void AimTable::printHead()
{
    printCells({QStringLiteral("measure"), QStringLiteral("of"), QStringLiteral("median"),
                QStringLiteral("  against"), QStringLiteral("median"), QStringLiteral("ratio"),
                QStringLiteral("aim"), QString()});
}

void AimTable::printRow(const QString &measure, const char *unit, const QString &subject,
                        const QString &peer, const Aim &aim)
{
    const std::optional<double> own = value(measure, subject);
    const std::optional<double> other = value(measure, peer);
    QString ratioText;
    QString verdict;
    if (own && (other || peer.isEmpty())) {
        const double ratio = *own / other.value_or(1);
        if (other)
            ratioText = QString::asprintf("%.2f", ratio);
        const bool missed = (aim.side == Aim::AtMost && ratio > aim.value)
            || (aim.side == Aim::AtLeast && ratio < aim.value);
        verdict = QLatin1String(missed ? "MISSED" : aim.side == Aim::None ? "" : "met");
    } else {
        m_complete = false;
        verdict = QStringLiteral("FAILED");
    }
    for (const QString &who : {subject, peer}) {
        if (m_failures.contains(who))
            verdict += QStringLiteral(" [%1: %2]").arg(who, m_failures.value(who));
    }
    const auto text = [unit](const std::optional<double> &value) {
        return value ? QString::asprintf("%.2f %s", *value, unit) : QString();
    };
    const QString aimText = aim.side == Aim::None
        ? QString()
        : QString::asprintf("%s %.2f", aim.side == Aim::AtMost ? "<=" : ">=", aim.value);
    const QString media = m_media.isEmpty() ? QString() : QStringLiteral(", ") + m_media;
    printCells({measure + media, subject, text(own), QStringLiteral("  ") + peer, text(other),
                ratioText, aimText, verdict});
}
