#include "OrbVersion.h"

#include "Product.h"
#include "WarningsFail.h"

#include <QtTest>

class tst_OrbVersion : public WarningsFail
{
    Q_OBJECT

private slots:
    void theLastNumberTellsTheKindOfBuild_data();
    void theLastNumberTellsTheKindOfBuild();
    void theShortTextNamesMajorAndMinor_data();
    void theShortTextNamesMajorAndMinor();
    void normalisingMakesFourNumbers_data();
    void normalisingMakesFourNumbers();
    void versionsCompareByNumbers_data();
    void versionsCompareByNumbers();
    void theTextIsKeptAsItStands();
    void noVersionHasNoText();
    void theProductIsNamedByItsVersion();
};

void tst_OrbVersion::theLastNumberTellsTheKindOfBuild_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *version, const char *text) {
        QTest::newRow(version) << QString::fromLatin1(version) << QString::fromLatin1(text);
    };
    row("1.4.0.0", "1.4.0 Internal 0");
    row("1.4.0.7", "1.4.0 Internal 7");
    row("1.4.0.99", "1.4.0 Internal 99");
    row("1.4.0.100", "1.4.0 Alpha 0");
    row("1.4.0.199", "1.4.0 Alpha 99");
    row("1.4.0.200", "1.4.0 Beta 0");
    row("1.4.0.202", "1.4.0 Beta 2");
    row("1.4.0.299", "1.4.0 Beta 99");
    row("1.4.0.300", "1.4.0 RC 0");
    row("1.4.0.301", "1.4.0 RC 1");
    row("1.4.0.399", "1.4.0 RC 99");
    row("1.4.0.400", "1.4.0");
    row("1.4.0.1000", "1.4.0");
    row("1.4.0.99999999999", "1.4.0 Internal 0");
    row("10.20.30.400", "10.20.30");
    row("1-4_0 400", "1.4_0");
}

void tst_OrbVersion::theLastNumberTellsTheKindOfBuild()
{
    QFETCH(QString, version);
    QFETCH(QString, text);
    QCOMPARE(OrbVersion(version).displayText(), text);
}

void tst_OrbVersion::theShortTextNamesMajorAndMinor_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("text");
    QTest::newRow("a release") << QStringLiteral("1.4.0.400") << QStringLiteral("1.4");
    QTest::newRow("two digits") << QStringLiteral("12.34.5.202") << QStringLiteral("12.34");
    QTest::newRow("one number") << QStringLiteral("2") << QStringLiteral("2.");
}

void tst_OrbVersion::theShortTextNamesMajorAndMinor()
{
    QFETCH(QString, version);
    QFETCH(QString, text);
    QCOMPARE(OrbVersion(version).shortText(), text);
}

void tst_OrbVersion::normalisingMakesFourNumbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("version");
    const auto row = [](const char *text, const char *version) {
        QTest::newRow(text) << QString::fromUtf8(text) << QString::fromLatin1(version);
    };
    row("1.4.0.400", "1.4.0.400");
    row("1.4.0", "1.4.0.0"); // without a fourth piece it is no release
    row("1.4.0.0", "1.4.0.400");
    row("1.4.0.x", "1.4.0.400");
    row("1.4.0.x.5", "1.4.0.400");
    row("1.4.0.7", "1.4.0.7");
    row("1.4.0.Alpha3", "1.4.0.103");
    row("1.4.0.3A", "1.4.0.103");
    row("1.4.0 Beta2", "1.4.0.202");
    row("1.4.0 Beta 2", "1.4.0.202");
    row("1.4.0 Beta", "1.4.0.200");
    row("1.4.0-B2", "1.4.0.202");
    row("1.4.0_RC1", "1.4.1.0"); // an underscore parts nothing
    row("1.4.0 RC 1", "1.4.0.301");
    row("1.4.0.rc1", "1.4.0.1"); // the case counts
    row("1.4.0.BETA1", "1.4.0.101");
    row("v1.04.0.400.9", "1.4.0.400");
    row("", "0.0.0.0");
    row("1.4.0.\xd9\xa3", "1.4.0.400"); // a digit of another script
    row("99999999999.4.0.99999999999", "0.4.0.400");
    row("1.4.0.2147483647RC", "1.4.0.2147483947");
}

void tst_OrbVersion::normalisingMakesFourNumbers()
{
    QFETCH(QString, text);
    QFETCH(QString, version);
    QCOMPARE(OrbVersion::normalised(text).text(), version);
    QCOMPARE(OrbVersion::normalised(text).parts().join(QLatin1Char('.')), version);
}

void tst_OrbVersion::versionsCompareByNumbers_data()
{
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<bool>("notNewer");
    QTest::addColumn<bool>("notOlder");
    const auto row = [](const char *left, const char *right, bool notNewer, bool notOlder) {
        QTest::addRow("%s and %s", left, right)
            << QString::fromLatin1(left) << QString::fromLatin1(right) << notNewer << notOlder;
    };
    row("1.4.0.400", "1.4.0.400", true, true);
    row("1.10.0.400", "1.9.0.400", false, true);
    row("1.4.0.301", "1.4.0.400", true, false);
    row("2.0.0.0", "1.9.9.400", false, true);
    row("1.4", "1.4.0.400", true, false); // by as many parts as the left one has
    row("1.4.0.400", "1.4.0.0400", true, true);
    row("99999999999.0.0.400", "1.4.0.400", true, false);
}

void tst_OrbVersion::versionsCompareByNumbers()
{
    QFETCH(QString, left);
    QFETCH(QString, right);
    QTEST(OrbVersion(left) <= OrbVersion(right), "notNewer");
    QTEST(OrbVersion(right) <= OrbVersion(left), "notOlder");
}

void tst_OrbVersion::theTextIsKeptAsItStands()
{
    const OrbVersion version(QStringLiteral("1.4.0 - Beta 2"));
    QCOMPARE(version.text(), QStringLiteral("1.4.0 - Beta 2"));
    QCOMPARE(version.parts().join(QLatin1Char('|')), QStringLiteral("1|4|0|Beta|2"));
}

void tst_OrbVersion::noVersionHasNoText()
{
    QCOMPARE(OrbVersion().displayText(), QString());
    QVERIFY(OrbVersion().parts().isEmpty());
}

void tst_OrbVersion::theProductIsNamedByItsVersion()
{
    QCOMPARE(Product::version(), QStringLiteral("1.4.0.400"));
    QCOMPARE(Product::softwareName(), QStringLiteral("Orbix Sight 1.4"));
}

QTEST_GUILESS_MAIN(tst_OrbVersion)
#include "tst_OrbVersion.moc"
