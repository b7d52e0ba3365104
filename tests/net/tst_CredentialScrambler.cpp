#include "CredentialScrambler.h"

#include "WarningsFail.h"

#include <QtTest>

/// The texts were made with zlib and a CRC-16/X-25 of another language's library.
class tst_CredentialScrambler : public WarningsFail
{
    Q_OBJECT

private slots:
    void aTextIsScrambled_data();
    void aTextIsScrambled();
    void withoutAKeyThereIsNoResult();
};

void tst_CredentialScrambler::aTextIsScrambled_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("random");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QString &text, int random, const char *expected) {
        QTest::newRow(name) << text << random << QString::fromLatin1(expected);
    };
    row("empty", QString(), 0, "AwLvIok=");
    row("short", QStringLiteral("secret"), 0, "AwLvPIR+fFoLb/Q=");
    row("with another random byte", QStringLiteral("secret"), 0xa7, "AwJImyPZ2/2syFM=");
    row("beyond Latin-1", QStringLiteral("geheim \u00e9\u4e2d\U0001f600"), 0x7f,
        "AwKQ2tA+PBFXP71QOBibZugZaTwX");
    row("compressed", QStringLiteral("ab").repeated(300), 0xff,
        "AwMQ2T+20ZbtlKEnwAN4uDiprHHaHRKzFQ==");
}

void tst_CredentialScrambler::aTextIsScrambled()
{
    QFETCH(QString, text);
    QFETCH(int, random);
    CredentialScrambler scrambler;
    scrambler.setKey(0x0123456789abcdef);
    QTEST(scrambler.scramble(text, static_cast<quint8>(random)), "expected");
}

void tst_CredentialScrambler::withoutAKeyThereIsNoResult()
{
    CredentialScrambler scrambler;
    expectWarning(QStringLiteral("^No key set\\.$"));
    QCOMPARE(scrambler.scramble(QStringLiteral("secret"), 0), QString());
    QCOMPARE(scrambler.lastError(), CredentialScrambler::NoKeySet);
    scrambler.setKey(0);
    QCOMPARE(scrambler.scramble(QString(), 1), QStringLiteral("AwIBAQE="));
    QCOMPARE(scrambler.lastError(), CredentialScrambler::None);
}

QTEST_APPLESS_MAIN(tst_CredentialScrambler)
#include "tst_CredentialScrambler.moc"
