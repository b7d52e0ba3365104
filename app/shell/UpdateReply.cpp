#include "UpdateReply.h"

#include <QRegularExpression>

namespace UpdateReply {

std::optional<Release> parse(const QString &text)
{
    // A match that does not begin at the first digit of a number begins at none of the others.
    // Looking there only keeps the time linear, which without the look-behind depends on how the
    // expression is compiled.
    static const QRegularExpression form(
        QStringLiteral("(?<!\\d)(\\d+\\.\\d+\\.\\d+\\.\\d+)_([\\d-]+)"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return Release{match.captured(1),
                   QDate::fromString(match.captured(2), QStringLiteral("yyyy-MM-dd"))};
}

QString newestChannel(const QHash<QString, QString> &texts)
{
    const QString stable = QStringLiteral("stable");
    const QString beta = QStringLiteral("beta");
    const QString channel = texts.value(beta) > texts.value(stable) ? beta : stable;
    return texts.contains(channel) ? channel : QString();
}

} // namespace UpdateReply
