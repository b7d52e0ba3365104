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
