#pragma once

#include <QMap>
#include <QString>

#include <optional>
#include <vector>

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

    /// `media` is added to the names of all measures; it may be empty.
    explicit AimTable(const QString &media = {})
        : m_media(media)
    {}

    /// A value of `subject`, which is a player, a way or a state.
    void add(const QString &measure, const QString &subject, double value);

    /// Values of `subject` could not be had, and why.
    void fail(const QString &subject, const QString &reason) { m_failures[subject] = reason; }

    /// How often each value is to be taken: N of the program's last --benchmark_repetitions=N, else
    /// 3.
    static int repetitions();

    static void printHead();

    /// Prints a row with the median of `subject` against that of `peer`, which may be empty. What
    /// misses its aim says so, and what failed says why. The values have `unit`.
    void printRow(const QString &measure, const char *unit, const QString &subject,
                  const QString &peer, const Aim &aim);

    /// Whether every printed row had its values.
    bool isComplete() const { return m_complete; }

private:
    std::optional<double> value(const QString &measure, const QString &subject) const;

    QString m_media;
    QMap<QString, std::vector<double>> m_values; ///< by measure and subject
    QMap<QString, QString> m_failures;           ///< by subject
    bool m_complete = true;
};
