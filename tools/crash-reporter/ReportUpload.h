#pragma once

#include "CrashReport.h"

#include <QNetworkAccessManager>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <memory>

class QFile;
class QNetworkReply;

/// Sends one report at a time to a server of minidumps, as a form with the file in it. A
/// redirection is not followed: the report goes to the address that the build names or nowhere.
class ReportUpload : public QObject
{
    Q_OBJECT

public:
    /// `patience` is how long nothing may move before the sending is given up.
    explicit ReportUpload(const QUrl &server, QObject *parent = nullptr,
                          std::chrono::milliseconds patience = std::chrono::seconds(30));
    ~ReportUpload() override;

    /// Only while none is being sent. `dump` is open and is read on the way.
    void start(const CrashReport &report, const QString &comment, std::unique_ptr<QFile> dump);

    /// Ends the sending without a word.
    void cancel();

signals:
    void progress(qint64 sentBytes, qint64 totalBytes);
    void finished(const QString &error); ///< empty if the server has taken the report

private:
    void judge();
    void end(const QString &error);

    const QUrl m_server;
    QNetworkAccessManager m_network;
    QTimer m_silence;
    QNetworkReply *m_reply = nullptr; ///< deletes itself in the event loop once let go
};
