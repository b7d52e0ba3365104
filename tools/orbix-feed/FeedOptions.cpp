#include "FeedOptions.h"

#include <QRegularExpression>

#include <algorithm>

std::optional<QSize> FeedOptions::parseSize(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("\\A([0-9]+)x([0-9]+)\\z"));
    const QRegularExpressionMatch match = pattern.match(text);
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    return size.isEmpty() ? std::nullopt : std::optional(size);
}

std::optional<FeedOptions::Rate> FeedOptions::parseRate(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("\\A([0-9]+)(?:/([0-9]+))?\\z"));
    const QRegularExpressionMatch match = pattern.match(text);
    Rate rate;
    rate.numerator = match.captured(1).toUShort();
    if (match.lastCapturedIndex() == 2)
        rate.denominator = match.captured(2).toUShort();
    return rate.numerator == 0 || rate.denominator == 0 ? std::nullopt : std::optional(rate);
}

FeedPace::Time FeedPace::due(Time ready)
{
    const Time due = std::max(ready, m_earliest);
    m_earliest = due + m_period;
    return due;
}
