#include "HostingReply.h"

#include "Garbage.h"
#include "WarningsFail.h"

#include <QtTest>

using Remedy = HostingReply::Remedy;
Q_DECLARE_METATYPE(Remedy)

class tst_HostingReply : public WarningsFail
{
    Q_OBJECT

private slots:
    void aListOrAnObjectIsGood();
    void anErrorSaysWhatToDo_data();
    void anErrorSaysWhatToDo();
    void aLongErrorIsCut();
};

void tst_HostingReply::aListOrAnObjectIsGood()
{
    const HostingReply list = HostingReply::parse(R"( [{"title":"a"}, 2] )");
    QVERIFY(list.isGood());
    QCOMPARE(list.list,
             (QVariantList{QVariantMap{{QStringLiteral("title"), QStringLiteral("a")}}, 2}));
    const HostingReply object = HostingReply::parse(R"({"api_key":"k"})");
    QVERIFY(object.isGood());
    QCOMPARE(object.map, (QVariantMap{{QStringLiteral("api_key"), QStringLiteral("k")}}));
    QVERIFY(HostingReply::parse("[]").isGood());
    QVERIFY(HostingReply::parse("{}").isGood());
}

void tst_HostingReply::anErrorSaysWhatToDo_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("message");
    QTest::addColumn<Remedy>("remedy");
    const QString unparsable = QStringLiteral("Failed to parse server response to JSON.");
    QTest::newRow("nothing") << QByteArray() << unparsable << Remedy::None;
    QTest::newRow("text") << QByteArray("<html>") << unparsable << Remedy::None;
    QTest::newRow("a value") << QByteArray("12") << unparsable << Remedy::None;
    QTest::newRow("cut") << QByteArray(R"([{"title":)") << unparsable << Remedy::None;
    QTest::newRow("bytes") << garbage(1000) << unparsable << Remedy::None;
    QTest::newRow("deep") << QByteArray(1 << 20, '[') << unparsable << Remedy::None;

    const auto row = [](const char *name, const char *body, const char *texts, Remedy remedy) {
        QTest::newRow(name) << QByteArray(
            body) << (QStringLiteral("Error in server response : ") + QLatin1String(texts))
                            << remedy;
    };
    row("expired",
        R"({"error":"invalid_grant","error_description":"The access token provided has expired."})",
        "invalid_grant The access token provided has expired.", Remedy::Refresh);
    row("expired, without its full stop",
        R"({"error":"invalid_grant","error_description":"The access token provided has expired"})",
        "invalid_grant The access token provided has expired", Remedy::None);
    row("expired, by another error",
        R"({"error":"Invalid_grant","error_description":"The access token provided has expired."})",
        "Invalid_grant The access token provided has expired.", Remedy::None);
    row("refresh token", R"({"error":"invalid_grant","error_description":"Invalid refresh token"})",
        "invalid_grant Invalid refresh token", Remedy::Login);
    row("refresh token, in another case",
        R"({"error":"invalid_grant","error_description":"invalid refresh token"})",
        "invalid_grant invalid refresh token", Remedy::None);
    row("no description", R"({"error":"gone"})", "gone ", Remedy::None);
    row("no text", R"({"error":null,"error_description":[1]})", " ", Remedy::None);
}

void tst_HostingReply::anErrorSaysWhatToDo()
{
    QFETCH(QByteArray, body);
    const HostingReply reply = HostingReply::parse(body);
    QVERIFY(!reply.isGood());
    QTEST(reply.errorMessage, "message");
    QTEST(reply.remedy(), "remedy");
}

void tst_HostingReply::aLongErrorIsCut()
{
    const HostingReply reply = HostingReply::parse("{\"error\":\"" + QByteArray(100000, 'x')
                                                   + "\"}");
    QVERIFY(reply.errorMessage.startsWith(QLatin1String("Error in server response : xxx")));
    QVERIFY(reply.errorMessage.size() < 1100);
    QVERIFY(HostingReply::failed(QString(100000, QLatin1Char('x'))).errorMessage.size() < 1100);
}

QTEST_APPLESS_MAIN(tst_HostingReply)
#include "tst_HostingReply.moc"
