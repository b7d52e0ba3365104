#include "CrashReportDialog.h"

#include <QClipboard>
#include <QFile>
#include <QFileInfo>
#include <QFormLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QSysInfo>
#include <QVBoxLayout>

namespace {

constexpr int kWidth = 560;      // device-independent pixels
constexpr int kCommentLines = 4; // at least
constexpr int kProgressSteps = 1000;

/// What is in the texts comes from outside, so none of it is taken for HTML.
QLabel *plainLabel(const char *name, const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QPushButton *button(const char *name, const QString &text, QWidget *parent)
{
    auto *made = new QPushButton(text, parent);
    made->setObjectName(QLatin1String(name));
    return made;
}

QString systemText()
{
    return QStringLiteral("%1, %2 %3, %4")
        .arg(QSysInfo::prettyProductName(), QSysInfo::kernelType(), QSysInfo::kernelVersion(),
             QSysInfo::currentCpuArchitecture());
}

} // namespace

CrashReportDialog::CrashReportDialog(const CrashReport &report, const QUrl &server, QWidget *parent)
    : QDialog(parent)
    , m_report(report)
    , m_offersSending(report.maySend && !server.isEmpty())
    , m_upload(server)
{
    setWindowTitle(tr("%1 Crash Report").arg(report.applicationName));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto *rows = new QVBoxLayout(this);
    rows->setSpacing(rows->spacing() * 3 / 2);
    rows->addLayout(createHead());
    rows->addLayout(createFileRows());
    rows->addLayout(createCommentRows(), 1);
    m_status = plainLabel("status", {}, this);
    rows->addWidget(m_status);
    rows->addLayout(createProgressRow());
    rows->addLayout(createButtons());
    m_comment->setFocus();
    showDump();
    showSending(false);
    // With room for the progress, which comes later.
    resize(kWidth, rows->minimumHeightForWidth(kWidth) + 2 * m_progress->sizeHint().height());

    connect(&m_upload, &ReportUpload::progress, this, [this](qint64 sent, qint64 total) {
        if (total > 0)
            m_progress->setValue(int(double(sent) / double(total) * kProgressSteps));
    });
    connect(&m_upload, &ReportUpload::finished, this, &CrashReportDialog::takeResult);
}

void CrashReportDialog::done(int result)
{
    m_upload.cancel();
    QDialog::done(result);
}

QLayout *CrashReportDialog::createHead()
{
    auto *icon = new QLabel(this);
    const int extent = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    icon->setPixmap(style()
                        ->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this)
                        .pixmap(windowHandle(), QSize(extent, extent)));
    auto *heading = plainLabel("heading",
                               tr("%1 has closed unexpectedly.").arg(m_report.applicationName),
                               this);
    QFont font = heading->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.2);
    heading->setFont(font);
    m_explanation = plainLabel("explanation", {}, this);

    auto *texts = new QVBoxLayout;
    texts->addWidget(heading);
    texts->addWidget(m_explanation);
    auto *head = new QHBoxLayout;
    head->setSpacing(head->spacing() * 2);
    head->addWidget(icon, 0, Qt::AlignTop);
    head->addLayout(texts, 1);
    return head;
}

/// A line of input shows a path of any length without widening the dialog.
QLayout *CrashReportDialog::createFileRows()
{
    m_path = new QLineEdit(CrashReport::printable(m_report.dumpPath, 4096), this);
    m_path->setObjectName(QStringLiteral("path"));
    m_path->setAccessibleName(tr("Place of the crash file"));
    m_path->setReadOnly(true);
    m_path->setCursorPosition(0);
    m_size = plainLabel("size", {}, this);
    m_size->setAccessibleName(tr("Size of the crash file"));

    auto *rows = new QFormLayout;
    rows->addRow(tr("Crash file:"), m_path);
    rows->addRow(tr("Size:"), m_size);
    return rows;
}

QLayout *CrashReportDialog::createCommentRows()
{
    auto *title = new QLabel(tr("&What were you doing when it happened?"), this);
    m_comment = new QPlainTextEdit(m_report.comment, this);
    m_comment->setObjectName(QStringLiteral("comment"));
    m_comment->setAccessibleName(tr("Comment"));
    m_comment->setTabChangesFocus(true);
    m_comment->setMinimumHeight(kCommentLines * m_comment->fontMetrics().lineSpacing());
    title->setBuddy(m_comment);

    auto *rows = new QVBoxLayout;
    rows->addWidget(title);
    rows->addWidget(m_comment, 1);
    return rows;
}

QLayout *CrashReportDialog::createProgressRow()
{
    m_progress = new QProgressBar(this);
    m_progress->setObjectName(QStringLiteral("progress"));
    m_progress->setAccessibleName(tr("Progress of sending"));
    m_progress->setRange(0, kProgressSteps);
    m_cancel = button("cancel", tr("Ca&ncel"), this);
    connect(m_cancel, &QPushButton::clicked, this, [this] {
        m_upload.cancel();
        takeResult(m_progress->value() < m_progress->maximum()
                       ? tr("Sending was cancelled.")
                       : tr("Sending was cancelled. The server may have the report already."));
    });

    auto *row = new QHBoxLayout;
    row->addWidget(m_progress, 1);
    row->addWidget(m_cancel);
    return row;
}

QLayout *CrashReportDialog::createButtons()
{
    m_openFolder = button("openFolder", tr("&Open Folder"), this);
    connect(m_openFolder, &QPushButton::clicked, this, &CrashReportDialog::openFolder);
    QPushButton *copy = button("copyDetails", tr("Copy &Details"), this);
    connect(copy, &QPushButton::clicked, this, &CrashReportDialog::copyDetails);

    auto *row = new QHBoxLayout;
    row->addWidget(m_openFolder);
    row->addWidget(copy);
    row->addStretch();
    if (m_offersSending) {
        m_send = button("send", tr("&Send"), this);
        connect(m_send, &QPushButton::clicked, this, &CrashReportDialog::send);
        row->addWidget(m_send);
    }
    m_close = button("close", tr("&Close"), this);
    m_close->setDefault(true); // Enter in a field is not meant to send
    connect(m_close, &QPushButton::clicked, this, &QDialog::reject);
    row->addWidget(m_close);
    return row;
}

QString CrashReportDialog::explanation() const
{
    const QString problem = CrashDump::problem(m_dump.state);
    if (!problem.isEmpty())
        return problem + QLatin1Char(' ') + tr("Nothing is sent anywhere.");
    const QString what = tr(
        "What happened was saved in a crash file, which helps the maker to find "
        "the fault. The file may hold parts of what was open.");
    return what + QLatin1String("\n\n")
        + (m_offersSending
               ? tr(
                   "Send gives the maker the file, your comment, and what the details, which you can "
                   "copy here, say of the program. Before that, nothing is sent.")
               : tr("Nothing is sent anywhere. If you want to help, give the file to the maker by "
                    "hand, with the details that you can copy here."));
}

void CrashReportDialog::showDump()
{
    m_dump = CrashDump::look(m_report.dumpPath);
    const bool isIntact = m_dump.state == CrashDump::State::Intact;
    m_explanation->setText(explanation());
    m_size->setText(m_dump.bytes < 0 ? tr("no file") : m_report.sizeText(m_dump.bytes));
    m_openFolder->setEnabled(m_dump.state != CrashDump::State::FolderMissing);
    if (m_send)
        m_send->setVisible(isIntact);
}

void CrashReportDialog::showSending(bool isSending)
{
    m_progress->setVisible(isSending);
    m_cancel->setVisible(isSending);
    m_comment->setReadOnly(isSending);
    if (m_send)
        m_send->setEnabled(!isSending);
}

/// The helper of the desktops tells by its exit code whether any program took the folder. It may
/// live as long as that program, so it outlives the dialog.
void CrashReportDialog::openFolder()
{
    auto *opener = new QProcess;
    opener->setProcessChannelMode(QProcess::ForwardedChannels);
    opener->setStandardInputFile(QProcess::nullDevice());
    const auto sayFailure = [this] {
        m_status->setText(tr("No program was found that opens folders. The file's place is marked "
                             "above: copy it from there."));
        m_path->selectAll();
        m_path->setFocus();
    };
    connect(opener, &QProcess::errorOccurred, this, [sayFailure](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            sayFailure();
    });
    connect(opener, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            [sayFailure](int code) {
                if (code != 0)
                    sayFailure();
            });
    connect(opener, &QProcess::errorOccurred, opener, &QObject::deleteLater);
    connect(opener, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), opener,
            &QObject::deleteLater);
    opener->start(QStringLiteral("xdg-open"), {QFileInfo(m_report.dumpPath).absolutePath()});
}

void CrashReportDialog::copyDetails()
{
    QGuiApplication::clipboard()->setText(m_report.details(systemText(), m_dump.bytes,
                                                           CrashDump::problem(m_dump.state),
                                                           m_comment->toPlainText()));
    m_status->setText(tr("The details were copied. Paste them before you close this window."));
}

void CrashReportDialog::send()
{
    showDump();
    std::unique_ptr<QFile> dump = CrashDump::open(m_report.dumpPath);
    if (m_dump.state != CrashDump::State::Intact || !dump) {
        takeResult(tr("The report was not sent: its file has gone or was changed."));
        return;
    }
    m_progress->setValue(0);
    m_status->setText(tr("Sending the report…"));
    showSending(true);
    m_upload.start(m_report, m_comment->toPlainText(), std::move(dump));
}

void CrashReportDialog::takeResult(const QString &error)
{
    m_status->setText(error.isEmpty() ? tr("The report was sent. Thank you.") : error);
    showSending(false);
    if (error.isEmpty()) {
        m_send->setEnabled(false);
    }
}
