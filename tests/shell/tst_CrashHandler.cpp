#include "CrashHandler.h"
#include "OrbExceptionHandler.h"
#include "WarningsFail.h"

#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

#include <csignal>
#include <thread>

namespace {

QStringList dumpsIn(const QTemporaryDir &folder)
{
    return QDir(folder.path()).entryList({QStringLiteral("*.dmp")});
}

/// As if another thread had crashed.
void crashElsewhere(OrbExceptionHandler &handler)
{
    std::thread([&handler] {
        handler.SimulateSignalDelivery(SIGSEGV);
        ::alarm(0); // this process is not to end
    }).join();
}

} // namespace

class tst_CrashHandler : public WarningsFail
{
    Q_OBJECT

private slots:
    void aLongMessageKeepsItsWholeLetters_data();
    void aLongMessageKeepsItsWholeLetters();
    void withoutAHandlerNoReportIsWritten();
    void aDumpOnDemandIsTold_data();
    void aDumpOnDemandIsTold();
    void onlyTheFirstOfSeveralCrashesIsReported();
    void aCrashLeavesTheDumpThatIsBeingWritten();
    void whatStoodBeforeStandsAgainAfterIt();
};

void tst_CrashHandler::aLongMessageKeepsItsWholeLetters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("letters"); // UTF-16 units that remain of 1023 bytes

    QTest::newRow("none") << QString() << 0;
    QTest::newRow("as many as fit") << QString(1023, QLatin1Char('a')) << 1023;
    QTest::newRow("one more") << QString(1024, QLatin1Char('a')) << 1023;
    QTest::newRow("of two bytes") << QString(2000, QChar(0xe4)) << 511;
    QTest::newRow("of three bytes, with one before")
        << QLatin1Char('a') + QString(2000, QChar(0x4e00)) << 341;
    QTest::newRow("of four bytes") << QString::fromUtf8("\xf0\x9f\x8c\x8d").repeated(900) << 510;
}

void tst_CrashHandler::aLongMessageKeepsItsWholeLetters()
{
    QFETCH(QString, text);
    QFETCH(int, letters);

    expectWarning(QStringLiteral("The program ends by a failure: .*"));
    CrashHandler::setMessage(text);
    QCOMPARE(CrashHandler::message(), text.left(letters));
}

void tst_CrashHandler::withoutAHandlerNoReportIsWritten()
{
    expectWarning(QStringLiteral("No report of the running program could be written."));
    QVERIFY(!CrashHandler::writeReport());
}

void tst_CrashHandler::aDumpOnDemandIsTold_data()
{
    QTest::addColumn<bool>("isWritable");

    QTest::newRow("written") << true;
    QTest::newRow("not written") << false;
}

void tst_CrashHandler::aDumpOnDemandIsTold()
{
    QFETCH(bool, isWritable);

    const QTemporaryDir folder;
    OrbExceptionHandler handler(isWritable ? folder.path() : QStringLiteral("/proc"), nullptr);
    QSignalSpy told(&handler, &OrbExceptionHandler::crash_report_dumped);
    for (int i = 1; i <= 2; ++i) {
        QCOMPARE(handler.write(), isWritable);
        QCOMPARE(told.size(), i);
        QCOMPARE(told.last().at(3).toBool(), isWritable);
        QCOMPARE(dumpsIn(folder).size(), isWritable ? i : 0);
    }
}

void tst_CrashHandler::onlyTheFirstOfSeveralCrashesIsReported()
{
    const QTemporaryDir folder;
    OrbExceptionHandler handler(folder.path(), nullptr);
    int told = 0;
    connect(
        &handler, &OrbExceptionHandler::crash_report_dumped, this, [&told] { ++told; },
        Qt::DirectConnection);
    crashElsewhere(handler);
    crashElsewhere(handler);
    QCOMPARE(told, 1);
    QCOMPARE(dumpsIn(folder).size(), 1);
}

void tst_CrashHandler::aCrashLeavesTheDumpThatIsBeingWritten()
{
    const QTemporaryDir folder;
    OrbExceptionHandler handler(folder.path(), nullptr);
    int told = 0;
    connect(
        &handler, &OrbExceptionHandler::crash_report_dumped, this,
        [&told, &handler] {
            if (++told == 1)
                crashElsewhere(handler);
        },
        Qt::DirectConnection);
    handler.write();
    QCOMPARE(told, 2);
    QCOMPARE(dumpsIn(folder).size(), 1);
}

void tst_CrashHandler::whatStoodBeforeStandsAgainAfterIt()
{
    const auto handler = [] {
        struct sigaction action = {};
        sigaction(SIGSEGV, nullptr, &action);
        return action.sa_sigaction;
    };
    const auto before = handler();
    const QTemporaryDir folder;
    CrashHandler::Configuration configuration;
    configuration.dumpFolder = folder.path();
    configuration.dumpType = 2;
    expectWarning(QStringLiteral("Dumps of the type 2 are not to be had here.*"));
    CrashHandler::install(configuration);
    QVERIFY(handler() != before);
    CrashHandler::remove();
    QVERIFY(handler() == before);
}

QTEST_GUILESS_MAIN(tst_CrashHandler)
#include "tst_CrashHandler.moc"
