#include "CrashedPlayer.h"
#include "FilmOnScreen.h"
#include "WarningsFail.h"

#include <QtTest>

#include <csignal>

namespace {

// What the system's libraries say of the crashes in these tests.
const char *const kLastWords =
    "double free or corruption.*|terminate called after .*|  what\\(\\): .*|Qt has caught an exception .*|exceptions from .*|"
    "You must not let .*|If that is not possible, .*|QCoreApplication::notify\\(\\) and .*|"
    ".*The program ends by a failure: .*";

} // namespace

class tst_Crash : public WarningsFail
{
    Q_OBJECT

private:
    void reporterIsStarted(const CrashedPlayer &player, const QString &id,
                           const QString &dump = QStringLiteral("dump"));

    DumpReader m_reader;
    bool m_hasTools = false;

private slots:
    void initTestCase();
    void aCrashLeavesOneDumpThatNamesItsFunction_data();
    void aCrashLeavesOneDumpThatNamesItsFunction();
    void theReporterStartsWithoutADumpToo_data();
    void theReporterStartsWithoutADumpToo();
    void aMissingReporterIsToldOnStandardError();
    void aReportOnDemandLeavesTheProgramPlaying();
};

void tst_Crash::initTestCase()
{
    m_hasTools = QFile::exists(QStringLiteral(MINIDUMP_STACKWALK))
        && QFile::exists(QStringLiteral(DUMP_SYMS));
    if (!m_hasTools)
        qInfo("minidump_stackwalk and dump_syms are not installed: no dump is read");
    else
        QCOMPARE(m_reader.readSymbols(), QString());
}

/// With its nine arguments, three of them empty.
void tst_Crash::reporterIsStarted(const CrashedPlayer &player, const QString &id,
                                  const QString &dump)
{
    QTRY_VERIFY(player.reports().contains(id));
    const QStringList expected{dump,
                               QStringLiteral("blocked signals:\t0000000000000000"),
                               QStringLiteral("9"),
                               QStringLiteral("Orbix Sight"),
                               QStringLiteral("1.4.0.400"),
                               QString(),
                               QStringLiteral("fr_CH"),
                               QString(),
                               player.dumpFolder(),
                               id,
                               QString(),
                               QStringLiteral("1")};
    QCOMPARE(player.reports().value(id), expected);
}

void tst_Crash::aCrashLeavesOneDumpThatNamesItsFunction_data()
{
    QTest::addColumn<QString>("crash");
    QTest::addColumn<QString>("function");
    QTest::addColumn<QByteArray>("message"); // of what `main` caught

    const auto row = [](const char *thread, const char *way, const char *function,
                        const char *message = "") {
        QTest::addRow("%s, %s", thread, way)
            << QStringLiteral("%1:%2").arg(QLatin1String(thread), QLatin1String(way))
            << QString::fromLatin1(function) << QByteArray(message);
    };
    row("main", "null", "crashByNullWrite()");
    row("main", "abort", "crashByAbort()");
    row("main", "exception", "main", "an exception on purpose");
    row("main", "image", "main", "a picture on purpose [File: ");
    row("main", "heap", "crashByDoubleFree()");
    row("main", "overflow", "crashByOverflow(int)");
    row("render", "null", "crashByNullWrite()");
    row("render", "abort", "crashByAbort()");
    row("render", "exception", "crashByException()");
    row("vlc", "null", "crashByNullWrite()");
    row("vlc", "abort", "crashByAbort()");
    row("vlc", "exception", "crashByException()");
}

void tst_Crash::aCrashLeavesOneDumpThatNamesItsFunction()
{
    QFETCH(QString, crash);
    QFETCH(QString, function);
    QFETCH(QByteArray, message);

    CrashedPlayer player;
    const QString film = player.folder() + QStringLiteral("/film.mp4");
    QCOMPARE(ClipWriter::write(film), QString());
    player.setSetting(QStringLiteral("application/language"), QStringLiteral("fr_CH"));
    player.setEnvironment(QStringLiteral("ORBIX_CRASH"), crash);
    player.start({film});

    QCOMPARE(player.ending(QLatin1String(kLastWords)), QStringLiteral("it crashed"));
    QCOMPARE(player.dumps().size(), 1);
    const QString dump = player.dumps().constFirst();
    reporterIsStarted(player, QFileInfo(dump).completeBaseName());
    QCOMPARE(player.reports().size(), 1);
    if (!m_hasTools)
        QSKIP("The tools that read dumps are not installed");
    QVERIFY2(m_reader.function(dump) == function,
             qPrintable(m_reader.frames(dump).join(QLatin1Char('\n'))));

    QFile file(dump);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(message.isEmpty() || file.readAll().contains(message));
}

void tst_Crash::theReporterStartsWithoutADumpToo_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("mount");

    QTest::newRow("no such folder") << QStringLiteral("/nowhere/at all") << QString();
    QTest::newRow("a folder that nobody writes to") << QStringLiteral("/proc") << QString();
    QTest::newRow("a full folder")
        << QString() << QStringLiteral("mount -t tmpfs -o size=64k none \"$TMPDIR\"");
}

void tst_Crash::theReporterStartsWithoutADumpToo()
{
    QFETCH(QString, folder);
    QFETCH(QString, mount);
    if (!mount.isEmpty()
        && QProcess::execute(QStringLiteral("unshare"),
                             {QStringLiteral("--mount"), QStringLiteral("true")})
            != 0)
        QSKIP("A folder of limited size cannot be mounted here, since that takes root's rights");

    CrashedPlayer player;
    if (!folder.isEmpty())
        player.setDumpFolder(folder);
    if (!mount.isEmpty())
        player.startBy({QStringLiteral("unshare"), QStringLiteral("--mount"), QStringLiteral("sh"),
                        QStringLiteral("-c"), mount + QStringLiteral(" && exec \"$@\""),
                        QStringLiteral("sh")});
    player.setSetting(QStringLiteral("application/language"), QStringLiteral("fr_CH"));
    player.setEnvironment(QStringLiteral("ORBIX_CRASH"), QStringLiteral("main:null"));
    player.start({});

    QCOMPARE(player.ending(), QStringLiteral("it crashed"));
    QTRY_COMPARE(player.reports().size(), 1);
    reporterIsStarted(player, player.reports().firstKey(), QStringLiteral("no dump"));
}

void tst_Crash::aMissingReporterIsToldOnStandardError()
{
    CrashedPlayer player;
    player.removeReporter();
    player.setEnvironment(QStringLiteral("ORBIX_CRASH"), QStringLiteral("render:null"));
    player.start({});

    QVERIFY(player.ending().startsWith(QLatin1String("it crashed")));
    QCOMPARE(player.dumps().size(), 1);
    // What could not become the reporter may live longer than the program.
    QTRY_COMPARE(player.errors(),
                 QStringLiteral("The crash reporter %1/bin/OrbCrashReporter cannot be started. The "
                                "report is %2, if it could be written.\n")
                     .arg(player.folder(), player.dumps().constFirst()));
}

void tst_Crash::aReportOnDemandLeavesTheProgramPlaying()
{
    CrashedPlayer player;
    Clip clip;
    clip.frames = 250;
    const QString film = player.folder() + QStringLiteral("/film.mp4");
    QCOMPARE(ClipWriter::write(film, clip), QString());
    player.setSetting(QStringLiteral("application/language"), QStringLiteral("fr_CH"));
    FilmOnScreen::start(player, {film});

    QCOMPARE(FilmOnScreen::watch(clip), QString());
    player.order("dump");
    QTRY_COMPARE(player.dumps().size(), 1);
    const QString first = player.dumps().constFirst();
    reporterIsStarted(player, QFileInfo(first).completeBaseName());
    QCOMPARE(FilmOnScreen::watch(clip), QString());

    if (m_hasTools) // of the thread that was asked, whole
        QCOMPARE(m_reader.frames(first).filter(QStringLiteral("OnMiniDump")).size(), 1);

    // A crash after it has a dump and a reporter of its own.
    player.raise(SIGSEGV);
    QCOMPARE(player.ending(), QStringLiteral("it crashed"));
    QStringList later = player.dumps();
    QCOMPARE(later.size(), 2);
    later.removeOne(first);
    reporterIsStarted(player, QFileInfo(later.constFirst()).completeBaseName());
}

QTEST_MAIN(tst_Crash)
#include "tst_Crash.moc"
