#include "HostileFiles.h"
#include "Player.h"
#include "WarningsFail.h"

#include <QGuiApplication>
#include <QImage>
#include <QJsonArray>
#include <QPixmap>
#include <QScreen>
#include <QtTest>

#include <algorithm>

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

/// Whether a text that begins with `text` can be seen.
bool shows(const QJsonObject &state, const QString &text)
{
    const QJsonArray texts = state.value(QLatin1String("texts")).toArray();
    return std::any_of(texts.begin(), texts.end(), [&text](const QJsonValue &shown) {
        return shown.toString().startsWith(text);
    });
}

int frames(const QJsonObject &state)
{
    return state.value(QLatin1String("frames")).toInt();
}

/// A colour of the screen where no message stands.
QColor colourOnScreen()
{
    return QGuiApplication::primaryScreen()->grabWindow(0, 40, 40, 1, 1).toImage().pixelColor(0, 0);
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

private:
    void thenTheNextPictureShows(Player &player);

private slots:
    void aWrongOptionEndsTheProgramWithAMessage_data();
    void aWrongOptionEndsTheProgramWithAMessage();
    void theDemoFillsTheScreenWithoutAPopup_data();
    void theDemoFillsTheScreenWithoutAPopup();
    void aHostileFileIsReportedAndTheProgramGoesOn_data();
    void aHostileFileIsReportedAndTheProgramGoesOn();
};

void tst_ProgramCommandLine::thenTheNextPictureShows(Player &player)
{
    const QString next = player.folder() + QStringLiteral("/red.png");
    QImage red(64, 32, QImage::Format_RGB32);
    red.fill(Qt::red);
    QVERIFY(red.save(next));
    player.open(next);
    QTRY_COMPARE(colourOnScreen(), QColor(Qt::red));
}

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
        return frames(state) > 0 && (demo || shows(state, about));
    }));
    QVERIFY(shows(player.lastState(), QStringLiteral("Drop your file(s) here")));
    QCOMPARE(player.lastState().value(QLatin1String("fullScreen")).toBool(), demo);
    if (demo) { // A popup would come with a veil over the picture.
        thenTheNextPictureShows(player);
        QVERIFY(!shows(player.state(), about));
    }

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
    const QString empty;
    const QByteArray garbage = HostileFiles::garbage();
    const QByteArray jpeg = HostileFiles::jpeg();

    const auto file = [](const char *row, const char *name, const QByteArray &content,
                         const QString &report, const QString &log) {
        QTest::newRow(row) << QString::fromLatin1(name) << content << report << log;
    };
    // Null contents stand for no file.
    file("a missing video", "none.mp4", QByteArray(),
         QStringLiteral("Cannot play the media 'file://"), empty);
    file("a folder", ".", QByteArray(), noFormat, empty);
    file("a picture of garbage", "garbage.jpg", garbage, noImage, imageLog);
    file("a video of garbage", "garbage.mp4", garbage,
         QStringLiteral("There is no video in this media"), empty);
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

    thenTheNextPictureShows(player);
    player.exit(0);
    QVERIFY(player.waitForEnd());
    QVERIFY(!player.crashed());
    QCOMPARE(player.exitCode(), 0);
    QCOMPARE(player.settings(), defaultSettings());
    QCOMPARE(linesWithout(player.errorOutput(), logPattern), QStringList());
}

QTEST_MAIN(tst_ProgramCommandLine)
#include "tst_ProgramCommandLine.moc"
