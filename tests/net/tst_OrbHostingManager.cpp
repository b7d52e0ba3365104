#include "OrbHostingManager.h"

#include "Garbage.h"
#include "HostingServer.h"
#include "OrbSettingsManager.h"
#include "WarningsFail.h"

#include <QMetaEnum>
#include <QtTest>

#include <memory>

using Answer = HostingServer::Answer;
Q_DECLARE_METATYPE(Answer)

namespace {

const QString kAnn = QStringLiteral("ann");
const QString kPassword = QStringLiteral("open sesame");
const QString kAccess = QStringLiteral("access");
const QString kRefresh = QStringLiteral("refresh");

template <typename Enum>
QString name(Enum value)
{
    return QString::fromLatin1(QMetaEnum::fromType<Enum>().valueToKey(value));
}

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QStringLiteral(", "));
}

Answer failing(const char *description)
{
    return HostingServer::error(QStringLiteral("invalid_grant"), QLatin1String(description));
}

Answer expired()
{
    return failing("The access token provided has expired.");
}

Answer tokens(const QString &access, const QString &refresh)
{
    return HostingServer::json(QJsonObject{{QStringLiteral("access_token"), access},
                                           {QStringLiteral("refresh_token"), refresh}});
}

Answer videos(int count)
{
    QJsonArray array;
    for (int i = 0; i < count; ++i)
        array.append(QJsonObject{{QStringLiteral("title"), QString::number(i)}});
    return HostingServer::json(array);
}

/// Whether one of the 256 ways to scramble `text` is `scrambled`.
bool isScrambled(const QString &scrambled, const QString &text)
{
    CredentialScrambler scrambler;
    scrambler.setKey(0x6b1fd3924ea75c08);
    for (int random = 0; random < 256; ++random) {
        if (scrambler.scramble(text, static_cast<quint8>(random)) == scrambled)
            return true;
    }
    return false;
}

/// Keeps what is written.
class Settings : public KernelSettingsWriter
{
public:
    void write(const QString &key, const QVariant &value) override
    {
        Q_ASSERT(key.startsWith(QLatin1String("application/hosting/")));
        keys += key.mid(20);
        values[keys.last()] = value;
    }

    QStringList keys; ///< in the order of writing, below "application/hosting/"
    QVariantMap values;
};

/// A client with its server and settings.
struct Stage
{
    Stage()
    {
        QObject::connect(&manager, &OrbHostingManager::displayMessage, &manager,
                         [this](const QString &message, int icon) {
                             log += QStringLiteral("icon %1").arg(icon);
                             error = message;
                         });
        QObject::connect(&manager, &OrbHostingManager::requestResponse, &manager,
                         [this](bool success, const QString &message) {
                             log += success ? QStringLiteral("success") : QStringLiteral("failure");
                             error = message;
                         });
        QObject::connect(&manager, &OrbHostingManager::hostingStateChanged, &manager,
                         [this] { log += name(manager.hostingState()); });
        QObject::connect(&manager, &OrbHostingManager::requestTypeChanged, &manager,
                         [this] { log += name(manager.requestType()); });
    }

    /// Whether the client comes to rest.
    bool settle()
    {
        const QDeadlineTimer deadline(20000);
        QSignalSpy changed(&manager, &OrbHostingManager::requestTypeChanged);
        while (manager.requestType() != OrbHostingManager::None) {
            if (!changed.wait(static_cast<int>(deadline.remainingTime())))
                return false;
        }
        return true;
    }

    /// Logs in, has the access tested, and forgets how it went.
    bool logIn()
    {
        manager.requestConnection(kAnn, kPassword);
        const bool isIn = settle() && manager.hostingState() == OrbHostingManager::Connected;
        forget();
        return isIn;
    }

    void forget()
    {
        log.clear();
        settings.keys.clear();
        seen = server.requests().size();
    }

    /// The requests since, as "METHOD path token".
    QStringList asked() const
    {
        QStringList lines;
        const QVector<HostingServer::Request> requests = server.requests().mid(seen);
        for (const HostingServer::Request &request : requests) {
            const QByteArray token = request.headers.value("authorization")
                                         .mid(int(qstrlen("Bearer ")));
            const QByteArray line = request.method + ' ' + request.path + ' ' + token;
            lines += QString::fromUtf8(line.trimmed());
        }
        return lines;
    }

    HostingServer server;
    Settings settings;
    OrbHostingManager manager{&settings, server.baseUrl()};
    QStringList log; ///< the signals, with the new values of the properties
    QString error;   ///< of the last signal that had one
    int seen = 0;
};

} // namespace

/// The client against a service with a certificate of its own.
class tst_OrbHostingManager : public WarningsFail
{
    Q_OBJECT

private slots:
    void aLoginIsKeptAndTheAccessTested();
    void theAddressTakesTextsAsTheyAre();
    void aPageIsAskedForAndFillsTheModel_data();
    void aPageIsAskedForAndFillsTheModel();
    void contentWithoutATokenEndsDisconnected();
    void anExpiredTokenIsRenewedAndTheRequestSentAgain_data();
    void anExpiredTokenIsRenewedAndTheRequestSentAgain();
    void anInvalidRefreshTokenIsFollowedByALogin();
    void aFailedRefreshForgetsTheRequest();
    void theFirstReplyMayBeThatOfAnExpiredToken();
    void aFailureIsTold_data();
    void aFailureIsTold();
    void anObjectInPlaceOfAListAddsNothing();
    void anUnknownCategoryDoesNothing();
    void requestsMadeMeanwhileAreDropped();
    void aDisconnectionWipesEverything();
    void anEndInTheMiddleOfARequestTellsNothing_data();
    void anEndInTheMiddleOfARequestTellsNothing();
    void withoutAServiceALoginFails();
};

void tst_OrbHostingManager::aLoginIsKeptAndTheAccessTested()
{
    Stage stage;
    stage.manager.requestConnection(kAnn, kPassword);
    QVERIFY(stage.settle());
    QCOMPARE(stage.log,
             words("Connecting, Connection, Connected, success, None, "
                   "Connecting, TestAccess, Connected, None"));
    QCOMPARE(stage.error, QString());
    QCOMPARE(stage.asked(), words("GET public/token/ann/open%20sesame, POST oauth/ready access"));
    for (const HostingServer::Request &request : stage.server.requests()) {
        QCOMPARE(request.headers.value("content-type"), QByteArray("application/json"));
        QCOMPARE(request.body, QByteArray());
    }
    QVERIFY(!stage.server.requests().first().headers.contains("authorization"));
    QCOMPARE(stage.settings.keys, words("userName, password, accessToken, refreshToken, apiKey"));
    QVariantMap kept = stage.settings.values;
    QCOMPARE(kept[QStringLiteral("userName")].toString(), kAnn);
    const QString password = kept[QStringLiteral("password")].toString();
    QVERIFY(isScrambled(password, kPassword));
    QVERIFY(isScrambled(kept[QStringLiteral("accessToken")].toString(), kAccess));
    QVERIFY(isScrambled(kept[QStringLiteral("refreshToken")].toString(), kRefresh));
    QVERIFY(isScrambled(kept[QStringLiteral("apiKey")].toString(), QStringLiteral("key")));

    // Only a first reply has the access tested. The random byte is another with each login.
    stage.forget();
    QVERIFY(QTest::qWaitFor([&] {
        stage.manager.requestConnection(kAnn, kPassword);
        return stage.settle() && stage.settings.values[QStringLiteral("password")] != password;
    }));
    QVERIFY(!stage.log.contains(QStringLiteral("TestAccess")));
}

void tst_OrbHostingManager::theAddressTakesTextsAsTheyAre()
{
    Stage stage;
    stage.manager.requestConnection(QStringLiteral("%3"), QStringLiteral("gr\u00fc\u00df?"));
    QVERIFY(stage.settle());
    QCOMPARE(stage.asked().constFirst(), QStringLiteral("GET public/token/%253/gr%C3%BC%C3%9F?"));
}

void tst_OrbHostingManager::aPageIsAskedForAndFillsTheModel_data()
{
    QTest::addColumn<bool>("isLoggedIn");
    QTest::addColumn<int>("category");
    QTest::addColumn<QString>("asked");
    const auto row = [](const char *tag, bool isLoggedIn, int category, const char *asked) {
        QTest::newRow(tag) << isLoggedIn << category << QString::fromLatin1(asked);
    };
    row("public videos", true, OrbHostingManager::PublicVideos, "POST public/videos access");
    row("public videos, no login", false, OrbHostingManager::PublicVideos, "POST public/videos");
    row("my videos", true, OrbHostingManager::MyVideos, "POST oauth/videos/key access");
    row("my videos, no login", false, OrbHostingManager::MyVideos, "POST oauth/videos/");
    row("of a user", true, OrbHostingManager::UserVideos, "POST public/videos/bob access");
}

void tst_OrbHostingManager::aPageIsAskedForAndFillsTheModel()
{
    QFETCH(bool, isLoggedIn);
    QFETCH(int, category);
    Stage stage;
    QVERIFY(!isLoggedIn || stage.logIn());
    stage.server.queue(videos(3));
    stage.manager.requestContent(category, 0, QStringLiteral("bob"));
    QVERIFY(stage.settle());
    QTEST(stage.asked().constFirst(), "asked");
    const HostingServer::Request request = stage.server.requests().at(stage.seen);
    QCOMPARE(request.headers.value("content-type"), QByteArray("application/json"));
    QVERIFY(request.headers.value("authorization").startsWith("Bearer"));
    QCOMPARE(request.body, QByteArray(R"({
    "filter": {
        "limit": 20,
        "order": [
            {
                "date": "DESC"
            }
        ],
        "shuffle": 0,
        "start": 0
    }
}
)"));
    const VideosListModel *model = stage.manager.videosListModel();
    QCOMPARE(model->rowCount(), 3);
    QCOMPARE(model->index(2).data(VideosListModel::TitleRole).toString(), QStringLiteral("2"));

    stage.manager.setLimit(50);
    stage.manager.setFirstOrderType(QStringLiteral("views"));
    stage.manager.setFirstOrderDirection(QStringLiteral("ASC"));
    stage.server.queue(videos(0));
    stage.manager.requestContent(category, 40);
    QCOMPARE(model->rowCount(), 0);
    QVERIFY(stage.settle());
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(stage.server.requests().last().body.simplified(),
             QByteArray(R"({ "filter": { "limit": 50, "order": [ { "views": "ASC" } ], )"
                        R"("shuffle": 0, "start": 40 } })"));
}

void tst_OrbHostingManager::contentWithoutATokenEndsDisconnected()
{
    Stage stage;
    stage.server.setList("public/videos", {QJsonObject()});
    stage.manager.requestContent();
    QVERIFY(stage.settle());
    QCOMPARE(stage.log,
             words("Content, None, Connecting, TestAccess, failure, None, Disconnected"));
    QCOMPARE(stage.manager.videosListModel()->rowCount(), 1);
}

void tst_OrbHostingManager::anExpiredTokenIsRenewedAndTheRequestSentAgain_data()
{
    QTest::addColumn<int>("times");
    QTest::newRow("once") << 1;
    QTest::newRow("again and again") << 20;
}

void tst_OrbHostingManager::anExpiredTokenIsRenewedAndTheRequestSentAgain()
{
    QFETCH(int, times);
    Stage stage;
    QVERIFY(stage.logIn());
    const QVariant apiKey = stage.settings.values.value(QStringLiteral("apiKey"));
    QStringList log(QStringLiteral("Content"));
    QStringList asked;
    QStringList keys;
    QString token = kAccess;
    QString refreshToken = kRefresh;
    for (int i = 0; i < times; ++i) {
        asked += QStringLiteral("POST public/videos ") + token;
        asked += QStringLiteral("GET public/refresh_token/key/ann/open%20sesame/") + refreshToken;
        log += words("None, Connecting, Connection, Connected, success, None, Content");
        keys += words("userName, password, accessToken, refreshToken");
        token = kAccess + QString::number(i);
        refreshToken = kRefresh + QString::number(i);
        stage.server.queue(expired());
        stage.server.queue(tokens(token, refreshToken));
    }
    stage.server.queue(videos(2));
    stage.manager.requestContent(OrbHostingManager::PublicVideos, 20);
    QVERIFY(stage.settle());
    QCOMPARE(stage.log, log << QStringLiteral("None"));
    QCOMPARE(stage.asked(), asked << QStringLiteral("POST public/videos ") + token);
    QCOMPARE(stage.server.requests().last().body, stage.server.requests().at(stage.seen).body);
    QCOMPARE(stage.manager.videosListModel()->rowCount(), 2);
    QCOMPARE(stage.settings.keys, keys);
    QVariantMap kept = stage.settings.values;
    QVERIFY(isScrambled(kept[QStringLiteral("accessToken")].toString(), token));
    QVERIFY(isScrambled(kept[QStringLiteral("refreshToken")].toString(), refreshToken));
    QCOMPARE(kept[QStringLiteral("apiKey")], apiKey);
}

void tst_OrbHostingManager::anInvalidRefreshTokenIsFollowedByALogin()
{
    Stage stage;
    QVERIFY(stage.logIn());
    stage.server.queue(expired());
    stage.server.queue(failing("Invalid refresh token"));
    stage.server.queue(tokens(QStringLiteral("new"), QStringLiteral("newer")));
    stage.server.queue(videos(1));
    stage.manager.requestContent();
    QVERIFY(stage.settle());
    QCOMPARE(stage.log,
             words("Content, None, Connecting, Connection, None, Connection, "
                   "Connected, success, None, Content, None"));
    QCOMPARE(stage.asked(),
             words("POST public/videos access, "
                   "GET public/refresh_token/key/ann/open%20sesame/refresh, "
                   "GET public/token/ann/open%20sesame, POST public/videos new"));
    QCOMPARE(stage.manager.videosListModel()->rowCount(), 1);
}

void tst_OrbHostingManager::aFailedRefreshForgetsTheRequest()
{
    Stage stage;
    QVERIFY(stage.logIn());
    stage.server.queue(expired());
    stage.server.queue(failing("No."));
    stage.manager.requestContent();
    QVERIFY(stage.settle());
    QCOMPARE(stage.log,
             words("Content, None, Connecting, Connection, failure, None, Disconnected"));
    stage.manager.requestConnection(kAnn, kPassword);
    QVERIFY(stage.settle());
    QCOMPARE(stage.asked().constLast(), QStringLiteral("GET public/token/ann/open%20sesame"));
}

void tst_OrbHostingManager::theFirstReplyMayBeThatOfAnExpiredToken()
{
    Stage stage;
    stage.server.queue(expired());
    stage.server.queue(tokens(kAccess, kRefresh));
    stage.server.queue(videos(1));
    stage.manager.requestContent();
    QVERIFY(stage.settle());
    QCOMPARE(stage.asked(),
             words("POST public/videos, GET public/refresh_token////, "
                   "POST public/videos access"));
}

void tst_OrbHostingManager::aFailureIsTold_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("message");
    const auto rows = [](const char *tag, const Answer &answer, const char *message) {
        for (const auto type : {OrbHostingManager::Content, OrbHostingManager::Connection,
                                OrbHostingManager::TestAccess})
            QTest::newRow(qPrintable(name(type) + QLatin1String(": ") + QLatin1String(tag)))
                << answer << int(type) << QString::fromLatin1(message);
    };
    const QByteArray grant = expired().body;
    constexpr char unparsable[] = "Failed to parse server response to JSON.";
    rows("status 401", {grant, 401, Answer::Whole, {}}, "authentication");
    rows("status 500", {grant, 500, Answer::Whole, {}}, "server replied");
    rows("a redirection", {grant.left(9), 302, Answer::Whole, "Location: /\r\n"}, unparsable);
    rows("a megabyte of noise", {garbage(1 << 20), 200, Answer::Whole, {}}, unparsable);
    rows("packed noise", {garbage(1000), 200, Answer::Whole, "Content-Encoding: gzip\r\n"},
         unparsable);
    rows("an error", failing("No."), "Error in server response : invalid_grant No.");
    rows("cut short", {"[]", 200, Answer::CutShort, {}}, "closed");
    rows("without end", {QByteArray(1 << 18, ' '), 200, Answer::Endless, {}}, "canceled");
}

void tst_OrbHostingManager::aFailureIsTold()
{
    QFETCH(Answer, answer);
    QFETCH(int, type);
    QFETCH(QString, message);
    Stage stage;
    if (type == OrbHostingManager::TestAccess)
        stage.server.queue(tokens(kAccess, kRefresh));
    else
        QVERIFY(stage.logIn());
    stage.server.queue(answer);
    if (type == OrbHostingManager::Content)
        stage.manager.requestContent();
    else
        stage.manager.requestConnection(kAnn, kPassword);
    QVERIFY(stage.settle());
    QVERIFY2(stage.error.contains(message), qPrintable(stage.error));
    if (type == OrbHostingManager::Content) {
        QCOMPARE(stage.log, words("Content, icon 3, None"));
        QVERIFY(stage.settings.keys.isEmpty());
        QCOMPARE(stage.manager.hostingState(), OrbHostingManager::Connected);
        // The request is forgotten: the next reply does not bring it back.
        stage.manager.requestConnection(kAnn, kPassword);
        QVERIFY(stage.settle());
        QCOMPARE(stage.asked().size(), 2);
    } else {
        QStringList expected = words("Connecting, x, failure, None, Disconnected");
        expected[1] = name(OrbHostingManager::RequestType(type));
        QCOMPARE(stage.log.mid(stage.log.size() - 5), expected);
        for (const QVariant &value : qAsConst(stage.settings.values))
            QCOMPARE(value, QVariant(QString()));
    }
}

void tst_OrbHostingManager::anObjectInPlaceOfAListAddsNothing()
{
    Stage stage;
    QVERIFY(stage.logIn());
    stage.server.queue(HostingServer::json(QJsonObject{{QStringLiteral("title"), kAnn}}));
    stage.manager.requestContent();
    QVERIFY(stage.settle());
    QCOMPARE(stage.log, words("Content, None"));
    QCOMPARE(stage.manager.videosListModel()->rowCount(), 0);
}

void tst_OrbHostingManager::anUnknownCategoryDoesNothing()
{
    Stage stage;
    stage.manager.videosListModel()->add({QVariantMap()});
    stage.manager.requestContent(5);
    QCOMPARE(stage.log, QStringList());
    QCOMPARE(stage.manager.videosListModel()->rowCount(), 1);
}

void tst_OrbHostingManager::requestsMadeMeanwhileAreDropped()
{
    Stage stage;
    QVERIFY(stage.logIn());
    stage.manager.videosListModel()->add({QVariantMap()});
    stage.manager.requestConnection(kAnn, kPassword);
    stage.manager.requestContent();
    QCOMPARE(stage.manager.videosListModel()->rowCount(), 0);
    stage.manager.requestConnection(QStringLiteral("bob"), kPassword);
    QVERIFY(stage.settle());
    QCOMPARE(stage.log, words("Connecting, Connection, Connected, success, None"));
    QCOMPARE(stage.asked(), words("GET public/token/ann/open%20sesame"));
    QCOMPARE(stage.settings.values.value(QStringLiteral("userName")).toString(),
             QStringLiteral("bob"));
}

void tst_OrbHostingManager::aDisconnectionWipesEverything()
{
    Stage stage;
    QVERIFY(stage.logIn());
    stage.manager.requestDisconnection();
    stage.manager.requestDisconnection();
    QCOMPARE(stage.log, words("Disconnected"));
    const QStringList keys = words("userName, password, accessToken, refreshToken, apiKey");
    QCOMPARE(stage.settings.keys, keys + keys);
    for (const QVariant &value : qAsConst(stage.settings.values))
        QCOMPARE(value, QVariant(QString()));
    stage.manager.requestContent(OrbHostingManager::MyVideos);
    QVERIFY(stage.settle());
    QCOMPARE(stage.asked(), words("POST oauth/videos/"));
}

void tst_OrbHostingManager::anEndInTheMiddleOfARequestTellsNothing_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::newRow("before the answer") << Answer{{}, 200, Answer::Never, {}};
    QTest::newRow("amid the answer") << Answer{" ", 200, Answer::Endless, {}};
}

/// Meanwhile the client does not stand in the way of others, and no other request goes out.
void tst_OrbHostingManager::anEndInTheMiddleOfARequestTellsNothing()
{
    QFETCH(Answer, answer);
    HostingServer server;
    server.queue(answer);
    Settings settings;
    auto manager = std::make_unique<OrbHostingManager>(&settings, server.baseUrl());
    manager->requestConnection(kAnn, kPassword);
    QTRY_VERIFY(!server.requests().isEmpty());
    manager->requestContent();
    QCOMPARE(manager->requestType(), OrbHostingManager::Connection);
    QSignalSpy responses(manager.get(), &OrbHostingManager::requestResponse);
    manager.reset();
    QCOMPARE(responses.count(), 0);
    QCOMPARE(server.requests().size(), 1);
    QVERIFY(settings.keys.isEmpty());
}

void tst_OrbHostingManager::withoutAServiceALoginFails()
{
    Settings settings;
    OrbHostingManager manager(&settings, QString());
    QSignalSpy responses(&manager, &OrbHostingManager::requestResponse);
    manager.requestConnection(kAnn, kPassword);
    QTRY_COMPARE(responses.count(), 1);
    QVERIFY(!responses.first().first().toBool());
    QVERIFY(!responses.first().last().toString().isEmpty());
    QTRY_COMPARE(manager.hostingState(), OrbHostingManager::Disconnected);
}

QTEST_GUILESS_MAIN(tst_OrbHostingManager)
#include "tst_OrbHostingManager.moc"
