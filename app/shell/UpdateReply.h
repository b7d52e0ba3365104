#pragma once

#include <QDate>
#include <QHash>
#include <QString>

#include <optional>

/// What the update server answers for a release channel: one line such as "1.4.0.400_2015-02-19".
namespace UpdateReply {

struct Release
{
    QString version; ///< four numbers, joined with dots
    QDate date;      ///< null if the server's is none
};

/// The first release that `text` names anywhere; nothing if it names none. Takes time linear in the
/// length of any text.
std::optional<Release> parse(const QString &text);

/// The channel with the greatest text, compared character by character; "stable" before "beta" if
/// both are the same. `texts` are those of the channels that answered with a release. Empty without
/// any.
QString newestChannel(const QHash<QString, QString> &texts);

} // namespace UpdateReply
