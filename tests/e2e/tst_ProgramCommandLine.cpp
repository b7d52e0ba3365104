#include "HostileFiles.h"
#include "Player.h"
#include "WarningsFail.h"

#include <QJsonArray>
#include <QtTest>

namespace {

/// What a first start leaves behind for users to edit.
QVariantMap defaultSettings()
{
    const QString no = QStringLiteral("false");
    return {
        {QStringLiteral("application/forceopengl"), no},
        {QStringLiteral("application/oculusmode"), no},
        {QStringLiteral("application/sharedmemory"), no},
        {QStringLiteral("application/touchMode"), QStringLiteral("true")},
        {QStringLiteral("application/playlist/imageDisplayDuration"), QStringLiteral("30000")},
        {QStringLiteral("vlc/disableAudio"), no},
        {QStringLiteral("vlc/hardwareDecoding"), no},
        {QStringLiteral("vlc/textureTransfer"), QStringLiteral("0")},
    };
}

bool shows(const QJsonObject &state, const QString &text)
{
    return state.value(QLatin1String("texts")).toArray().contains(text);
}

int frames(const QJsonObject &state)
{
    return state.value(QLatin1String("frames")).toInt();
}

QStringList linesWithout(const QStringList &lines, const QString &pattern)
{
    const QRegularExpression expected(QRegularExpression::anchoredPattern(pattern));
    QStringList others;
    for (const QString &line : lines) {
        if (!expected.match(line).hasMatch())
            others += line;
    }
    return others;
}

} // namespace

class tst_ProgramCommandLine : public WarningsFail
{
    Q_OBJECT

private slots:
    void aWrongOptionEndsTheProgramWithAMessage_data();
    void aWrongOptionEndsTheProgramWithAMessage();
    void theDemoFillsTheScreenWithoutAPopup_data();
    void theDemoFillsTheScreenWithoutAPopup();
    void aHostileFileIsReportedAndTheProgramGoesOn_data();
    void aHostileFileIsReportedAndTheProgramGoesOn();
};

void tst_ProgramCommandLine::aWrongOptionEndsTheProgramWithAMessage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    QTest::newRow("an unknown word") << QStringList{QStringLiteral("--nonsense")}
                                     << QStringLiteral("Unknown option 'nonsense'.");
    QTest::newRow("an unknown letter beside a known one")
        << QStringList{QStringLiteral("-d"), QStringLiteral("-x")}
        << QStringLiteral("Unknown option 'x'.");
    QTest::newRow("help") << QStringList{QStringLiteral("--help")}
                          << QStringLiteral("Unknown option 'help'.");
    QTest::newRow("a mode without its name")
        << QStringList{QStringLiteral("--udp")} << QStringLiteral("Missing value after '--udp'.");
}

void tst_ProgramCommandLine::aWrongOptionEndsTheProgramWithAMessage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);

    Player player;
    player.start(arguments);
    QVERIFY(player.waitForEnd());
    QVERIFY(!player.crashed());
    QCOMPARE(player.exitCode(), 1);
    QCOMPARE(player.errorOutput(), QStringList(QStringLiteral("orbixsight: ") + message));
    QCOMPARE(player.log(QStringLiteral("start")).size(), 1);
    QCOMPARE(player.log(QStringLiteral("frame")).size(), 0);
}

void tst_ProgramCommandLine::theDemoFillsTheScreenWithoutAPopup_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("demo");

    QTest::newRow("no arguments") << QStringList() << false;
    QTest::newRow("long option") << QStringList{QStringLiteral("--demo")} << true;
    QTest::newRow("short option") << QStringList{QStringLiteral("-d")} << true;
}

void tst_ProgramCommandLine::theDemoFillsTheScreenWithoutAPopup()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, demo);

    Player player;
    player.start(arguments);
    const QString about = QStringLiteral("Orbix Sight 1.4.0");
    QVERIFY(player.waitForState([&](const QJsonObject &state) {
        return frames(state) > 10 && (demo || shows(state, about));
    }));
    QVERIFY(shows(player.lastState(), QStringLiteral("Drop your file(s) here")));
    QCOMPARE(shows(player.lastState(), about), !demo);
    QCOMPARE(player.lastState().value(QLatin1String("fullScreen")).toBool(), demo);

    player.closeWindow();
    QVERIFY(player.waitForEnd());
    QVERIFY(!player.crashed());
    QCOMPARE(player.exitCode(), 0);
    QCOMPARE(player.settings(), defaultSettings());
    QCOMPARE(player.errorOutput(), QStringList());
}

void tst_ProgramCommandLine::aHostileFileIsReportedAndTheProgramGoesOn_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("report");
    QTest::addColumn<QString>("logPattern"); // of each line of standard error

    const QString noImage = QStringLiteral("An error occurred while loading the image");
    const QString noFormat = QStringLiteral("The file format is not supported.");
    const QString noJson = QStringLiteral("Error : cannot parse json");
    const QString imageLog = QStringLiteral(".*QML Image: (Cannot open|Error decoding): file:.*|"
                                            "libpng error: .*|.* JPEG .*");
    const QString videoLog = QStringLiteral(
        "GStreamer; Unable to .*|Warning: \".*\"|Error: \".*\"");
    const QString empty;
    const QByteArray garbage = HostileFiles::garbage();
    const QByteArray jpeg = HostileFiles::jpeg();

    const auto file = [](const char *row, const char *name, const QByteArray &content,
                         const QString &report, const QString &log) {
        QTest::newRow(row) << QString::fromLatin1(name) << content << report << log;
    };
    // Null contents stand for no file.
    file("a missing picture", "none.jpg", QByteArray(), noImage, imageLog);
    file("a missing video", "none.mp4", QByteArray(), QStringLiteral("Resource not found."),
         videoLog);
    file("a folder", ".", QByteArray(), noFormat, empty);
    file("an unsupported file", "notes.txt", "text", noFormat, empty);
    file("an empty picture", "empty.png", "", noImage, imageLog);
    file("an empty video", "empty.mp4", "", QStringLiteral("Stream contains no data."), videoLog);
    file("a picture of garbage", "garbage.jpg", garbage, noImage, imageLog);
    file("a video of garbage", "garbage.mp4", garbage,
         QStringLiteral("Could not determine type of stream."), videoLog);
    file("a huge picture without data", "header.png", HostileFiles::pngOfSide(100000, {}), noImage,
         imageLog);
    file("a huge picture with few data", "huge.png",
         HostileFiles::pngOfSide(100000, HostileFiles::fewPixels()), noImage, imageLog);
    file("the head of a picture", "head.jpg", jpeg.left(200), noImage, imageLog);
    // What there is of it is shown.
    file("half a picture", "half.jpg", jpeg.left(jpeg.size() / 2), empty, imageLog);
    file("a playlist without sense", "list.ospl", garbage, noJson, empty);
    file("a playlist of 10,000 missing pictures", "long.ospl", HostileFiles::playlist(10000),
         noImage, imageLog);
}

void tst_ProgramCommandLine::aHostileFileIsReportedAndTheProgramGoesOn()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QString, report);
    QFETCH(QString, logPattern);

    Player player;
    if (!content.isNull()) {
        QFile file(player.folder() + QLatin1Char('/') + name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), content.size());
    }
    player.start({QStringLiteral("--demo"), name}, player.folder());

    const QString invitation = QStringLiteral("Drop your file(s) here");
    const bool pictureComes = report.isEmpty();
    QVERIFY2(player.waitForState([&](const QJsonObject &state) {
        return frames(state) > 0
            && (pictureComes ? !shows(state, invitation) : shows(state, report));
    }),
             qPrintable(QString::fromUtf8(QJsonDocument(player.lastState()).toJson())));

    // It goes on drawing, and it can be left.
    const int framesBefore = frames(player.lastState());
    QVERIFY(player.waitForState(
        [&](const QJsonObject &state) { return frames(state) > framesBefore + 5; }));
    player.exit(0);
    QVERIFY(player.waitForEnd());
    QVERIFY(!player.crashed());
    QCOMPARE(player.exitCode(), 0);
    QCOMPARE(player.settings(), defaultSettings());
    QCOMPARE(linesWithout(player.errorOutput(), logPattern), QStringList());
}

QTEST_GUILESS_MAIN(tst_ProgramCommandLine)
#include "tst_ProgramCommandLine.moc"
