#include "FrameCode.h"
#include "Garbage.h"
#include "Player.h"
#include "WarningsFail.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
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

int frames(const QJsonObject &state)
{
    return state.value(QLatin1String("frames")).toInt();
}

/// A colour of the screen where no message stands.
QColor colourOnScreen()
{
    return QGuiApplication::primaryScreen()->grabWindow(0, 40, 40, 1, 1).toImage().pixelColor(0, 0);
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
    void withoutOpenGlTheProgramSaysSo();
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

    const auto row = [](const char *arguments, const char *message) {
        QTest::newRow(arguments) << QString::fromLatin1(arguments).split(QLatin1Char(' '))
                                 << QString::fromLatin1(message);
    };
    row("--nonsense", "Unknown option 'nonsense'.");
    row("-d -x /a.jpg", "Unknown option 'x'.");
    row("--help", "Unknown option 'help'.");
    row("--version", "Unknown option 'version'.");
    row("--udp", "Missing value after '--udp'.");
    row("--demo=yes", "Unexpected value after '--demo'.");
}

void tst_ProgramCommandLine::aWrongOptionEndsTheProgramWithAMessage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);

    Player player;
    player.start(arguments);
    QCOMPARE(player.ending(), QStringLiteral("1\norbixsight: ") + message);
    QCOMPARE(player.log(QStringLiteral("start")).size(), 1);
    QCOMPARE(player.log(QStringLiteral("frame")).size(), 0);
}

void tst_ProgramCommandLine::withoutOpenGlTheProgramSaysSo()
{
    Player player;
    player.setEnvironment(QStringLiteral("QT_XCB_GL_INTEGRATION"), QStringLiteral("none"));
    player.start({});
    QVERIFY(player.waitForState([](const QJsonObject &state) {
        return Player::shows(state, QStringLiteral("OpenGL 2.0 minimum is required."));
    }));
    player.order("dismiss");
    QCOMPARE(player.ending(QStringLiteral(".*")), QStringLiteral("0")); // Qt has its say, too
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
        return frames(state) > 0 && (demo || Player::shows(state, about));
    }));
    QVERIFY(Player::shows(player.lastState(), QStringLiteral("Drop your file(s) here")));
    QCOMPARE(player.lastState().value(QLatin1String("fullScreen")).toBool(), demo);
    if (demo) { // A popup would come with a veil over the picture.
        thenTheNextPictureShows(player);
        QVERIFY(!Player::shows(player.state(), about));
    }

    player.close();
    QCOMPARE(player.ending(), QStringLiteral("0"));
    QCOMPARE(player.settings(), defaultSettings());
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
    const QByteArray noSense = garbage(5000);
    QByteArray whole;
    QBuffer buffer(&whole);
    QVERIFY(FrameCode::frame({512, 256}, 0).save(&buffer, "jpg"));
    const QByteArray entry = R"({"media": "none.jpg", "logo": "none.png"},)";

    const auto row = [](const char *name, const char *file, const QByteArray &content,
                        const QString &report, const QString &log = {}) {
        QTest::newRow(name) << QString::fromLatin1(file) << content << report << log;
    };
    // Null contents stand for no file.
    row("a missing video", "none.mp4", {}, QStringLiteral("Cannot play the media 'file://"));
    row("a folder", ".", {}, noFormat);
    row("a picture of garbage", "garbage.jpg", noSense, noImage, imageLog);
    row("a video of garbage", "garbage.mp4", noSense,
        QStringLiteral("There is no video in this media"));
    row("a huge picture with few data", "huge.ppm", "P6 100000 100000 255\n" + noSense, noImage,
        imageLog);
    row("the head of a picture", "head.jpg", whole.left(200), noImage, imageLog);
    // What there is of it is shown.
    row("half a picture", "half.jpg", whole.left(whole.size() / 2), {}, imageLog);
    row("a playlist without sense", "list.ospl", noSense, noJson);
    row("a playlist of 10,000 missing pictures", "long.ospl",
        '[' + entry.repeated(9999) + entry.chopped(1) + ']', noImage, imageLog);
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
            && (pictureComes ? !Player::shows(state, invitation) : Player::shows(state, report));
    }),
             qPrintable(QString::fromUtf8(QJsonDocument(player.lastState()).toJson())));

    thenTheNextPictureShows(player);
    player.exit(0);
    QCOMPARE(player.ending(logPattern), QStringLiteral("0"));
    QCOMPARE(player.settings(), defaultSettings());
}

QTEST_MAIN(tst_ProgramCommandLine)
#include "tst_ProgramCommandLine.moc"
