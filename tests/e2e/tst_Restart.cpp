#include "Player.h"
#include "WarningsFail.h"

#include <QImage>
#include <QJsonArray>
#include <QtTest>

namespace {

constexpr int kRestartCode = 123456789;
constexpr int kStartDeadlineMs = 20000;
constexpr int kPauseMs = 1000; ///< between the end of the old process and the start of the new one

double timeMs(const QJsonObject &entry)
{
    return entry.value(QLatin1String("timeMs")).toDouble();
}

} // namespace

class tst_Restart : public WarningsFail
{
    Q_OBJECT

private slots:
    void theRestartCodeStartsTheProgramAgain_data();
    void theRestartCodeStartsTheProgramAgain();
    void anyOtherCodeStartsNothing_data();
    void anyOtherCodeStartsNothing();
};

void tst_Restart::theRestartCodeStartsTheProgramAgain_data()
{
    QTest::addColumn<QString>("startFolder");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("picture");

    QTest::newRow("no arguments") << QString() << QStringList() << QString();
    QTest::newRow("options and a relative file")
        << QStringLiteral("a folder") << QStringList{QStringLiteral("--demo")}
        << QStringLiteral("picture.png");
    QTest::newRow("blanks, quotes and letters of other alphabets")
        << QString::fromUtf8("été à \"Łódź\"")
        << QStringList{QStringLiteral("-d"), QStringLiteral("--")}
        << QString::fromUtf8("it's a 'dom' & $HOME \\n 東京.png");
}

void tst_Restart::theRestartCodeStartsTheProgramAgain()
{
    QFETCH(QString, startFolder);
    QFETCH(QStringList, options);
    QFETCH(QString, picture);

    Player player;
    QVERIFY(
        QDir(player.folder()).mkpath(startFolder.isEmpty() ? QStringLiteral(".") : startFolder));
    const QDir folder(player.folder() + QLatin1Char('/') + startFolder);
    QStringList arguments = options;
    if (!picture.isEmpty()) {
        QImage image(64, 32, QImage::Format_RGB32);
        image.fill(Qt::red);
        QVERIFY(image.save(folder.filePath(picture)));
        arguments.append(picture);
    }

    player.setEnvironment(QStringLiteral("ORBIX_DRIVER_EXITS"),
                          QString::number(kRestartCode) + QStringLiteral(",0"));
    player.start(arguments, folder.path());
    QCOMPARE(player.ending(), QString::number(kRestartCode % 256));

    QTRY_COMPARE_WITH_TIMEOUT(player.log(QStringLiteral("end")).size(), 2, kStartDeadlineMs);
    const QVector<QJsonObject> starts = player.log(QStringLiteral("start"));
    const QVector<QJsonObject> frames = player.log(QStringLiteral("frame"));
    const QVector<QJsonObject> ends = player.log(QStringLiteral("end"));
    QVERIFY(starts.at(0).value(QLatin1String("pid")) != starts.at(1).value(QLatin1String("pid")));
    QVERIFY(timeMs(starts.at(1)) - timeMs(ends.at(0)) >= kPauseMs);
    for (const QJsonObject &start : starts) {
        QCOMPARE(start.value(QLatin1String("arguments")).toArray(),
                 QJsonArray::fromStringList(arguments));
        QCOMPARE(start.value(QLatin1String("folder")).toString(), folder.canonicalPath());
    }
    const QString shown = picture.isEmpty()
        ? QString()
        : QStringLiteral(" - ") + QUrl::fromLocalFile(folder.absoluteFilePath(picture)).toString();
    for (const QJsonObject &frame : frames)
        QCOMPARE(frame.value(QLatin1String("title")).toString(),
                 QStringLiteral("Orbix Sight") + shown);
    QCOMPARE(player.ending(), QString::number(kRestartCode % 256)); // nor any word of the second
}

void tst_Restart::anyOtherCodeStartsNothing_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("status");

    QTest::newRow("success") << 0 << 0;
    QTest::newRow("failure") << 1 << 1;
    QTest::newRow("the restart code as the system sees it") << 21 << 21;
    QTest::newRow("one less than the restart code") << 123456788 << 20;
}

void tst_Restart::anyOtherCodeStartsNothing()
{
    QFETCH(int, code);
    QFETCH(int, status);

    Player player;
    player.setEnvironment(QStringLiteral("ORBIX_DRIVER_EXITS"), QString::number(code));
    player.start({QStringLiteral("--demo")});
    QCOMPARE(player.ending(), QString::number(status));
    QVERIFY(player.processes().isEmpty());
    QCOMPARE(player.log(QStringLiteral("start")).size(), 1);
}

QTEST_GUILESS_MAIN(tst_Restart)
#include "tst_Restart.moc"
