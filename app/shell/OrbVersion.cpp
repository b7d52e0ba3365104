#include "OrbVersion.h"

#include <QRegularExpression>

namespace {

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

} // namespace

OrbVersion::OrbVersion(const QString &text)
    : m_parts(text.split(QRegularExpression(QStringLiteral("\\W+"))))
    , m_text(text)
{}

QString OrbVersion::displayText() const
{
    if (m_parts.isEmpty())
        return {};
    const QStringList numbers = m_parts.mid(0, m_parts.size() - 1);
    return numbers.join(QLatin1Char('.')) + buildSuffix(m_parts.last().toInt());
}

QString OrbVersion::shortText() const
{
    return m_parts.value(0) + QLatin1Char('.') + m_parts.value(1);
}
