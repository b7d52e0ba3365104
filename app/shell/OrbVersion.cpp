#include "OrbVersion.h"

#include <QRegularExpression>

namespace {

QStringList pieces(const QString &text)
{
    static const QRegularExpression separator(QStringLiteral("\\W+"));
    return text.split(separator);
}

QString digits(QString piece)
{
    static const QRegularExpression other(QStringLiteral("\\D"));
    return piece.remove(other);
}

QString buildSuffix(int number)
{
    if (number < 100)
        return QStringLiteral(" Internal %1").arg(number);
    if (number < 200)
        return QStringLiteral(" Alpha %1").arg(number - 100);
    if (number < 300)
        return QStringLiteral(" Beta %1").arg(number - 200);
    if (number < 400)
        return QStringLiteral(" RC %1").arg(number - 300);
    return {};
}

/// The first number of the kind of build that `piece` names, 0 if it names none.
int buildKind(const QString &piece)
{
    struct Kind
    {
        QLatin1String name;
        int first = 0;
    };
    const Kind kinds[] = {{QLatin1String("Alpha"), 100},
                          {QLatin1String("Beta"), 200},
                          {QLatin1String("RC"), 300},
                          {QLatin1String("A"), 100},
                          {QLatin1String("B"), 200}};
    for (const Kind &kind : kinds) {
        if (piece.contains(kind.name))
            return kind.first;
    }
    return 0;
}

/// The fourth number; 64 bits, as the kind is added to any int.
qint64 buildNumber(const QString &piece, const QString &next)
{
    const int kind = buildKind(piece);
    const QString number = digits(piece);
    // In "Beta 2" the number stands apart from the kind.
    const qint64 build = kind + qint64((kind && number.isEmpty() ? digits(next) : number).toInt());
    return build ? build : 400;
}

} // namespace

OrbVersion::OrbVersion(const QString &text)
    : m_parts(pieces(text))
    , m_text(text)
{}

OrbVersion OrbVersion::normalised(const QString &text)
{
    const QStringList read = pieces(text);
    OrbVersion version;
    for (int i = 0; i < 3; ++i)
        version.m_parts += QString::number(digits(read.value(i)).toInt());
    version.m_parts += QString::number(read.size() > 3 ? buildNumber(read[3], read.value(4)) : 0);
    version.m_text = version.m_parts.join(QLatin1Char('.'));
    return version;
}

int OrbVersion::build() const
{
    return m_parts.isEmpty() ? 0 : m_parts.last().toInt();
}

bool OrbVersion::operator<=(const OrbVersion &other) const
{
    for (int i = 0; i < m_parts.size(); ++i) {
        const int mine = m_parts[i].toInt();
        const int theirs = other.m_parts.value(i).toInt();
        if (mine != theirs)
            return mine < theirs;
    }
    return true;
}

QString OrbVersion::displayText() const
{
    if (m_parts.isEmpty())
        return {};
    const QStringList numbers = m_parts.mid(0, m_parts.size() - 1);
    return numbers.join(QLatin1Char('.')) + buildSuffix(build());
}

QString OrbVersion::shortText() const
{
    return m_parts.value(0) + QLatin1Char('.') + m_parts.value(1);
}
