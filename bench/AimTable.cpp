#include "AimTable.h"

#include <algorithm>
#include <cstdio>

namespace {

QString key(const QString &measure, const QString &subject)
{
    return measure + QLatin1Char('/') + subject;
}

double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    const int middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

QString valueText(double value, const char *unit)
{
    return QString::number(value, 'f', 2) + QLatin1Char(' ') + QLatin1String(unit);
}

void printCells(const QStringList &cells)
{
    std::printf("%-38s %-13s %12s   %-11s %12s %7s %8s  %s\n", qPrintable(cells[0]),
                qPrintable(cells[1]), qPrintable(cells[2]), qPrintable(cells[3]),
                qPrintable(cells[4]), qPrintable(cells[5]), qPrintable(cells[6]),
                qPrintable(cells[7]));
}

} // namespace

void AimTable::add(const QString &measure, const QString &subject, double value)
{
    m_values[key(measure, subject)].append(value);
}

void AimTable::fail(const QString &measure, const QString &subject, const QString &reason)
{
    m_failures[key(measure, subject)] = subject + QStringLiteral(": ") + reason;
}

void AimTable::printHead()
{
    printCells({QStringLiteral("measure"),
                QStringLiteral("of"),
                QStringLiteral("median"),
                QStringLiteral("against"),
                QStringLiteral("median"),
                QStringLiteral("ratio"),
                QStringLiteral("aim"),
                {}});
}

void AimTable::printRow(const QString &measure, const char *unit, const QString &subject,
                        const QString &peer, const Aim &aim)
{
    const auto values = m_values.value(key(measure, subject));
    const auto peerValues = m_values.value(key(measure, peer));
    const QString aimText = aim.side == Aim::None
        ? QString()
        : QStringLiteral("%1 %2")
              .arg(QLatin1String(aim.side == Aim::AtMost ? "<=" : ">="))
              .arg(aim.value, 0, 'f', 2);
    QStringList cells{measure, subject, {}, peer, {}, {}, aimText, {}};
    if (!values.isEmpty())
        cells[2] = valueText(median(values), unit);
    if (!peerValues.isEmpty())
        cells[4] = valueText(median(peerValues), unit);
    if (!values.isEmpty() && (peer.isEmpty() || !peerValues.isEmpty())) {
        const double ratio = peer.isEmpty() ? median(values) : median(values) / median(peerValues);
        if (!peer.isEmpty())
            cells[5] = QString::number(ratio, 'f', 2);
        const bool missed = (aim.side == Aim::AtMost && ratio > aim.value)
            || (aim.side == Aim::AtLeast && ratio < aim.value);
        cells[7] = QLatin1String(missed ? "MISSED" : aim.side == Aim::None ? "" : "met");
    } else {
        m_complete = false;
        cells[7] = QStringLiteral("FAILED ");
    }
    for (const QString &who : {subject, peer}) {
        if (m_failures.contains(key(measure, who)))
            cells[7] += QStringLiteral(" [%1]").arg(m_failures.value(key(measure, who)));
    }
    printCells(cells);
}
