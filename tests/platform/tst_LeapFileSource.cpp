#include "Controller.h"
#include "FileSource.h"
#include "Simulation.h"

#include "WarningsFail.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

QByteArray frame(int id, qint64 timestamp)
{
    return R"({"id": )" + QByteArray::number(id) + R"(, "timestamp": )"
        + QByteArray::number(timestamp) + "}\n";
}

QByteArray device(bool isThere)
{
    const QByteArray value = isThere ? "true" : "false";
    return R"({"event": {"type": "deviceEvent", "state": {"id": "A", "attached": )" + value
        + R"(, "streaming": )" + value + "}}}\n";
}

} // namespace

class tst_LeapFileSource : public WarningsFail
{
    Q_OBJECT

private slots:
    void playsInTheTimeOfTheFrames();
    void skipsWhatItCannotRead();
    void startsAnewWithAClockThatDoes();
    void saysThatAFileCannotBeRead_data();
    void saysThatAFileCannotBeRead();
    void isTheHandsThatAreSimulated();

private:
    QString write(const QByteArray &lines);
    /// Plays until that many things were told: + and - for the device, numbers for frames.
    QString played(const QByteArray &lines, int events, QVector<qint64> *atMs = nullptr);

    QTemporaryDir m_folder;
};

QString tst_LeapFileSource::write(const QByteArray &lines)
{
    QFile file(m_folder.filePath(QStringLiteral("hands.jsonl")));
    if (!file.open(QIODevice::WriteOnly) || file.write(lines) != lines.size())
        qCritical("%s", qPrintable(file.errorString()));
    return file.fileName();
}

QString tst_LeapFileSource::played(const QByteArray &lines, int events, QVector<qint64> *atMs)
{
    FileSource source(write(lines));
    QStringList told;
    QElapsedTimer clock;
    const auto note = [&](const QString &what) {
        told.append(what);
        if (atMs)
            atMs->append(clock.elapsed());
    };
    QObject::connect(&source, &FrameSource::connectedChanged, &source,
                     [note](bool isThere) { note(QLatin1String(isThere ? "+" : "-")); });
    QObject::connect(&source, &FrameSource::frameArrived, &source,
                     [note](const Leap::FrameData &data) { note(QString::number(data.id)); });
    clock.start();
    source.start();
    if (!QTest::qWaitFor([&] { return told.size() >= events; }))
        told.append(QStringLiteral("late"));
    QTest::qWait(20); // for what comes too much
    return told.join(QLatin1Char(' '));
}

void tst_LeapFileSource::playsInTheTimeOfTheFrames()
{
    QVector<qint64> atMs;
    const qint64 start = 77'000'000'000;
    QCOMPARE(played(device(true) + frame(1, start) + frame(2, start + 20'000)
                        + frame(3, start + 70'400) + device(false) + frame(4, start + 80'000)
                        + device(true) + frame(5, start + 120'000),
                    7, &atMs),
             QStringLiteral("+ 1 2 3 - + 5"));
    QVERIFY(atMs.at(2) >= 20);
    QVERIFY(atMs.at(3) >= 70);
    QVERIFY2(atMs.at(5) < 120, "the device waits for the frame after it");
    QVERIFY(atMs.at(6) >= 120);
}

void tst_LeapFileSource::skipsWhatItCannotRead()
{
    expectWarning(QStringLiteral("hands.jsonl, line 4: No JSON$"));
    expectWarning(QStringLiteral("hands.jsonl, line 6: A message of more than 1 MiB$"));
    const QByteArray large(2 * (Leap::kMaxMessageBytes + 1), ' ');
    QCOMPARE(played("# hands\n\n  \t\r\nnonsense\n" + frame(1, 0) + large + frame(2, 500)
                        + frame(3, 1000).replace("\n", "\r\n") + "more\n"
                        + frame(4, 2000).trimmed(),
                    4),
             QStringLiteral("+ 1 3 4"));
}

void tst_LeapFileSource::startsAnewWithAClockThatDoes()
{
    QByteArray lines = frame(100, 5'000'000'000);
    for (int id = 1; id <= 10; ++id)
        lines += frame(id, qint64(id) * 1000);
    QVector<qint64> atMs;
    QCOMPARE(played(lines + frame(11, 50'000), 4, &atMs), QStringLiteral("+ 100 10 11"));
    QVERIFY(atMs.at(3) - atMs.at(2) >= 39);
}

void tst_LeapFileSource::saysThatAFileCannotBeRead_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("none") << QString();
    QTest::newRow("missing") << m_folder.filePath(QStringLiteral("missing"));
    QTest::newRow("folder") << m_folder.path();
    QTest::newRow("device") << QStringLiteral("/dev/zero");
}

void tst_LeapFileSource::saysThatAFileCannotBeRead()
{
    expectWarning(QStringLiteral("The script of the simulated hands, \".*\", cannot be read: "));
    QFETCH(QString, path);
    FileSource source(path);
    source.start();
}

void tst_LeapFileSource::isTheHandsThatAreSimulated()
{
    Simulation::setFolder(m_folder.path());
    qputenv("ORBIX_SIMULATE", "hands:hands.jsonl");
    write(frame(8, 1000) + frame(9, 2000));
    const Leap::Controller controller;
    QTRY_COMPARE(controller.frame().id(), 9);
    QCOMPARE(controller.frame(1).id(), 8);
    QVERIFY(controller.isConnected());
}

QTEST_GUILESS_MAIN(tst_LeapFileSource)
#include "tst_LeapFileSource.moc"
