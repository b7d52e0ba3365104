#include "ClipWriter.h"
#include "FilmOnScreen.h"
#include "FilmServer.h"
#include "Garbage.h"
#include "Player.h"
#include "WarningsFail.h"

#include <QJsonArray>
#include <QTcpSocket>
#include <QtTest>

#include <unistd.h>
#include <memory>

Q_DECLARE_METATYPE(Clip)

namespace {

const QString kAwkwardName = QStringLiteral("Ein Film #1, 100% gr\u00f6\u00dfer.mkv");

/// A port of the loopback interface that nobody uses.
quint16 freePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

bool isListening(quint16 port)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    return socket.waitForConnected();
}

} // namespace

/// What the open dialog takes and a suffix says nothing about, one after the other in one run of
/// the real program.
class tst_VideoSources : public WarningsFail
{
    Q_OBJECT

private:
    void write(const QString &name, Clip::Codec codec = Clip::H264,
               const QStringList &options = {});
    QString path(const QString &name) const { return m_folder.filePath(name); }
    bool says(const QString &message);

    QTemporaryDir m_folder;
    QMap<QString, Clip> m_films;
    std::unique_ptr<FilmServer> m_server;
    std::unique_ptr<Player> m_player;
    QString m_next; ///< the good film after the last bad one

private slots:
    void initTestCase();
    void init();
    void aSourcePlays_data();
    void aSourcePlays();
    void aStreamOverUdpPlays();
    void rtspPlaysThroughThePlatformsMediaService();
    void whatCannotPlaySaysSoAndTheNextFilmPlays_data();
    void whatCannotPlaySaysSoAndTheNextFilmPlays();
    void cleanupTestCase();
};

void tst_VideoSources::write(const QString &name, Clip::Codec codec, const QStringList &options)
{
    Clip clip;
    clip.codec = codec;
    // Slow, so that on a busy machine too there is time to look before it starts again.
    clip.framesPerSecond = 10;
    clip.groupOfPictures = 10;
    clip.frames = 150;
    clip.firstNumber = 1000 * m_films.size();
    clip.options = options;
    QCOMPARE(ClipWriter::write(path(name), clip), QString());
    m_films.insert(name, clip);
}

void tst_VideoSources::initTestCase()
{
    m_server = std::make_unique<FilmServer>(m_folder.path());
    write(QStringLiteral("film.webm"), Clip::Vp9);
    write(QStringLiteral("film.mp4")); // its index stands at its end
    write(kAwkwardName);
    write(QStringLiteral("live.m3u8"), Clip::H264,
          {QStringLiteral("-hls_time"), QStringLiteral("1"), QStringLiteral("-hls_playlist_type"),
           QStringLiteral("vod")});
    write(QStringLiteral("cut.mkv"));
    QFile cut(path(QStringLiteral("cut.mkv")));
    QVERIFY(cut.resize(cut.size() / 2));
}

void tst_VideoSources::init()
{
    WarningsFail::init();
    if (m_player && !m_player->isRunning()) {
        m_player.reset();
        QFAIL("the program has ended by itself");
    }
    if (!m_player) {
        m_player = std::make_unique<Player>();
        FilmOnScreen::start(*m_player);
    }
}

/// Whether the words in red on the screen come to contain `message`.
bool tst_VideoSources::says(const QString &message)
{
    return QTest::qWaitFor([&] {
        const QJsonArray texts = m_player->state().value(QLatin1String("redTexts")).toArray();
        return texts.size() == 1 && texts.first().toString().contains(message);
    });
}

void tst_VideoSources::aSourcePlays_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("source");

    const auto row = [](const char *tag, const QString &name, const QString &source) {
        QTest::newRow(tag) << name << source;
    };
    const QString webm = QStringLiteral("film.webm");
    const QString mp4 = QStringLiteral("film.mp4");
    const QString live = QStringLiteral("live.m3u8");
    const QString cut = QStringLiteral("cut.mkv");
    row("a format without a known suffix", webm, path(webm));
    row("an awkward path", kAwkwardName, path(kAwkwardName));
    row("a file cut in the middle, up to there", cut, path(cut));
    row("an awkward address of a file", kAwkwardName,
        QString::fromLatin1(QUrl::fromLocalFile(path(kAwkwardName)).toEncoded()));
    row("HTTP", mp4, m_server->address(mp4));
    row("HTTP with an awkward name", kAwkwardName, m_server->address(kAwkwardName));
    row("HLS", live, m_server->address(live));
}

void tst_VideoSources::aSourcePlays()
{
    QFETCH(QString, name);
    QFETCH(QString, source);
    m_player->open(source);
    QCOMPARE(FilmOnScreen::watch(m_films.value(name)), QString());
}

void tst_VideoSources::aStreamOverUdpPlays()
{
    const QString target = QStringLiteral("127.0.0.1:%1").arg(freePort());
    const QString film = QStringLiteral("film.mp4");
    QProcess sender;
    sender.start(QStringLiteral("ffmpeg"),
                 QStringLiteral("-v error -re -i %1 -c copy -f mpegts udp://%2?pkt_size=1316")
                     .arg(path(film), target)
                     .split(QLatin1Char(' ')));
    QVERIFY(sender.waitForStarted());
    m_player->open(QStringLiteral("udp://@") + target);
    QCOMPARE(FilmOnScreen::watch(m_films.value(film)), QString());
    sender.kill();
    sender.waitForFinished();
}

// Debian builds libVLC without its client for RTSP.
void tst_VideoSources::rtspPlaysThroughThePlatformsMediaService()
{
    const QString film = QStringLiteral("film.mp4");
    const quint16 port = freePort();
    const QString address = QStringLiteral("rtsp://127.0.0.1:%1/film").arg(port);
    QProcess server;
    QString line = QStringLiteral("cvlc --intf dummy %1 --loop --sout-keep --sout #rtp{sdp=%2}")
                       .arg(path(film), address);
    if (geteuid() == 0) { // which VLC's own program refuses to be
        line.prepend(QStringLiteral("setpriv --reuid=65534 --regid=65534 --clear-groups "));
        QVERIFY(QFile::setPermissions(m_folder.path(),
                                      QFile::permissions(m_folder.path()) | QFile::ReadOther
                                          | QFile::ExeOther));
    }
    QStringList command = line.split(QLatin1Char(' '));
    server.start(command.takeFirst(), command);
    QVERIFY(server.waitForStarted());
    QTRY_VERIFY(isListening(port));

    Player player;
    player.setSetting(QStringLiteral("application/videoPlugin"), QStringLiteral("gst"));
    FilmOnScreen::start(player);
    player.open(address);
    QCOMPARE(FilmOnScreen::watch(m_films.value(film)), QString());
    QCOMPARE(FilmOnScreen::end(player), QStringLiteral("0"));
    server.terminate();
    QVERIFY(server.waitForFinished());
}

void tst_VideoSources::whatCannotPlaySaysSoAndTheNextFilmPlays_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("message");

    const auto file = [this](const QString &name, const QByteArray &content) {
        QFile written(path(name));
        if (written.open(QIODevice::WriteOnly))
            written.write(content);
        return path(name);
    };
    QFile whole(path(QStringLiteral("film.mp4")));
    QVERIFY(whole.open(QIODevice::ReadOnly));
    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("folder.mp4")));
    const QString sound = path(QStringLiteral("sound.mp4"));
    QCOMPARE(QProcess::execute(QStringLiteral("ffmpeg"),
                               QStringLiteral("-v error -y -f lavfi -i sine=duration=3 %1")
                                   .arg(sound)
                                   .split(QLatin1Char(' '))),
             0);

    // What stays of the message before must not pass for the next: neighbours differ.
    const QString noVideo = QStringLiteral("There is no video in this media");
    const auto row = [](const char *tag, const QString &source, const QString &message) {
        QTest::newRow(tag) << source << message;
    };
    row("a missing file", path(QStringLiteral("none.mp4")), QStringLiteral("none.mp4"));
    row("random bytes", file(QStringLiteral("random.mp4"), garbage(5000)), noVideo);
    row("no bytes", file(QStringLiteral("empty.mp4"), {}), QStringLiteral("empty.mp4"));
    row("a folder", path(QStringLiteral("folder.mp4")), noVideo);
    row("HTTP without the file", m_server->address(QStringLiteral("gone.mp4")),
        QStringLiteral("gone.mp4"));
    row("a film without its end, where its index stood",
        file(QStringLiteral("half.mp4"), whole.read(whole.size() / 2)), noVideo);
    row("HTTP without a server", QStringLiteral("http://127.0.0.1:9/film.mp4"),
        QStringLiteral("http://127.0.0.1:9/film.mp4"));
    row("only sound", sound, noVideo);
    row("RTSP without a server", QStringLiteral("rtsp://127.0.0.1:9/film"),
        QStringLiteral("rtsp://127.0.0.1:9/film"));
}

void tst_VideoSources::whatCannotPlaySaysSoAndTheNextFilmPlays()
{
    QFETCH(QString, source);
    QFETCH(QString, message);
    m_player->open(source);
    QVERIFY(says(message));
    // Another than the last, whose picture may stand a moment longer.
    m_next = m_next == kAwkwardName ? QStringLiteral("film.mp4") : kAwkwardName;
    m_player->open(path(m_next));
    QCOMPARE(FilmOnScreen::watch(m_films.value(m_next)), QString());
}

void tst_VideoSources::cleanupTestCase()
{
    QVERIFY(m_player && m_player->isRunning());
    QCOMPARE(FilmOnScreen::end(*m_player), QStringLiteral("0"));
}

QTEST_MAIN(tst_VideoSources)
#include "tst_VideoSources.moc"
