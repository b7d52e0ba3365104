#pragma once

#include "OrbVersion.h"

#include <QDate>
#include <QString>
#include <QThread>

class KernelSettingsWriter;

/// Knows whether a newer version of the product exists. The server's address is given by the build;
/// without one there is nothing to ask.
class OrbUpdateManager : public QThread
{
    Q_OBJECT

public:
    /// `settings` is not owned. `serverUrl` ends in "/", or is empty.
    OrbUpdateManager(KernelSettingsWriter *settings, const QString &serverUrl,
                     QObject *parent = nullptr);

    /// Names the running product. `data` is sent with the next request, once.
    void start(const QString &product, const QString &version, const QString &data);

    bool isConfigured() const { return !m_serverUrl.isEmpty(); }

    OrbVersion newVersion() const { return m_newVersion; }
    QDate newVersionDate() const { return m_newVersionDate; }
    QString changeLog() const { return m_changeLog; }
    QString downloadUrl() const { return m_downloadUrl; }
    QString historyUrl() const { return m_historyUrl; }

signals:
    void NewVersionAvailable();
    void AlreadyLatestVersion();
    void ClearUserData();
    void UrlResolved();

private:
    OrbVersion m_newVersion;
    QDate m_newVersionDate;
    QString m_changeLog;
    QString m_downloadUrl;
    QString m_historyUrl;
    QString m_serverUrl;
    QString m_product;
    OrbVersion m_currentVersion;
    QString m_userData;
    KernelSettingsWriter *m_settings;
};
