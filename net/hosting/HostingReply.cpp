#include "HostingReply.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int kLongestMessage = 1000; // characters, of those that a server may put on the screen

QString errorOf(const QVariantMap &map)
{
    return map.value(QStringLiteral("error")).toString();
}

QString descriptionOf(const QVariantMap &map)
{
    return map.value(QStringLiteral("error_description")).toString();
}

} // namespace

HostingReply HostingReply::parse(const QByteArray &body)
{
    HostingReply reply;
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (document.isNull())
        return failed(QCoreApplication::translate("HostingReply",
                                                  "Failed to parse server response to JSON."));
    if (document.isArray()) {
        reply.list = document.array().toVariantList();
        return reply;
    }
    reply.map = document.object().toVariantMap();
    if (reply.map.contains(QStringLiteral("error"))) {
        const QString texts = errorOf(reply.map) + QLatin1Char(' ') + descriptionOf(reply.map);
        reply.errorMessage = QCoreApplication::translate("HostingReply",
                                                         "Error in server response : ")
            + texts.left(kLongestMessage);
    }
    return reply;
}

HostingReply HostingReply::failed(const QString &reason)
{
    HostingReply reply;
    reply.errorMessage = reason.left(kLongestMessage);
    return reply;
}

HostingReply::Remedy HostingReply::remedy() const
{
    if (errorOf(map) != QLatin1String("invalid_grant"))
        return Remedy::None;
    const QString description = descriptionOf(map);
    if (description == QLatin1String("The access token provided has expired."))
        return Remedy::Refresh;
    if (description == QLatin1String("Invalid refresh token"))
        return Remedy::Login;
    return Remedy::None;
}
