#include "OrbUpdateManager.h"

#include "OrbSettingsManager.h"
#include "UpdateReply.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>
#include <QUrlQuery>

#include <cmath>
#include <utility>

namespace {

constexpr qint64 kWeekSeconds = 604800;
constexpr int kReleaseBuild = 400;
constexpr qint64 kLongestVersion = 1 << 16;
constexpr qint64 kLongestChangeLog = 1 << 20;

QString lastCheckKey()
{
    return QStringLiteral("general/last_update_check");
}

/// QUrlQuery leaves a "+" or "&" of a value alone, and a server would read it as a space or as the
/// end of the value.
QString encoded(const QString &value)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(value, "/"));
}

} // namespace

OrbUpdateManager::OrbUpdateManager(OrbSettingsManager *settings, const QString &serverUrl,
                                   QObject *parent, Clock clock)
    : QThread(parent)
    , m_serverUrl(serverUrl)
    , m_settings(settings)
    , m_clock(std::move(clock))
{
    connect(this, &OrbUpdateManager::UrlResolved, this, &OrbUpdateManager::OnUrlResolved,
            Qt::QueuedConnection);
}

OrbUpdateManager::~OrbUpdateManager()
{
    wait();
}

void OrbUpdateManager::start(const QString &product, const QString &version, const QString &data)
{
    m_product = product;
    m_currentVersion = OrbVersion(version);
    m_userData = data;
    const QDateTime last = m_settings->dateTime(lastCheckKey(), {});
    if (!last.isValid() || std::abs(last.secsTo(m_clock())) > kWeekSeconds)
        check(false);
}

void OrbUpdateManager::check(bool reportWhenUpToDate)
{
    if (!isConfigured() || isRunning())
        return;
    m_reportWhenUpToDate = reportWhenUpToDate;
    QThread::start(QThread::InheritPriority);
}

/// Loads what the network needs, which takes its time once, beside the main thread. The request
/// goes with the manager; nobody wants its answer.
void OrbUpdateManager::run()
{
    QNetworkAccessManager network;
    network.get(QNetworkRequest(QUrl(m_serverUrl)));
    emit UrlResolved();
}

void OrbUpdateManager::OnUrlResolved()
{
    const QList<QNetworkReply *> superseded = m_requests.keys();
    m_requests.clear();
    for (QNetworkReply *reply : superseded)
        reply->abort();
    m_channels.clear();
    m_pendingRequests = 0;
    askVersion(QStringLiteral("stable"));
    if (m_currentVersion.build() != kReleaseBuild)
        askVersion(QStringLiteral("beta"));
}

void OrbUpdateManager::askVersion(const QString &channel)
{
    ++m_pendingRequests;
    const QString data = std::exchange(m_userData, {});
    if (!data.isEmpty())
        emit ClearUserData();
    send(File::Version, channel, data);
}

void OrbUpdateManager::send(File file, const QString &channel, const QString &data)
{
    if (!m_network) {
        m_network = new QNetworkAccessManager(this);
        connect(m_network, &QNetworkAccessManager::finished, this,
                &OrbUpdateManager::OnNetReplyFinished);
    }
    const bool isVersion = file == File::Version;
    QUrl url(channelUrl(channel)
             + (isVersion ? QLatin1String("version") : QLatin1String("changelog")));
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("src"), encoded(source()));
    if (!data.isEmpty())
        query.addQueryItem(QStringLiteral("data"), encoded(data));
    url.setQuery(query);

    QNetworkRequest request(url);
    // Unpacked, a few kilobytes from the server may fill the memory before anything counts them.
    request.setRawHeader("Accept-Encoding", "identity");
    QNetworkReply *reply = m_network->get(request);
    m_requests.insert(reply, {file, channel, false});
    const qint64 longest = isVersion ? kLongestVersion : kLongestChangeLog;
    reply->setReadBufferSize(longest + 1); // what does not fit stays with the sender
    connect(reply, &QNetworkReply::readyRead, this, [this, reply, longest] {
        if (reply->bytesAvailable() <= longest)
            return;
        m_requests[reply].tooLong = true;
        reply->abort();
    });
    // Nothing of a server that stalls is kept for ever. The limit is that of the whole request: one
    // on silence would let a server go on that sends a byte now and then.
    QTimer::singleShot(m_requestTimeout, reply, &QNetworkReply::abort);
}

void OrbUpdateManager::OnNetReplyFinished(QNetworkReply *reply)
{
    reply->deleteLater();
    if (!m_requests.contains(reply))
        return;
    const Request request = m_requests.take(reply);

    if (request.file == File::Version && request.tooLong) {
        takeVersion(request.channel, QString()); // an answer, though one of no use
        return;
    }
    if (reply->error() != QNetworkReply::NoError)
        return;
    const QString text = QString::fromUtf8(reply->readAll()).trimmed();
    if (request.file == File::Version) {
        takeVersion(request.channel, text);
    } else {
        m_changeLog = text;
        emit NewVersionAvailable();
    }
}

void OrbUpdateManager::takeVersion(const QString &channel, const QString &text)
{
    --m_pendingRequests;
    m_settings->write(lastCheckKey(), m_clock());
    if (UpdateReply::parse(text))
        m_channels.insert(channel, text);
    if (m_pendingRequests != 0)
        return;

    const QString newest = UpdateReply::newestChannel(m_channels);
    const std::optional<UpdateReply::Release> release = UpdateReply::parse(
        m_channels.value(newest));
    if (!release)
        return;
    if (OrbVersion(release->version) <= m_currentVersion) {
        if (m_reportWhenUpToDate)
            emit AlreadyLatestVersion();
        return;
    }
    m_newVersion = OrbVersion::normalised(release->version);
    m_newVersionDate = release->date;
    m_downloadUrl = channelUrl(newest) + QLatin1String("win32?src=") + source();
    m_historyUrl = channelUrl(newest) + QLatin1String("history?src=") + source();
    send(File::ChangeLog, newest);
}

QString OrbUpdateManager::channelUrl(const QString &channel) const
{
    return m_serverUrl + m_product + QLatin1Char('/') + channel + QLatin1Char('/');
}

QString OrbUpdateManager::source() const
{
    return m_product + QLatin1Char('/') + m_currentVersion.text();
}
