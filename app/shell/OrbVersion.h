#pragma once

#include <QString>
#include <QStringList>

/// A version of the product: four numbers, of which the last tells the kind of build (below 100
/// internal, from 100 Alpha, from 200 Beta, from 300 release candidate, from 400 release).
///
/// A part that is no number, or one that an int cannot hold, counts as 0.
class OrbVersion
{
public:
    OrbVersion() = default;

    /// Keeps `text` as it stands; its parts are the pieces between runs of non-word characters.
    explicit OrbVersion(const QString &text);

    /// Brings `text` to four numbers, 0 for a missing one. Letters at the fourth place tell the
    /// kind of build, "1.4.0.RC1" and "1.4.0 RC 1" being 1.4.0.301; a fourth number that is 0 makes
    /// a release, 400.
    static OrbVersion normalised(const QString &text);

    QStringList parts() const { return m_parts; }
    QString text() const { return m_text; }

    /// The number of the last part, 0 without parts.
    int build() const;

    /// Whether this version is not newer than `other`, by the numbers of as many parts as this one
    /// has.
    bool operator<=(const OrbVersion &other) const;

    /// What users read: "1.4.0" for 1.4.0.400, "1.4.0 Beta 2" for 1.4.0.202. Empty without parts.
    QString displayText() const;

    /// The first two parts, "1.4".
    QString shortText() const;

private:
    QStringList m_parts;
    QString m_text;
};
