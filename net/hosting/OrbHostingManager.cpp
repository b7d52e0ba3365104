#include "OrbHostingManager.h"

#include "HostingReply.h"
#include "OrbSettingsManager.h"

#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRandomGenerator>

namespace {

constexpr quint64 kKey = 0x6b1fd3924ea75c08;
constexpr int kCriticalIcon = 3;
constexpr qint64 kLongestReply = 4 << 20; // a page has up to 100 videos

QString settingsKey(const char *name)
{
    return QStringLiteral("application/hosting/") + QLatin1String(name);
}

} // namespace

OrbHostingManager::OrbHostingManager(KernelSettingsWriter *settings, const QString &baseUrl,
                                     QObject *parent)
    : QObject(parent)
    , m_settings(settings)
    , m_baseUrl(baseUrl)
{
    m_scrambler.setKey(kKey);
}

void OrbHostingManager::requestDisconnection()
{
    m_credentials = {};
    for (const char *name : {"userName", "password", "accessToken", "refreshToken", "apiKey"})
        m_settings->write(settingsKey(name), QString());
    clearPending();
    setHostingState(Disconnected);
}

void OrbHostingManager::requestConnection(const QString &userName, const QString &password)
{
    setHostingState(Connecting);
    m_credentials.userName = userName;
    m_credentials.password = password;
    send(Connection,
         QUrl(QStringLiteral("%1public/token/%2/%3").arg(m_baseUrl, userName, password)));
}

void OrbHostingManager::requestRefresh()
{
    setHostingState(Connecting);
    send(Connection,
         QUrl(QStringLiteral("%1public/refresh_token/%2/%3/%4/%5")
                  .arg(m_baseUrl, m_credentials.apiKey, m_credentials.userName,
                       m_credentials.password, m_credentials.refreshToken)));
}

void OrbHostingManager::requestAccessTest()
{
    setHostingState(Connecting);
    send(TestAccess, QUrl(m_baseUrl + QStringLiteral("oauth/ready")));
}

void OrbHostingManager::requestContent(int contentCategory, int start, const QString &userName)
{
    QString path;
    switch (contentCategory) {
    case PublicVideos:
        path = QStringLiteral("public/videos");
        break;
    case MyVideos:
        path = QStringLiteral("oauth/videos/") + m_credentials.apiKey;
        break;
    case UserVideos:
        path = QStringLiteral("public/videos/") + userName;
        break;
    default:
        return;
    }
    const QVariantMap order{{m_firstOrderType, m_firstOrderDirection}};
    const QVariantMap filter{{QStringLiteral("limit"), m_limit},
                             {QStringLiteral("order"), QVariantList{order}},
                             {QStringLiteral("shuffle"), 0},
                             {QStringLiteral("start"), start}};
    const QVariantMap content{{QStringLiteral("filter"), filter}};
    m_videos.clear();
    send(Content, QUrl(m_baseUrl + path), QJsonDocument::fromVariant(content).toJson());
}

void OrbHostingManager::send(RequestType type, const QUrl &url, const QByteArray &postData)
{
    if (m_requestType != None)
        return;
    if (!m_network) {
        m_network = new QNetworkAccessManager(this);
        connect(m_network, &QNetworkAccessManager::finished, this,
                &OrbHostingManager::receiveReply);
    }
    setRequestType(type);
    if (type == Content) {
        m_pendingUrl = url;
        m_pendingPostData = postData;
    }
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    // Unpacked, a few kilobytes from the service may fill the memory before anything counts them.
    request.setRawHeader("Accept-Encoding", "identity");
    QNetworkReply *reply = nullptr;
    if (type == Connection) {
        reply = m_network->get(request);
    } else {
        const QString bearer = QStringLiteral("Bearer %1").arg(m_credentials.accessToken);
        request.setRawHeader("Authorization", bearer.toUtf8());
        reply = m_network->post(request, postData);
    }
    reply->ignoreSslErrors();
    reply->setReadBufferSize(kLongestReply + 1); // what does not fit stays with the sender
    connect(reply, &QNetworkReply::readyRead, this, [reply] {
        if (reply->bytesAvailable() > kLongestReply)
            reply->abort();
    });
}

void OrbHostingManager::receiveReply(QNetworkReply *response)
{
    response->deleteLater();
    if (m_requestType == None)
        return;
    const HostingReply reply = response->error() == QNetworkReply::NoError
        ? HostingReply::parse(response->readAll())
        : HostingReply::failed(response->errorString());
    const HostingReply::Remedy remedy = reply.remedy();
    bool disconnects = false;
    if (reply.isGood()) {
        takeGoodReply(reply);
    } else if (remedy == HostingReply::Remedy::None) {
        if (m_requestType == Content) {
            emit displayMessage(reply.errorMessage, kCriticalIcon);
            clearPending();
        } else {
            disconnects = true;
            emit requestResponse(false, reply.errorMessage);
        }
    }
    setRequestType(None);

    // Copies are passed: whoever hears of the next request's start may clear the members.
    if (remedy == HostingReply::Remedy::Refresh)
        requestRefresh();
    else if (remedy == HostingReply::Remedy::Login)
        requestConnection(QString(m_credentials.userName), QString(m_credentials.password));
    else if (disconnects)
        requestDisconnection();
    else if (!m_pendingUrl.isEmpty() || !m_pendingPostData.isEmpty())
        send(Content, QUrl(m_pendingUrl), QByteArray(m_pendingPostData));
    else if (m_isFirstReply)
        requestAccessTest();
    m_isFirstReply = false;
}

void OrbHostingManager::takeGoodReply(const HostingReply &reply)
{
    switch (m_requestType) {
    case Content:
        m_videos.add(reply.list);
        clearPending();
        break;
    case Connection:
        takeTokens(reply.map);
        setHostingState(Connected);
        emit requestResponse(true, QString());
        break;
    case TestAccess:
        setHostingState(Connected);
        break;
    case None:
        break;
    }
}

void OrbHostingManager::takeTokens(const QVariantMap &map)
{
    m_credentials.accessToken = map.value(QStringLiteral("access_token")).toString();
    m_credentials.refreshToken = map.value(QStringLiteral("refresh_token")).toString();
    m_settings->write(settingsKey("userName"), m_credentials.userName);
    m_settings->write(settingsKey("password"), scrambled(m_credentials.password));
    m_settings->write(settingsKey("accessToken"), scrambled(m_credentials.accessToken));
    m_settings->write(settingsKey("refreshToken"), scrambled(m_credentials.refreshToken));
    const QString apiKey = map.value(QStringLiteral("api_key")).toString();
    if (!apiKey.isEmpty()) {
        m_credentials.apiKey = apiKey;
        m_settings->write(settingsKey("apiKey"), scrambled(apiKey));
    }
}

QString OrbHostingManager::scrambled(const QString &text)
{
    const quint32 random = QRandomGenerator::global()->generate();
    return m_scrambler.scramble(text, static_cast<quint8>(random));
}

void OrbHostingManager::clearPending()
{
    m_pendingUrl.clear();
    m_pendingPostData.clear();
}

void OrbHostingManager::setHostingState(HostingState state)
{
    if (m_hostingState == state)
        return;
    m_hostingState = state;
    emit hostingStateChanged();
}

void OrbHostingManager::setRequestType(RequestType type)
{
    if (m_requestType == type)
        return;
    m_requestType = type;
    emit requestTypeChanged();
}
