#include "SafeRichText.h"

#include <QRegularExpression>
#include <QSet>

namespace {

bool mayStay(const QString &tag)
{
    static const QSet<QString> tags{
        QStringLiteral("b"),      QStringLiteral("br"), QStringLiteral("code"),
        QStringLiteral("div"),    QStringLiteral("em"), QStringLiteral("h1"),
        QStringLiteral("h2"),     QStringLiteral("h3"), QStringLiteral("h4"),
        QStringLiteral("hr"),     QStringLiteral("i"),  QStringLiteral("li"),
        QStringLiteral("ol"),     QStringLiteral("p"),  QStringLiteral("pre"),
        QStringLiteral("strong"), QStringLiteral("u"),  QStringLiteral("ul"),
    };
    return tags.contains(tag);
}

/// A link with nothing but its address, if that is one of a web page.
QString link(const QString &attributes)
{
    static const QRegularExpression
        address(QStringLiteral("\\bhref\\s*=\\s*([\"'])(https?://[^\"'<>\\s]*)\\1"),
                QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = address.match(attributes);
    return match.hasMatch() ? QStringLiteral("<a href=\"%1\">").arg(match.captured(2))
                            : QStringLiteral("<a>");
}

} // namespace

QString safeRichText(const QString &markup)
{
    static const QRegularExpression tagOrBracket(
        QStringLiteral("<(/?)([A-Za-z][A-Za-z0-9]*)((?:[\\s/][^<>]*)?)>|[<>]"));
    QString text;
    int copied = 0;
    for (auto matches = tagOrBracket.globalMatch(markup); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        text += markup.midRef(copied, match.capturedStart() - copied);
        copied = match.capturedEnd();
        const QString end = match.captured(1);
        const QString tag = match.captured(2).toLower();
        if (tag.isEmpty())
            text += match.captured().toHtmlEscaped();
        else if (tag == QLatin1String("a"))
            text += end.isEmpty() ? link(match.captured(3)) : QStringLiteral("</a>");
        else if (mayStay(tag))
            text += QLatin1Char('<') + end + tag + QLatin1Char('>');
    }
    return text + markup.mid(copied);
}
