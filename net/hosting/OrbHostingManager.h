#pragma once

#include "CredentialScrambler.h"
#include "Product.h"
#include "VideosListModel.h"

#include <QObject>
#include <QUrl>

class KernelSettingsWriter;
class QNetworkAccessManager;
class QNetworkReply;
struct HostingReply;

/// The client of the hosting service, "orbHostingManager" in the scene: it logs a user in, keeps
/// the tokens that the service gives, and fetches pages of video descriptions into its list model.
///
/// One request is out at a time; one that is made meanwhile is dropped without a word. If the
/// service says that the access token has expired, the token is renewed and the request sent again,
/// as often as the service says so. The first reply of a run, good or bad, is followed by a test of
/// the access token if nothing else follows from it. No request has a time limit.
///
/// Certificates are not checked, on purpose: a service may have signed its own. User name, password
/// and tokens go in the path of an address, as the service defines it, escaped only as far as QUrl
/// does. In the settings all but the user name are scrambled; they are never read back.
///
/// The service is not trusted otherwise: a reply that is longer than any of use is given up.
///
/// Main thread. The manager owns its list model. It may be destroyed with a request in flight,
/// which is then given up, and sends no signal for it.
class OrbHostingManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(HostingState hostingState READ hostingState NOTIFY hostingStateChanged)
    Q_PROPERTY(RequestType requestType READ requestType NOTIFY requestTypeChanged)

public:
    enum RequestType { None, Content, Connection, TestAccess };
    Q_ENUM(RequestType)

    enum ContentCategory { PublicVideos, MyVideos, UserVideos };
    Q_ENUM(ContentCategory)

    enum HostingState { Disconnected, Connecting, Connected };
    Q_ENUM(HostingState)

    /// `settings` is not owned. `baseUrl` is the root of the service, ending in "/".
    explicit OrbHostingManager(KernelSettingsWriter *settings,
                               const QString &baseUrl = Product::hostingUrl(),
                               QObject *parent = nullptr);

    HostingState hostingState() const { return m_hostingState; }
    RequestType requestType() const { return m_requestType; }
    VideosListModel *videosListModel() { return &m_videos; }

    /// For the next content request: how many videos a page has, by what they are ordered ("date"
    /// or "views"), and which way ("ASC" or "DESC").
    Q_INVOKABLE void setLimit(int l) { m_limit = l; }
    Q_INVOKABLE void setFirstOrderType(const QString &fot) { m_firstOrderType = fot; }
    Q_INVOKABLE void setFirstOrderDirection(const QString &fod) { m_firstOrderDirection = fod; }

    /// Forgets the user, here and in the settings, without asking the service.
    Q_INVOKABLE void requestDisconnection();

    /// Logs in; requestResponse() tells how it went.
    Q_INVOKABLE void requestConnection(const QString &userName, const QString &password);

    /// Clears the model, then fills it with the page of videos from the one at `start`. `userName`
    /// matters to the category UserVideos alone.
    Q_INVOKABLE void requestContent(int contentCategory = PublicVideos, int start = 0,
                                    const QString &userName = QString());

public slots:
    /// Takes what a request came to, the one in flight, and sends what follows from it.
    void receiveReply(QNetworkReply *response);

signals:
    /// The failure of a content request, plain text that may come from the service. `icon` is a
    /// value of the scene's StandardIcon.
    void displayMessage(const QString &message, int icon);
    /// The result of a login or of renewing a token, or the failure of an access test; the message,
    /// plain text too, is empty on success.
    void requestResponse(bool success, const QString &errorMessage);
    void hostingStateChanged();
    void requestTypeChanged();

private:
    struct Credentials
    {
        QString userName;
        QString password;
        QString apiKey;
        QString accessToken;
        QString refreshToken;
    };

    void requestRefresh();
    void requestAccessTest();
    void send(RequestType type, const QUrl &url, const QByteArray &postData = {});
    void takeGoodReply(const HostingReply &reply);
    void takeTokens(const QVariantMap &map);
    QString scrambled(const QString &text);
    void clearPending();
    void setHostingState(HostingState state);
    void setRequestType(RequestType type);

    KernelSettingsWriter *m_settings;
    CredentialScrambler m_scrambler;
    const QString m_baseUrl;
    QNetworkAccessManager *m_network = nullptr; ///< a child, made for the first request
    VideosListModel m_videos;
    int m_limit = 20;
    QString m_firstOrderType = QStringLiteral("date");
    QString m_firstOrderDirection = QStringLiteral("DESC");
    HostingState m_hostingState = Disconnected;
    RequestType m_requestType = None; ///< of the request in flight
    QUrl m_pendingUrl;                ///< of the last content request, until its final result
    QByteArray m_pendingPostData;
    bool m_isFirstReply = true;
    Credentials m_credentials;
};
