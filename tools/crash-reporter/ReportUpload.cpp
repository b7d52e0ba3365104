#include "ReportUpload.h"

#include <QFile>
#include <QHttpMultiPart>
#include <QNetworkReply>

#include <algorithm>
#include <utility>

namespace {

/// A file of the length that it had: Qt's form does not bear one that is cut short on the way, so
/// zeros stand for what has gone.
class SteadyFile : public QIODevice
{
public:
    explicit SteadyFile(std::unique_ptr<QFile> file)
        : m_file(std::move(file))
        , m_size(m_file->size())
    {
        open(ReadOnly | Unbuffered);
    }
    qint64 size() const override { return m_size; }

protected:
    qint64 readData(char *data, qint64 longest) override
    {
        const qint64 length = std::min(longest, m_size - pos());
        const qint64 read = m_file->seek(pos()) ? std::max(m_file->read(data, length), qint64(0))
                                                : 0;
        std::fill(data + read, data + length, '\0');
        return length;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    const std::unique_ptr<QFile> m_file;
    const qint64 m_size;
};

QHttpPart formPart(const QString &disposition)
{
    QHttpPart part;
    part.setHeader(QNetworkRequest::ContentDispositionHeader,
                   QString(QLatin1String("form-data; ") + disposition));
    return part;
}

} // namespace

ReportUpload::ReportUpload(const QUrl &server, QObject *parent, std::chrono::milliseconds patience)
    : QObject(parent)
    , m_server(server)
{
    m_silence.setSingleShot(true);
    m_silence.setInterval(patience);
    connect(&m_silence, &QTimer::timeout, this,
            [this] { end(tr("The server did not answer in time.")); });
}

ReportUpload::~ReportUpload()
{
    cancel();
}

void ReportUpload::start(const CrashReport &report, const QString &comment,
                         std::unique_ptr<QFile> dump)
{
    auto form = std::make_unique<QHttpMultiPart>(QHttpMultiPart::FormDataType);
    const CrashReport::FormFields fields = report.formFields(comment);
    for (const auto &[name, value] : fields) {
        QHttpPart part = formPart(QStringLiteral("name=\"%1\"").arg(name));
        part.setBody(value.toUtf8());
        form->append(part);
    }
    QHttpPart file = formPart(
        QStringLiteral("name=\"upload_file_minidump\"; filename=\"%1.dmp\"").arg(report.id));
    file.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/octet-stream"));
    auto content = std::make_unique<SteadyFile>(std::move(dump));
    file.setBodyDevice(content.get());
    form->append(file);
    content.release()->setParent(form.get());

    QNetworkRequest request(m_server);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    m_reply = m_network.post(request, form.get());
    form.release()->setParent(m_reply);
    m_reply->setReadBufferSize(1); // nobody reads the answer's body
    m_silence.start();

    connect(m_reply, &QNetworkReply::uploadProgress, this, [this](qint64 sent, qint64 total) {
        m_silence.start();
        emit progress(sent, total);
    });
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &ReportUpload::judge);
    connect(m_reply, &QNetworkReply::finished, this, &ReportUpload::judge);
}

void ReportUpload::cancel()
{
    m_silence.stop();
    if (QNetworkReply *reply = std::exchange(m_reply, nullptr)) {
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
}

/// The status says all that there is to know, so the answer's body is not waited for.
void ReportUpload::judge()
{
    const QVariant status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid() && !m_reply->isFinished())
        return;
    if (!status.isValid()) {
        end(tr("The report could not be sent: %1.")
                .arg(CrashReport::printable(m_reply->errorString(), 200)));
        return;
    }
    const int code = status.toInt();
    const bool isTaken = code >= 200 && code < 300;
    end(isTaken ? QString() : tr("The server refused the report with status %1.").arg(code));
}

void ReportUpload::end(const QString &error)
{
    cancel();
    emit finished(error);
}
