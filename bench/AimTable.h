#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

/// Collects what was measured, several times each, and prints medians beside those of a peer, with
/// their ratio and what it should be.
class AimTable
{
public:
    /// What a ratio to a peer, or without a peer the value itself, should be.
    struct Aim
    {
        enum Side { None, AtMost, AtLeast } side = None;
        double value = 0;
    };

    /// A value of `subject`, which is a player, a way or a state.
    void add(const QString &measure, const QString &subject, double value);

    /// A value that could not be had, and why.
    void fail(const QString &measure, const QString &subject, const QString &reason);

    static void printHead();

    /// Prints a row with the median of `subject` against that of `peer`, which may be empty. What
    /// misses its aim says so, and what failed says why. The measures of a row are called
    /// `measure` and have `unit`.
    void printRow(const QString &measure, const char *unit, const QString &subject,
                  const QString &peer, const Aim &aim);

    /// Whether every printed row had its values.
    bool isComplete() const { return m_complete; }

private:
    QMap<QString, QVector<double>> m_values; ///< by measure and subject
    QMap<QString, QString> m_failures;
    bool m_complete = true;
};
