#pragma once

#include "CrashDump.h"
#include "CrashReport.h"
#include "ReportUpload.h"

#include <QDialog>

class QLabel;
class QLayout;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;

/// Tells the user of a crash, shows where its dump is, and sends it if the build has a server, the
/// player allows it and the user presses Send.
class CrashReportDialog : public QDialog
{
    Q_OBJECT

public:
    /// An empty `server` is none.
    CrashReportDialog(const CrashReport &report, const QUrl &server, QWidget *parent = nullptr);

    void done(int result) override; ///< what is being sent is given up

private:
    QLayout *createHead();
    QLayout *createFileRows();
    QLayout *createCommentRows();
    QLayout *createProgressRow();
    QLayout *createButtons();
    QString explanation() const;
    void showDump();
    void showSending(bool isSending);

    void openFolder();
    void copyDetails();
    void send();
    void takeResult(const QString &error);

    const CrashReport m_report;
    const bool m_offersSending;
    CrashDump::Found m_dump;
    ReportUpload m_upload;

    // Children of the dialog.
    QLabel *m_explanation = nullptr;
    QLineEdit *m_path = nullptr;
    QLabel *m_size = nullptr;
    QPlainTextEdit *m_comment = nullptr;
    QProgressBar *m_progress = nullptr;
    QLabel *m_status = nullptr;
    QPushButton *m_cancel = nullptr;
    QPushButton *m_openFolder = nullptr;
    QPushButton *m_send = nullptr; ///< null where sending is not offered
    QPushButton *m_close = nullptr;
};
