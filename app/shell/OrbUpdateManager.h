#pragma once

#include "OrbVersion.h"

#include <QDate>
#include <QDateTime>
#include <QHash>
#include <QString>
#include <QThread>

#include <chrono>
#include <functional>

class OrbSettingsManager;
class QNetworkAccessManager;
class QNetworkReply;

/// Asks an HTTP file server whether a newer version of the product exists: once a week by itself,
/// and whenever the user wants to know. The server's address is given by the build; without one no
/// thread is started and nobody is asked.
///
/// The server is not trusted. Whatever goes wrong ends a check without a word: what it sends is
/// read up to a limit, a request that takes too long is given up, and redirections are not
/// followed. Its change log is handed on as it comes, markup included.
///
/// Threads: all operations and signals belong to the thread that made the object, but for run(),
/// which reads the server's address, fixed for life, and emits UrlResolved(). Destroying the object
/// waits for run(), which waits for nobody, and gives up the requests that are out.
class OrbUpdateManager : public QThread
{
    Q_OBJECT

public:
    using Clock = std::function<QDateTime()>;

    /// `settings` is not owned. `serverUrl` ends in "/", or is empty. `clock` tells the time by
    /// which a week is measured.
    OrbUpdateManager(OrbSettingsManager *settings, const QString &serverUrl,
                     QObject *parent = nullptr, Clock clock = QDateTime::currentDateTimeUtc);
    ~OrbUpdateManager() override;

    /// Names the running product, and checks if the last check is more than a week away, before or
    /// after now: a date to come was written by a wrong clock. `data` is sent with the next
    /// request, once.
    void start(const QString &product, const QString &version, const QString &data);

    /// Starts a check, which takes the place of one that still waits for the server. Tells by
    /// AlreadyLatestVersion() that there is nothing newer only if `reportWhenUpToDate`. Does
    /// nothing while the thread runs.
    void check(bool reportWhenUpToDate);

    /// How long a request may take in all; half a minute if not set.
    void setRequestTimeout(std::chrono::milliseconds timeout) { m_requestTimeout = timeout; }

    bool isConfigured() const { return !m_serverUrl.isEmpty(); }

    /// Whether a version that is newer has been found; its change log may still be on its way.
    bool isNewVersionAvailable() const { return !m_newVersion.parts().isEmpty(); }
    OrbVersion newVersion() const { return m_newVersion; }
    QDate newVersionDate() const { return m_newVersionDate; }
    QString changeLog() const { return m_changeLog; }
    QString downloadUrl() const { return m_downloadUrl; }
    QString historyUrl() const { return m_historyUrl; }

signals:
    /// All that the accessors tell of the new version is known.
    void NewVersionAvailable();
    void AlreadyLatestVersion();

    /// The user data is on its way and forgotten here.
    void ClearUserData();
    void UrlResolved();

public slots:
    void OnNetReplyFinished(QNetworkReply *reply);
    void OnUrlResolved();

protected:
    void run() override;

private:
    enum class File { Version, ChangeLog };
    struct Request
    {
        File file = File::Version;
        QString channel;
        bool tooLong = false; ///< given up, as the answer is longer than any that makes sense
    };

    void askVersion(const QString &channel);
    void send(File file, const QString &channel, const QString &data = {});
    void takeVersion(const QString &channel, const QString &text);
    QString channelUrl(const QString &channel) const;
    QString source() const;

    OrbVersion m_newVersion;
    QDate m_newVersionDate;
    QString m_changeLog;
    QString m_downloadUrl;
    QString m_historyUrl;
    const QString m_serverUrl;
    QString m_product;
    OrbVersion m_currentVersion;
    QString m_userData;
    bool m_reportWhenUpToDate = false;
    int m_pendingRequests = 0;          ///< version requests without an answer so far
    QHash<QString, QString> m_channels; ///< name to text, of the channels that named a release
    QHash<QNetworkReply *, Request>
        m_requests; ///< those that are out; the manager owns the replies
    OrbSettingsManager *m_settings;
    Clock m_clock;
    std::chrono::milliseconds m_requestTimeout{std::chrono::seconds(30)};
    QNetworkAccessManager *m_network = nullptr; ///< a child, made for the first request
};
