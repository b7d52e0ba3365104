#include "OrbUpdateManager.h"

#include "OrbSettingsManager.h"
#include "WarningsFail.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <memory>

using namespace std::chrono_literals;

namespace {

const QString kKey = QStringLiteral("general/last_update_check");
constexpr char kStable[] = "/oxs/stable/version";

QDateTime noon()
{
    return QDateTime({2026, 3, 1}, {12, 0}, Qt::UTC);
}

QByteArray ok(const QByteArray &body)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size())
        + "\r\nConnection: close\r\n\r\n" + body;
}

/// Answers a path with the bytes set for it, "404" for an unknown one. Keeps what was asked.
class Server : public QTcpServer
{
public:
    Server()
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
                if (socket->peek(65536).contains("\r\n\r\n"))
                    answer(socket, socket->readAll().split(' ').value(1));
            });
        });
        if (!listen(QHostAddress::LocalHost))
            qFatal("The server has no port: %s", qPrintable(errorString()));
    }

    QString address() const { return QStringLiteral("http://127.0.0.1:%1/").arg(serverPort()); }

    QHash<QByteArray, QByteArray> answers;
    QByteArrayList asked;
    bool hangsUp = true;  ///< after an answer
    bool endless = false; ///< the end of an answer comes again and again

private:
    void answer(QTcpSocket *socket, const QByteArray &target)
    {
        if (!target.contains("oxs"))
            return; // the thread's request for the root, which it may give up before it is sent
        asked += target;
        const QByteArray path = target.left(target.indexOf('?'));
        socket->write(answers.value(path, "HTTP/1.1 404 Not Found\r\n\r\n9.9.9.400_2030-01-01"));
        if (endless) {
            connect(socket, &QTcpSocket::bytesWritten, this,
                    [socket] { socket->write(QByteArray(16384, '7')); });
        } else if (hangsUp) {
            socket->disconnectFromHost();
        }
    }
};

/// A manager with a server and settings of its own, never checked so far.
struct Stage
{
    explicit Stage(const QString &path = {})
        : manager(&settings, server.address() + path, nullptr, [this] { return now; })
    {
        settings.remove(kKey);
    }

    /// As the program does; `last` is when it has checked before.
    void start(const QString &version, const QVariant &last = {}, const QString &data = {})
    {
        if (last.isValid())
            settings.write(kKey, last);
        manager.start(QStringLiteral("oxs"), version, data);
    }

    /// The time of the last check in the store.
    QDateTime lastCheck() const { return settings.dateTime(kKey, {}); }

    /// Checks, and waits until `count` replies are dealt with.
    bool check(bool report, int count)
    {
        manager.wait();
        manager.check(report);
        manager.wait();
        QCoreApplication::sendPostedEvents(&manager); // the thread's signal: the requests go out
        QSignalSpy finished(manager.findChild<QNetworkAccessManager *>(),
                            &QNetworkAccessManager::finished);
        return QTest::qWaitFor([&] { return finished.count() >= count; }, 10000);
    }

    Server server;
    OrbSettingsManager settings{QStringLiteral("OrbixTests"), QStringLiteral("update check")};
    QDateTime now = noon();
    OrbUpdateManager manager;
    QSignalSpy found{&manager, &OrbUpdateManager::NewVersionAvailable};
    QSignalSpy latest{&manager, &OrbUpdateManager::AlreadyLatestVersion};
};

} // namespace

class tst_OrbUpdateManager : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<QNetworkReply *>(); } // for spies
    void aCheckOfItsOwnComesOnceAWeek_data();
    void aCheckOfItsOwnComesOnceAWeek();
    void theAnswersOfTheChannelsDecide_data();
    void theAnswersOfTheChannelsDecide();
    void aNewVersionComesWithItsChangeLogAndAddresses();
    void theUserDataGoesOutOnceAndWhole();
    void aSilentChannelLeavesTheCheckWaiting();
    void aHostileAnswerEndsTheCheckWithoutAWord_data();
    void aHostileAnswerEndsTheCheckWithoutAWord();
    void aChangeLogBeyondItsLimitTellsNothing();
    void aNewCheckTakesThePlaceOfOneThatWaits();
    void anEndInTheMiddleOfACheckLeavesNothing();
    void withoutAServerNobodyIsAsked();
};

void tst_OrbUpdateManager::aCheckOfItsOwnComesOnceAWeek_data()
{
    QTest::addColumn<QVariant>("last");
    QTest::addColumn<bool>("checks");
    constexpr qint64 day = 86400;
    constexpr qint64 week = 7 * day;
    const auto row = [](const char *name, qint64 secondsAgo, bool checks) {
        QTest::newRow(name) << QVariant(noon().addSecs(-secondsAgo)) << checks;
    };
    row("an hour less than a week", week - 3600, false);
    row("a week", week, false);
    row("a second more", week + 1, true);
    row("tomorrow", -day, false);
    row("in a year", -365 * day, true);
    QTest::newRow("never") << QVariant() << true;
    QTest::newRow("unreadable") << QVariant(QStringLiteral("yesterday")) << true;
}

void tst_OrbUpdateManager::aCheckOfItsOwnComesOnceAWeek()
{
    QFETCH(QVariant, last);
    QFETCH(bool, checks);
    Stage stage;
    stage.server.answers[kStable] = ok("1.4.0.400_2015-02-19");
    QSignalSpy resolved(&stage.manager, &OrbUpdateManager::UrlResolved);
    stage.start(QStringLiteral("1.4.0.400"), last);
    stage.manager.wait();
    QCOMPARE(resolved.count(), checks ? 1 : 0);
    if (checks)
        QTRY_COMPARE(stage.lastCheck(), noon());
    QCOMPARE(stage.latest.count(), 0);
    // The user may ask at any time, and hears that nothing is new.
    stage.server.asked.clear();
    stage.now = noon().addSecs(60);
    QVERIFY(stage.check(true, 1));
    QCOMPARE(stage.server.asked, {"/oxs/stable/version?src=oxs/1.4.0.400"});
    QCOMPARE(stage.latest.count(), 1);
    QCOMPARE(stage.lastCheck(), stage.now);
}

void tst_OrbUpdateManager::theAnswersOfTheChannelsDecide_data()
{
    QTest::addColumn<QString>("current");
    QTest::addColumn<QByteArray>("stable");
    QTest::addColumn<QByteArray>("beta");
    QTest::addColumn<QString>("news"); // what is offered, from where
    const auto row = [](const char *name, const char *current, const char *stable, const char *beta,
                        const char *news) {
        QTest::newRow(name) << QString::fromLatin1(current) << QByteArray(stable)
                            << QByteArray(beta) << QString::fromLatin1(news);
    };
    row("the same", "1.4.0.400", "1.4.0.400_2015-02-19", "", "");
    row("older", "1.4.0.400", "1.3.9.400_2015-02-19", "", "");
    row("newer", "1.4.0.400", " 1.4.1.400_2015-02-19\r\n", "", "1.4.1.400 stable");
    row("newer by number", "1.9.0.400", "1.10.0.400_2015-02-19", "", "1.10.0.400 stable");
    row("a release asks for no beta", "1.4.0.400", "1.4.0.400_2015-02-19", "1.5.0.200_2015-02-19",
        "");
    row("a candidate asks both", "1.4.0.300", "1.3.0.400_2015-02-19", "1.4.0.301_2015-02-19",
        "1.4.0.301 beta");
    row("its release", "1.4.0.300", "1.4.0.400_2015-02-19", "1.4.0.301_2015-02-19",
        "1.4.0.400 stable");
    row("channels sort as text", "1.8.0.300", "1.9.0.400_2015-02-19", "1.10.0.400_2015-02-19",
        "1.9.0.400 stable");
    row("the same on both", "1.4.0.300", "1.4.0.400_2015-02-19", "1.4.0.400_2015-02-19",
        "1.4.0.400 stable");
    row("one of no use", "1.4.0.300", "<html>", "1.4.0.301_2015-02-19", "1.4.0.301 beta");
    row("a build of 0 is a release", "1.4.0.400", "1.5.0.0_2015-02-19", "", "1.5.0.400 stable");
    row("a number beyond all", "1.4.0.400", "99999999999.0.0.400_2030-01-01", "", "");
    row("a date that is none", "1.4.0.400", "1.5.0.400_2015-99", "", "1.5.0.400 stable");
}

void tst_OrbUpdateManager::theAnswersOfTheChannelsDecide()
{
    QFETCH(QString, current);
    QFETCH(QByteArray, stable);
    QFETCH(QByteArray, beta);
    QFETCH(QString, news);
    // Words of the requests in the server's own address mislead nobody.
    Stage stage(QStringLiteral("changelog/version/stable/"));
    const QByteArray root = "/changelog/version/stable/oxs/";
    stage.server.answers = {{root + "stable/version", ok(stable)},
                            {root + "beta/version", ok(beta)},
                            {root + "stable/changelog", ok("Better.")},
                            {root + "beta/changelog", ok("Better.")}};
    stage.start(current, noon());
    const bool release = current.endsWith(QLatin1String(".400"));
    QVERIFY(stage.check(true, (release ? 1 : 2) + (news.isEmpty() ? 0 : 1)));
    QCOMPARE(stage.latest.count(), news.isEmpty() ? 1 : 0);
    QCOMPARE(stage.found.count(), news.isEmpty() ? 0 : 1);
    QCOMPARE(stage.manager.isNewVersionAvailable(), !news.isEmpty());
    QCOMPARE(stage.manager.newVersion().text(), news.section(QLatin1Char(' '), 0, 0));
    QCOMPARE(stage.manager.downloadUrl().section(QLatin1Char('/'), -3, -3),
             news.section(QLatin1Char(' '), 1));
}

void tst_OrbUpdateManager::aNewVersionComesWithItsChangeLogAndAddresses()
{
    Stage stage;
    stage.server.answers = {{kStable, ok("1.4.0.400_2015-02-19")},
                            {"/oxs/beta/version", ok("1.5.0.202_2015-03-20")},
                            {"/oxs/beta/changelog",
                             ok(" <b>Plus rapide</b>, \xc3\xa9t\xc3\xa9\n")}};
    stage.start(QStringLiteral("1.4.0.301"));
    QTRY_COMPARE(stage.found.count(), 1);
    QCOMPARE(stage.server.asked.last(), QByteArray("/oxs/beta/changelog?src=oxs/1.4.0.301"));
    QCOMPARE(stage.manager.newVersion().displayText(), QStringLiteral("1.5.0 Beta 2"));
    QCOMPARE(stage.manager.newVersionDate(), QDate(2015, 3, 20));
    QCOMPARE(stage.manager.changeLog(), QStringLiteral("<b>Plus rapide</b>, été"));
    const QString beta = stage.server.address() + QStringLiteral("oxs/beta/");
    QCOMPARE(stage.manager.downloadUrl(), beta + QStringLiteral("win32?src=oxs/1.4.0.301"));
    QCOMPARE(stage.manager.historyUrl(), beta + QStringLiteral("history?src=oxs/1.4.0.301"));
}

void tst_OrbUpdateManager::theUserDataGoesOutOnceAndWhole()
{
    const QString data = QStringLiteral("a b&c=d+é%41#;/?\"");
    Stage stage;
    QSignalSpy forgotten(&stage.manager, &OrbUpdateManager::ClearUserData);
    stage.start(QStringLiteral("1.4.0.300"), noon(), data);
    QVERIFY(stage.check(false, 2));
    QVERIFY(stage.check(false, 2));
    std::sort(stage.server.asked.begin(), stage.server.asked.end()); // two connections race
    QCOMPARE(stage.server.asked.size(), 4);
    const QByteArray sent = stage.server.asked.takeLast();
    const QByteArray begin = "/oxs/stable/version?src=oxs/1.4.0.300&data=";
    QVERIFY2(sent.startsWith(begin), sent);
    const QString value = QString::fromLatin1(sent.mid(begin.size()));
    // As it came, with nothing in it that a server would take for a space or for the value's end.
    QCOMPARE(QUrl::fromPercentEncoding(value.toLatin1()), data);
    QVERIFY2(!value.contains(QRegularExpression(QStringLiteral("[+&=#; ]"))), sent);
    for (const QByteArray &other : qAsConst(stage.server.asked))
        QVERIFY2(!other.contains("data"), other);
    QCOMPARE(forgotten.count(), 1);
}

void tst_OrbUpdateManager::aSilentChannelLeavesTheCheckWaiting()
{
    Stage stage;
    stage.server.answers[QByteArray("/oxs/beta/version")] = ok("1.5.0.200_2015-03-20");
    stage.start(QStringLiteral("1.4.0.300"), noon().addDays(-1));
    QVERIFY(stage.check(true, 2));
    QCOMPARE(stage.lastCheck(), noon());
    QCOMPARE(stage.found.count() + stage.latest.count(), 0);
    QVERIFY(!stage.manager.isNewVersionAvailable());
}

void tst_OrbUpdateManager::aHostileAnswerEndsTheCheckWithoutAWord_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("manner"); // of the server
    QTest::addColumn<bool>("counts");    // as an answer, for the week
    const QByteArray version = "9.0.0.400_2030-01-01";
    const auto row = [](const char *name, const QByteArray &answer, bool counts,
                        const char *manner = "") {
        QTest::newRow(name) << answer << QString::fromLatin1(manner) << counts;
    };
    row("refused", "", false, "closed");
    row("hangs up", "", false);
    row("no HTTP", "220 smtp ready\r\n" + version, false);
    row("not found", "HTTP/1.1 404 Not Found\r\nConnection: close\r\n\r\n" + version, false);
    row("broken", "HTTP/1.1 500 Oops\r\nConnection: close\r\n\r\n" + version, false);
    row("wants a password",
        "HTTP/1.1 401 No\r\nWWW-Authenticate: Basic realm=\"x\"\r\nConnection: close\r\n\r\n"
            + version,
        false);
    row("half", "HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n" + version, false);
    row("stalls", "HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n" + version, false, "silent");
    row("says nothing", "", false, "silent");
    row("empty", ok(""), true);
    row("HTML", ok("<html><h1>Sign in</h1></html>"), true);
    row("redirected", "HTTP/1.1 302 Found\r\nLocation: /elsewhere\r\nContent-Length: 0\r\n\r\n",
        true);
    row("three numbers", ok("9.0.0_2030-01-01"), true);
    row("packed",
        "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 37\r\n\r\n"
            + QByteArray::fromHex(
                "1f8b0800000000000203b3d4b3044213038378230363035d0343200200073eed55"
                "14000000"), // the version above
        true);
    row("a megabyte", ok(version + QByteArray(1024 * 1024, 'x')), true);
    row("a long run of digits", ok(QByteArray(60 * 1024, '9')), true);
    row("zeros and bytes", ok(QByteArray(100, '\0') + "\xff\xfe" + QByteArray(100, '\x80')), true);
    row("without end", "HTTP/1.1 200 OK\r\n\r\n" + version, true, "endless");
}

void tst_OrbUpdateManager::aHostileAnswerEndsTheCheckWithoutAWord()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, manner);
    QFETCH(bool, counts);
    Stage stage;
    const QDateTime before = noon().addDays(-1);
    stage.start(QStringLiteral("1.4.0.400"), before);
    stage.server.answers[kStable] = answer;
    stage.server.answers[QByteArray("/elsewhere")] = ok("9.0.0.400_2030-01-01");
    stage.server.hangsUp = manner != QLatin1String("silent");
    stage.server.endless = manner == QLatin1String("endless");
    const quint16 port = stage.server.serverPort();
    if (manner == QLatin1String("closed"))
        stage.server.close();
    if (!stage.server.hangsUp)
        stage.manager.setRequestTimeout(200ms);
    QVERIFY(stage.check(true, 1));
    QCOMPARE(stage.found.count() + stage.latest.count(), 0);
    QVERIFY(!stage.manager.isNewVersionAvailable());
    QCOMPARE(stage.lastCheck(), counts ? noon() : before);
    // The next check works.
    stage.server.answers[kStable] = ok("1.4.0.400_2015-02-19");
    stage.server.hangsUp = true;
    stage.server.endless = false;
    stage.manager.setRequestTimeout(10s);
    QVERIFY(stage.server.isListening() || stage.server.listen(QHostAddress::LocalHost, port));
    QVERIFY(stage.check(true, 1));
    QCOMPARE(stage.latest.count(), 1);
}

void tst_OrbUpdateManager::aChangeLogBeyondItsLimitTellsNothing()
{
    const QByteArray path = "/oxs/stable/changelog";
    const QByteArray megabyte(1024 * 1024, 'x');
    Stage stage;
    stage.server.answers = {{kStable, ok("1.5.0.400_2015-02-19")}, {path, ok(megabyte + 'x')}};
    stage.start(QStringLiteral("1.4.0.400"), noon());
    QVERIFY(stage.check(true, 2));
    QCOMPARE(stage.found.count() + stage.latest.count(), 0);
    QCOMPARE(stage.manager.newVersion().text(), QStringLiteral("1.5.0.400"));
    stage.server.answers[path] = ok(megabyte);
    QVERIFY(stage.check(true, 2));
    QCOMPARE(stage.found.count(), 1);
    QCOMPARE(stage.manager.changeLog().toLatin1(), megabyte);
}

void tst_OrbUpdateManager::aNewCheckTakesThePlaceOfOneThatWaits()
{
    Stage stage;
    stage.server.answers[kStable] = "HTTP/1.1 200 OK\r\n";
    stage.server.hangsUp = false;
    stage.start(QStringLiteral("1.4.0.400"));
    QTRY_COMPARE(stage.server.asked.size(), 1);
    stage.server.answers[kStable] = ok("1.4.0.400_2015-02-19");
    QVERIFY(stage.check(true, 1));
    QCOMPARE(stage.latest.count(), 1);
    QTRY_VERIFY(stage.server.findChildren<QTcpSocket *>().isEmpty());
    // What the last check read is forgotten.
    stage.server.answers[kStable] = ok("");
    QVERIFY(stage.check(true, 1));
    QCOMPARE(stage.latest.count(), 1);
}

void tst_OrbUpdateManager::anEndInTheMiddleOfACheckLeavesNothing()
{
    for (const bool asked : {false, true}) {
        Server server;
        server.hangsUp = false;
        server.answers[kStable] = "HTTP/1.1 200 OK\r\n";
        OrbSettingsManager settings{QStringLiteral("OrbixTests"), QStringLiteral("update check")};
        settings.remove(kKey);
        auto manager = std::make_unique<OrbUpdateManager>(&settings, server.address());
        manager->start(QStringLiteral("oxs"), QStringLiteral("1.4.0.400"), {});
        if (asked)
            QTRY_COMPARE(server.asked.size(), 1);
        manager.reset();
        QTRY_VERIFY(server.findChildren<QTcpSocket *>().isEmpty());
        QCOMPARE(server.asked.size(), asked ? 1 : 0);
    }
}

void tst_OrbUpdateManager::withoutAServerNobodyIsAsked()
{
    OrbSettingsManager settings{QStringLiteral("OrbixTests"), QStringLiteral("update check")};
    settings.remove(kKey);
    OrbUpdateManager manager(&settings, {});
    manager.start(QStringLiteral("oxs"), QStringLiteral("1.4.0.400"), {});
    manager.check(true);
    QVERIFY(!manager.isRunning() && !manager.isFinished());
    QVERIFY(manager.findChildren<QNetworkAccessManager *>().isEmpty());
}

QTEST_GUILESS_MAIN(tst_OrbUpdateManager)
#include "tst_OrbUpdateManager.moc"
