#include "HostingServer.h"

#include <QFile>
#include <QJsonDocument>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <QTemporaryDir>

namespace {

constexpr char kRoot[] = "/app_dev.php/api/";

struct Identity
{
    QSslCertificate certificate;
    QSslKey key;
};

Identity makeIdentity()
{
    const QTemporaryDir folder;
    const QString certificate = folder.filePath(QStringLiteral("certificate"));
    const QString key = folder.filePath(QStringLiteral("key"));
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"),
                  {QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"),
                   QStringLiteral("rsa:2048"), QStringLiteral("-nodes"), QStringLiteral("-subj"),
                   QStringLiteral("/CN=nobody.example"), QStringLiteral("-days"),
                   QStringLiteral("1"), QStringLiteral("-keyout"), key, QStringLiteral("-out"),
                   certificate});
    QFile certificateFile(certificate);
    QFile keyFile(key);
    if (!openssl.waitForFinished() || !certificateFile.open(QIODevice::ReadOnly)
        || !keyFile.open(QIODevice::ReadOnly))
        qFatal("openssl made no certificate: %s%s", qPrintable(openssl.errorString()),
               openssl.readAllStandardError().constData());
    return {QSslCertificate(&certificateFile), QSslKey(&keyFile, QSsl::Rsa)};
}

const Identity &identity()
{
    static const Identity made = makeIdentity();
    return made;
}

/// What the socket holds, once that is a whole request; it is then taken from it.
bool takeRequest(QSslSocket *socket, HostingServer::Request *request)
{
    const QByteArray bytes = socket->peek(socket->bytesAvailable());
    const int headEnd = bytes.indexOf("\r\n\r\n");
    if (headEnd < 0)
        return false;
    QByteArrayList lines = bytes.left(headEnd).split('\n');
    const QByteArrayList first = lines.takeFirst().split(' ');
    request->method = first.first();
    request->path = first.value(1);
    if (request->path.startsWith(kRoot))
        request->path.remove(0, int(qstrlen(kRoot)));
    for (const QByteArray &line : qAsConst(lines)) {
        const int colon = line.indexOf(':');
        request->headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
    }
    const int length = request->headers.value("content-length").toInt();
    const int bodyStart = headEnd + 4;
    if (bytes.size() < bodyStart + length)
        return false;
    request->body = bytes.mid(bodyStart, length);
    socket->skip(bodyStart + length);
    return true;
}

} // namespace

HostingServer::HostingServer(quint16 port)
{
    if (!listen(QHostAddress::LocalHost, port))
        qFatal("The hosting server has no port: %s", qPrintable(errorString()));
}

QString HostingServer::baseUrl() const
{
    return QStringLiteral("https://127.0.0.1:%1%2").arg(serverPort()).arg(QLatin1String(kRoot));
}

HostingServer::Answer HostingServer::json(const QJsonObject &object)
{
    return {QJsonDocument(object).toJson(), 200, Answer::Whole, {}};
}

HostingServer::Answer HostingServer::json(const QJsonArray &array)
{
    return {QJsonDocument(array).toJson(), 200, Answer::Whole, {}};
}

HostingServer::Answer HostingServer::error(const QString &error, const QString &description)
{
    return json(QJsonObject{{QStringLiteral("error"), error},
                            {QStringLiteral("error_description"), description}});
}

void HostingServer::incomingConnection(qintptr descriptor)
{
    auto *socket = new QSslSocket(this);
    socket->setSocketDescriptor(descriptor);
    socket->setLocalCertificate(identity().certificate);
    socket->setPrivateKey(identity().key);
    connect(socket, &QSslSocket::readyRead, this, [this, socket] { read(socket); });
    connect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
    socket->startServerEncryption();
}

void HostingServer::read(QSslSocket *socket)
{
    Request request;
    if (!takeRequest(socket, &request))
        return;
    m_requests.append(request);
    send(socket, m_queue.isEmpty() ? played(request) : m_queue.takeFirst());
}

void HostingServer::send(QSslSocket *socket, const Answer &answer)
{
    if (answer.way == Answer::Never)
        return;
    QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.status) + " Status\r\n"
        + answer.header + "Content-Type: application/json\r\n";
    if (answer.way != Answer::Endless) {
        const int missing = answer.way == Answer::CutShort ? 1 : 0;
        head += "Content-Length: " + QByteArray::number(answer.body.size() + missing) + "\r\n";
    }
    socket->write(head + "\r\n" + answer.body);
    if (answer.way == Answer::CutShort) {
        socket->disconnectFromHost();
    } else if (answer.way == Answer::Endless) {
        connect(socket, &QSslSocket::encryptedBytesWritten, this, [socket, body = answer.body] {
            if (socket->encryptedBytesToWrite() == 0)
                socket->write(body);
        });
    }
}

HostingServer::Answer HostingServer::played(const Request &request) const
{
    if (request.path.startsWith("public/token/")
        || request.path.startsWith("public/refresh_token/"))
        return json(QJsonObject{{QStringLiteral("access_token"), QStringLiteral("access")},
                                {QStringLiteral("refresh_token"), QStringLiteral("refresh")},
                                {QStringLiteral("api_key"), QStringLiteral("key")}});
    if (request.path.startsWith("oauth/")
        && request.headers.value("authorization") != "Bearer access")
        return error(QStringLiteral("access_denied"), QStringLiteral("Log in first."));
    if (request.path == "oauth/ready")
        return json(QJsonObject{});
    if (m_lists.contains(request.path))
        return json(m_lists.value(request.path));
    return {{}, 404, Answer::Whole, {}};
}
