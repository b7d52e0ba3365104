#pragma once

#include <QVariant>

/// What the hosting service says in one reply: a list, an object or an error.
struct HostingReply
{
    /// What to do about a failure before anything else is.
    enum class Remedy {
        None,
        Refresh, ///< the access token is out of date
        Login    ///< so is the refresh token
    };

    /// Reads a whole body, of any bytes.
    static HostingReply parse(const QByteArray &body);

    /// A reply that did not come, for the reason given.
    static HostingReply failed(const QString &reason);

    bool isGood() const { return errorMessage.isEmpty(); }
    Remedy remedy() const;

    QVariantList list;
    QVariantMap map;
    QString errorMessage; ///< for the user; empty if the reply is good
};
