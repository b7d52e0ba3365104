#include "CrashReportDialog.h"
#include "WarningsFail.h"

#include <QtNetwork>
#include <QtTest>
#include <QtWidgets>

namespace {

constexpr char kId[] = "01234567-89ab-cdef-01234567-89abcdef";
constexpr int kWaitMs = 20000;
constexpr int kSlowBytes = 300000; ///< at a time
constexpr int kSlowPauseMs = 20;

/// Reads a report to its end and answers as it is told, or reads it slowly and never answers.
struct ReportServer : public QTcpServer
{
    ReportServer()
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            ++requests;
            request.clear();
            socket = nextPendingConnection();
            socket->setReadBufferSize(isSlow ? kSlowBytes : 0);
            connect(socket, &QTcpSocket::readyRead, this, [this] {
                if (isSlow)
                    QTimer::singleShot(kSlowPauseMs, socket,
                                       [from = socket] { from->read(kSlowBytes); });
                else
                    request += socket->readAll();
                if (request.endsWith("--\r\n") || request.startsWith('\x16')) // a form, or TLS
                    socket->write(answer);
            });
        });
        listen(QHostAddress::LocalHost);
        url = QUrl(QStringLiteral("http://127.0.0.1:%1/up?a=b").arg(serverPort()));
    }

    QUrl url;
    QByteArray answer = "HTTP/1.1 200 OK\r\n\r\n";
    QByteArray request;
    bool isSlow = false;
    int requests = 0;
    QTcpSocket *socket = nullptr;
};

} // namespace

class tst_CrashReportDialog : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Windows that nobody sees take any size.
        ignoreWarning(QStringLiteral("^This plugin does not support propagateSizeHints"));
    }
    void init()
    {
        WarningsFail::init();
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(QLatin1String(kId) + QStringLiteral(".dmp"));
        m_arguments = QStringLiteral("Orbix Sight|1.4.0.400||de_DE|more|%1|%2|It <b>was</b>\nI…|1")
                          .arg(m_folder->path(), QLatin1String(kId))
                          .split(QLatin1Char('|'));
        m_content = QByteArray("MDMP\0\r\n--\r\xff*", 12).repeated(300000);
        QVERIFY(write(m_path, m_content));
    }
    void cleanup()
    {
        m_dialog.reset();
        WarningsFail::cleanup();
    }

    void sendIsOfferedOnlyWhereItCanBeDone_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("offered") << "Before that, nothing is sent.";
        QTest::newRow("no server") << "Nothing is sent anywhere. If you";
        QTest::newRow("not allowed") << "Nothing is sent anywhere. If you";
        QTest::newRow("no dump") << "There is no crash file. Nothing is sent anywhere.";
    }
    void sendIsOfferedOnlyWhereItCanBeDone()
    {
        QFETCH(QString, text);
        const QByteArray row = QTest::currentDataTag();
        m_arguments[8] = row == "not allowed" ? QStringLiteral("0") : QStringLiteral("1");
        QVERIFY(row != "no dump" || QFile::remove(m_path));
        ReportServer server;
        show(row == "no server" ? QUrl() : server.url);
        QVERIFY2(shown("explanation").contains(text), qPrintable(shown("explanation")));
        QCOMPARE(find<QLineEdit>("path")->text(), m_path);
        QCOMPARE(shown("size").toUtf8(), QByteArray(row == "no dump" ? "no file" : "3,43 MiB"));
        auto *send = find<QPushButton>("send");
        QCOMPARE(send && send->isVisible(), row == "offered");
        QVERIFY(find<QPushButton>("close")->isDefault());
        QTest::keyClick(m_dialog.get(), Qt::Key_Escape);
        QVERIFY(!m_dialog->isVisible() && server.requests == 0);
    }

    void sendGivesTheServerAllFieldsAndTheWholeFile()
    {
        ReportServer server;
        show(server.url);
        press("send");
        QTRY_COMPARE_WITH_TIMEOUT(shown("status"),
                                  QStringLiteral("The report was sent. Thank you."), kWaitMs);
        QVERIFY(!find<QPushButton>("send")->isEnabled());
        QVERIFY(server.request.startsWith("POST /up?a=b HTTP/1.1\r\n"));
        const int body = server.request.indexOf("\r\n\r\n") + 4;
        QByteArray expected =
            "@prod\"\r\n\r\nOrbix Sight@ver\"\r\n\r\n1.4.0.400@guid\"\r\n\r\n#@comments\"\r\n\r\n"
            "It <b>was</b>\nI…@lang\"\r\n\r\nde_DE@extra\"\r\n\r\nmore@upload_file_minidump\"; "
            "filename=\"#.dmp\"\r\nContent-Type: application/octet-stream\r\n\r\n";
        const QByteArray line = server.request.mid(body).split('\r').constFirst();
        expected.replace('#', kId);
        expected.replace("@", "\r\n" + line + "\r\nContent-Disposition: form-data; name=\"");
        QVERIFY(server.request.mid(body) == expected.mid(2) + m_content + "\r\n" + line + "--\r\n");
    }

    void whyItFailedIsToldAndSendMayBePressedAgain_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("status");
        QTest::newRow("500") << QByteArray("HTTP/1.1 500 No\r\n\r\n") << "status 500.";
        QTest::newRow("redirect") << QByteArray("HTTP/1.1 307 F\r\nLocation: /up\r\n\r\n")
                                  << "status 307.";
        QTest::newRow("no TLS") << QByteArray("220 ready\r\n\r\n") << "could not be sent";
        QTest::newRow("nobody") << QByteArray() << "refused";
    }
    void whyItFailedIsToldAndSendMayBePressedAgain()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, status);
        ReportServer server;
        server.answer = answer;
        if (QTest::currentDataTag() == QByteArray("no TLS"))
            server.url.setScheme(QStringLiteral("https"));
        if (answer.isEmpty())
            server.close();
        show(server.url);
        for (int i = 1; i <= 2; ++i) {
            press("send");
            QTRY_VERIFY_WITH_TIMEOUT(find<QPushButton>("send")->isEnabled(), kWaitMs);
            QVERIFY2(shown("status").contains(status), qPrintable(shown("status")));
            QCOMPARE(server.requests, answer.isEmpty() ? 0 : i);
        }
    }

    void aSlowSendingEndsByCancelAndByClosing()
    {
        QVERIFY(write(m_path, m_content.repeated(20))); // for several seconds
        ReportServer server;
        server.isSlow = true;
        show(server.url);
        auto *progress = find<QProgressBar>("progress");
        for (const char *way : {"cancel", "close"}) {
            QVERIFY(!progress->isVisible());
            press("send");
            QTRY_VERIFY_WITH_TIMEOUT(progress->value() > 0, kWaitMs);
            QVERIFY(progress->isVisible() && progress->value() < progress->maximum());
            press(way);
            server.socket->setReadBufferSize(0);
            QTRY_COMPARE_WITH_TIMEOUT(server.socket->state(), QTcpSocket::UnconnectedState,
                                      kWaitMs);
        }
        QVERIFY(!m_dialog->isVisible());
    }

    void silenceIsNotWaitedForForEver()
    {
        ReportServer server;
        server.answer.clear();
        m_content = "MDMP";
        QVERIFY(write(m_path, m_content));
        ReportUpload upload(server.url, nullptr, std::chrono::seconds(2));
        QSignalSpy finished(&upload, &ReportUpload::finished);
        upload.start(CrashReport::parse(m_arguments).report, {}, CrashDump::open(m_path));
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, kWaitMs);
        QVERIFY(finished.at(0).at(0).toString().contains(QStringLiteral("in time")));
        QVERIFY(server.request.size() > m_content.size());
    }

    void aDumpThatChangesMeanwhileIsNotSent()
    {
        for (const bool isGone : {false, true}) {
            ReportServer server;
            QVERIFY(write(m_path, m_content));
            show(server.url);
            QVERIFY(isGone ? QFile::remove(m_path) : write(m_path, "PDMP"));
            press("send");
            QVERIFY(shown("status").contains(QStringLiteral("was not sent")));
            QVERIFY(!find<QPushButton>("send")->isVisible() && server.requests == 0);
        }
    }

    void openFolderSaysWhereNoProgramTakesIt()
    {
        show({});
        const auto pathAgain = qScopeGuard([path = qgetenv("PATH")] { qputenv("PATH", path); });
        qputenv("PATH", m_folder->path().toLocal8Bit());
        const QString program = m_folder->filePath(QStringLiteral("xdg-open"));
        const QByteArray openers[] = {"", "#!/bin/sh\nexit 3", "#!/bin/sh\n: > \"$1/opened\""};
        for (const QByteArray &opener : openers) {
            QVERIFY(opener.isEmpty() || write(program, opener));
            find<QLabel>("status")->clear();
            press("openFolder");
            const QString mark = m_folder->filePath(QStringLiteral("opened"));
            QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(mark) == opener.contains("opened")
                                         && shown("status").isEmpty() == opener.contains("opened"),
                                     kWaitMs);
            QCOMPARE(find<QLineEdit>("path")->selectedText(), m_path);
        }
    }

    void longAndStrangeTextsKeepTheDialogsShape()
    {
        show({});
        const int width = m_dialog->width();
        for (int i : {1, 2, 3, 4})
            m_arguments[i] = QStringLiteral("<h1>W</h1>\n").repeated(10000);
        m_arguments[0] = QStringLiteral("<img src=/x> OK");
        m_arguments[5] += QStringLiteral("/<b>\u202e\n").repeated(2000);
        show({});
        QCOMPARE(m_dialog->width(), width);
        QCOMPARE(shown("heading"), QStringLiteral("<img src=/x> OK has closed unexpectedly."));
        QCOMPARE(find<QLabel>("heading")->textFormat(), Qt::PlainText);
        press("copyDetails");
        const QString copied = QGuiApplication::clipboard()->text();
        QVERIFY(copied.contains(QSysInfo::kernelVersion()) && copied.contains(m_arguments.at(7)));
        QVERIFY(!copied.contains(QChar(0x202e)));
        QVERIFY(!find<QLineEdit>("path")->text().contains(QChar(0x202e)));
    }

private:
    static bool write(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
            && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    void show(const QUrl &server)
    {
        const CrashReport report = CrashReport::parse(m_arguments).report;
        m_dialog = std::make_unique<CrashReportDialog>(report, server);
        m_dialog->show();
    }
    template <typename Widget>
    Widget *find(const char *name) const
    {
        return m_dialog->findChild<Widget *>(QLatin1String(name));
    }
    QString shown(const char *label) const { return find<QLabel>(label)->text(); }
    void press(const char *name) const { find<QPushButton>(name)->click(); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    QStringList m_arguments;
    QByteArray m_content;
    std::unique_ptr<CrashReportDialog> m_dialog;
};

QTEST_MAIN(tst_CrashReportDialog)
#include "tst_CrashReportDialog.moc"
