#include "CrashDump.h"
#include "CrashReport.h"
#include "WarningsFail.h"

#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

#include <limits>

using CrashDump::State;
Q_DECLARE_METATYPE(CrashDump::State)

namespace {

QStringList arguments(int index = 0, const QString &value = QStringLiteral("Orbix Sight"))
{
    QStringList all = QStringLiteral("Orbix Sight|1.4.0.400|u|de_DE|e|/tmp|"
                                     "0123abcd-45EF-6789-00112233-44556677|a\nb|1")
                          .split(QLatin1Char('|'));
    all[index] = value;
    return all;
}

} // namespace

class tst_CrashReport : public WarningsFail
{
    Q_OBJECT

private slots:
    void badArgumentsAreRefused_data()
    {
        QTest::addColumn<QStringList>("given");
        QTest::addColumn<QString>("why");
        QTest::newRow("eight") << QStringList(arguments().mid(1)) << "with 9 arguments. 8 came";
        QTest::newRow("no folder") << arguments(5, {}) << "in which folder";
        for (const char *id :
             {"", "..", "../123abcd-45EF-6789-00112233-44556677",
              "0123abcd-45EF-6789-00112233-4455667/", "0123abcd-45EF-6789-00112233-44556677\n",
              "0123abcd-45EF-6789-00112233-4455667g", "0123abcd-45EF-6789-0011-223344556677"})
            QTest::addRow("id \"%s\"", id) << arguments(6, QString::fromLatin1(id)) << "no name of";
    }
    void badArgumentsAreRefused()
    {
        QFETCH(QStringList, given);
        QFETCH(QString, why);
        const ParsedReport parsed = CrashReport::parse(given);
        QVERIFY2(parsed.error.contains(why), qPrintable(parsed.error));
        QVERIFY(parsed.report.dumpPath.isEmpty());
    }

    void strangeLettersAreReplacedAndLongTextsEnd()
    {
        const auto shown = [](const char *text) {
            return CrashReport::printable(QString::fromUtf8(text), 10).toUtf8();
        };
        QCOMPARE(shown("<b>&amp;"), QByteArray("<b>&amp;"));
        QCOMPARE(shown("a\nb\r\u2028c"), QByteArray("a\ufffdb\ufffd\ufffdc"));
        QCOMPARE(shown("\u202egpj.\u200f\x1b"), QByteArray("\ufffdgpj.\ufffd\ufffd"));
        QCOMPARE(shown("😀😀😀😀😀😀😀😀😀😀😀"), QByteArray("😀😀😀😀😀😀😀😀😀…"));
        const QString longText = QStringLiteral("\u202e\n").repeated(50000);
        const auto with = [&](int i) { return CrashReport::parse(arguments(i, longText)).report; };
        for (const QString &text : {with(0).applicationName, with(1).version, with(2).userArgument,
                                    with(3).localeName, with(4).extraArgument, with(7).comment})
            QVERIFY(text.size() <= 10000 && !text.contains(QChar(0x202e)));
        QVERIFY(!CrashReport::parse(arguments(8, QStringLiteral("01"))).report.maySend);
    }

    void theStateOfTheDumpIsFound_data()
    {
        QTest::addColumn<State>("state");
        QTest::addColumn<QString>("shell"); ///< what makes it, in an empty folder
        QTest::addColumn<bool>("isFull");
        QTest::newRow("intact") << State::Intact << "mkdir d; printf MDMP1 > d/f.dmp" << true;
        QTest::newRow("empty") << State::Damaged << "mkdir d; : > d/f.dmp" << false;
        QTest::newRow("foreign") << State::Damaged << "mkdir d; echo PMDMP > d/f.dmp" << false;
        QTest::newRow("empty, full disk") << State::DiskFull << "mkdir d; : > d/f.dmp" << true;
        QTest::newRow("gone, full disk") << State::DiskFull << "mkdir -m 777 d" << true;
        QTest::newRow("gone") << State::Gone << "mkdir -m 777 d" << false;
        QTest::newRow("link") << State::Unreadable << "mkdir d; ln -s /bin/sh d/f.dmp" << false;
        QTest::newRow("pipe") << State::Unreadable << "mkdir d; mkfifo d/f.dmp" << false;
        QTest::newRow("no folder") << State::FolderMissing << ": > d" << true;
        QTest::newRow("read-only") << State::FolderReadOnly << "mkdir -m 555 d" << true;
    }
    void theStateOfTheDumpIsFound()
    {
        QFETCH(State, state);
        QFETCH(QString, shell);
        QFETCH(bool, isFull);
        const QTemporaryDir top;
        QVERIFY(::chmod(qPrintable(top.path()), 0777) == 0);
        QProcess maker;
        maker.setWorkingDirectory(top.path());
        maker.start(QStringLiteral("sh"), {QStringLiteral("-ec"), shell});
        QVERIFY(maker.waitForFinished() && maker.exitCode() == 0);
        // The superuser may write everywhere, so for access() it is somebody else meanwhile.
        const bool isSuperuser = ::getuid() == 0;
        if (isSuperuser && ::setreuid(65534, 0) != 0)
            QSKIP("There is no other user here for whom a folder could be write-protected");
        const auto found = CrashDump::look(top.filePath(QStringLiteral("d/f.dmp")),
                                           isFull ? std::numeric_limits<qint64>::max() : 0);
        QVERIFY(!isSuperuser || ::setreuid(0, 0) == 0);
        QCOMPARE(found.state, state);
    }
};

QTEST_GUILESS_MAIN(tst_CrashReport)
#include "tst_CrashReport.moc"
