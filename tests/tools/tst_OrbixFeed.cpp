#include "WarningsFail.h"

#include <QtTest>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdlib>

namespace {

const QString kProgram = QStringLiteral(ORBIX_FEED);
const QString kSmall = QStringLiteral("--size 4x2 --rate 1000");
constexpr int kWaitMs = 20000;

/// With a descriptor of ours as its standard input.
class ReadingProcess : public QProcess
{
public:
    explicit ReadingProcess(int input)
        : m_input(input)
    {}

protected:
    void setupChildProcess() override { ::dup2(m_input, STDIN_FILENO); }

private:
    int m_input;
};

/// What the program said, once it has ended.
QString ended(QProcess &program, int exitCode)
{
    program.closeWriteChannel();
    if (!program.waitForFinished(kWaitMs) || program.exitStatus() != QProcess::NormalExit
        || program.exitCode() != exitCode)
        return QStringLiteral("ended with %1").arg(program.exitCode());
    return QString::fromUtf8(program.readAllStandardError());
}

QString said(const QString &arguments, const QByteArray &input, int exitCode)
{
    QProcess program;
    program.start(kProgram, arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts));
    program.write(input);
    return ended(program, exitCode);
}

} // namespace

class tst_OrbixFeed : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // One that a test of before left has no writer.
        QVERIFY2(!m_block.open(QIODevice::ReadWrite)
                     || ::flock(m_block.handle(), LOCK_EX | LOCK_NB) == 0,
                 "A live feed is running on this machine.");
        m_block.remove();
    }
    void cleanup()
    {
        m_block.remove();
        WarningsFail::cleanup();
    }

    void whatIsWrongIsSaid_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QString>("pattern");
        const auto row = [](const char *name, const char *arguments, const QByteArray &input,
                            const char *pattern) {
            QTest::newRow(name) << arguments << input << pattern;
        };
        row("no size", "", {}, "Give the size");
        row("too wide", "--size 16384x2", m_frame, "16383x65535");
        row("no rate", "--size 4x2 --rate 0", m_frame, "\"0\" is no rate");
        row("unknown option", "--sise 4x2", {}, "'sise'");
        row("no option", "4x2", {}, "\"4x2\"");
        row("nothing to remove", "--remove", {}, "There is no shared memory");
        row("remove and more", "--remove --size 4x2", {}, "no other option");
        row("empty input", "--size 4x2", {}, "input is empty");
        row("short first frame", "--size 4x2", m_frame.left(31), "frame 1, after 31 of 32 bytes");
        row("short input", "--size 4x2", m_frame + m_frame.left(5), "frame 2, after 5 of 32 bytes");
    }
    void whatIsWrongIsSaid()
    {
        QFETCH(QString, arguments);
        QFETCH(QByteArray, input);
        QFETCH(QString, pattern);
        const QString text = said(arguments, input, 1);
        QVERIFY2(text.startsWith(QStringLiteral("orbix-feed: ")) && text.contains(pattern),
                 qPrintable(text));
    }

    void aTerminalIsNoInput()
    {
        const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
        QVERIFY(::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0);
        QProcess program;
        program.setStandardInputFile(QString::fromLatin1(::ptsname(terminal)));
        program.start(kProgram, kSmall.split(QLatin1Char(' ')));
        QVERIFY(ended(program, 1).contains(QStringLiteral("is a terminal")));
        ::close(terminal);
    }

    void aSingleFrameIsThereTwiceAndTheNextWriterGoesOn()
    {
        QCOMPARE(said(kSmall, m_frame, 0), QString());
        const QByteArray block = bytes();
        QCOMPARE(block.mid(block[0xA4 + 1] * 256 + uchar(block[0xA4]), 32), m_frame);
        QCOMPARE(block.mid(block[0xDC + 1] * 256 + uchar(block[0xDC]), 32), m_frame);
        QCOMPARE(stamps(), (QVector<int>{1, 2, 3}));
        QCOMPARE(said(kSmall, m_frame + m_frame, 0), QString());
        QCOMPARE(stamps(), (QVector<int>{5, 6, 7})); // the last is begun, as the 3 was
        QCOMPARE(said(QStringLiteral("--remove"), {}, 0), QString());
        QVERIFY(!m_block.exists());
    }

    void anInputThatDoesNotBlockIsWaitedFor()
    {
        int ends[2] = {};
        QVERIFY(::pipe2(ends, O_NONBLOCK | O_CLOEXEC) == 0);
        QFile input;
        QVERIFY(input.open(ends[1], QIODevice::WriteOnly | QIODevice::Unbuffered,
                           QFileDevice::AutoCloseHandle));
        ReadingProcess program(ends[0]);
        program.start(kProgram, kSmall.split(QLatin1Char(' ')));
        QTRY_VERIFY_WITH_TIMEOUT(m_block.exists() && m_block.size() > 0, kWaitMs); // it reads now
        QCOMPARE(input.write(m_frame), qint64(m_frame.size()));
        QTRY_COMPARE_WITH_TIMEOUT(stamps(), (QVector<int>{1, 2, 3}), kWaitMs);
        input.close();
        QCOMPARE(ended(program, 0), QString());
        ::close(ends[0]);
    }

    void framesKeepTheRate()
    {
        QElapsedTimer time;
        time.start();
        const QString options = QStringLiteral("--size 4x2 --rate 20000/1001");
        QCOMPARE(said(options, m_frame.repeated(10), 0), QString());
        QVERIFY(time.elapsed() >= 450); // 9 intervals of 50.05 ms
    }

    void aFullSystemIsTold()
    {
        const auto run = [](QProcess &process, const QString &command) {
            process.start(
                QStringLiteral("unshare"),
                QStringLiteral("--user --map-root-user --mount sh -c").split(QLatin1Char(' '))
                    << QStringLiteral("mount -t tmpfs -o size=64k tmpfs /dev/shm && ") + command
                    << kProgram);
            return process.waitForStarted();
        };
        QProcess trial;
        if (!run(trial, QStringLiteral("true")) || !trial.waitForFinished()
            || trial.exitCode() != 0)
            QSKIP("The system lets this user have no mounts of its own.");
        QProcess program;
        QVERIFY(run(program, QStringLiteral("exec \"$0\" --size 400x200")));
        const QString text = ended(program, 1);
        QVERIFY2(text.contains(QStringLiteral("There is no room")), qPrintable(text));
    }

    void whatOthersDoToTheBlockIsToldAtTheNextFrame()
    {
        QCOMPARE(said(kSmall, m_frame, 0), QString());
        QProcess program;
        program.start(kProgram, kSmall.split(QLatin1Char(' ')));
        program.write(m_frame);
        QTRY_COMPARE_WITH_TIMEOUT(stamps(), (QVector<int>{5, 6, 4}), kWaitMs);
        QVERIFY(m_block.open(QIODevice::ReadWrite) && m_block.seek(0x90) && m_block.putChar(1));
        m_block.close();
        program.write(m_frame);
        QTRY_COMPARE_WITH_TIMEOUT(stamps(), (QVector<int>{5, 6, 7}), kWaitMs);
        QVERIFY(m_block.open(QIODevice::ReadWrite)
                && ::unlink(qPrintable(m_block.fileName())) == 0);
        program.write(m_frame);
        QString text;
        QTRY_VERIFY_WITH_TIMEOUT((text += QString::fromUtf8(program.readAllStandardError()))
                                     .contains(QStringLiteral("has been removed")),
                                 kWaitMs);
        m_block.resize(0);
        m_block.close();
        program.write(m_frame);
        text += ended(program, 1);
        QVERIFY2(text.contains(QStringLiteral("A reader has rejected")), qPrintable(text));
        QVERIFY2(text.contains(QStringLiteral("cut the shared memory short")), qPrintable(text));
    }

private:
    QByteArray bytes()
    {
        if (!m_block.open(QIODevice::ReadOnly))
            return QByteArray(512, '\0');
        const QByteArray all = m_block.readAll();
        m_block.close();
        return all;
    }
    QVector<int> stamps()
    {
        const QByteArray block = bytes();
        return {block[0x94], block[0x94 + 56], block[0x94 + 112]};
    }

    const QByteArray m_frame = QByteArray::fromHex("01020304").repeated(8);
    QFile m_block{QStringLiteral("/dev/shm/QXLT_Shared_Memory")};
};

QTEST_GUILESS_MAIN(tst_OrbixFeed)
#include "tst_OrbixFeed.moc"
