#pragma once

#include <QString>
#include <QStringList>

/// A version of the product: four numbers, of which the last tells the kind of build (below 100
/// internal, from 100 Alpha, from 200 Beta, from 300 release candidate, from 400 release).
class OrbVersion
{
public:
    OrbVersion() = default;

    /// Keeps `text` as it stands; its parts are the pieces between runs of non-word characters.
    explicit OrbVersion(const QString &text);

    QStringList parts() const { return m_parts; }
    QString text() const { return m_text; }

    /// What users read: "1.4.0" for 1.4.0.400, "1.4.0 Beta 2" for 1.4.0.202. Empty without parts.
    QString displayText() const;

    /// The first two parts, "1.4".
    QString shortText() const;

private:
    QStringList m_parts;
    QString m_text;
};
