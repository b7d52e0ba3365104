#include "ClipWriter.h"
#include "FilmOnScreen.h"
#include "Player.h"
#include "WarningsFail.h"

#include <QtTest>

Q_DECLARE_METATYPE(Clip)

namespace {

constexpr int kFramesPerSecond = 10;

/// Slow, so that on a busy machine too there is time to look before it starts again.
Clip clip(Clip::Codec codec, int seconds = 12)
{
    Clip film;
    film.codec = codec;
    film.framesPerSecond = kFramesPerSecond;
    film.frames = seconds * kFramesPerSecond;
    return film;
}

} // namespace

/// Films that come with the start of the real program.
class tst_Video : public WarningsFail
{
    Q_OBJECT

private slots:
    void aFilmOfTheCommandLinePlays_data();
    void aFilmOfTheCommandLinePlays();
    void aPlaylistStepsOnAndStartsAgain();
};

void tst_Video::aFilmOfTheCommandLinePlays_data()
{
    QTest::addColumn<Clip>("film");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariantMap>("settings");

    const QString transfer = QStringLiteral("vlc/textureTransfer");
    const QString backend = QStringLiteral("application/videoPlugin");
    const QVariantMap none;
    QTest::newRow("H.264 in MP4") << clip(Clip::H264) << "film.mp4" << none;
    QTest::newRow("HEVC in MP4") << clip(Clip::Hevc) << "film.mp4" << none;
    QTest::newRow("VP9 in Matroska") << clip(Clip::Vp9) << "film.mkv" << none;
    QTest::newRow("through a pixel buffer")
        << clip(Clip::H264) << "film.mkv" << QVariantMap{{transfer, 2}};
    QTest::newRow("copied by the processor")
        << clip(Clip::H264) << "film.mkv" << QVariantMap{{transfer, 3}};
    QTest::newRow("through the platform's media service")
        << clip(Clip::H264) << "film.mp4" << QVariantMap{{backend, QStringLiteral("gst")}};

    Clip large = clip(Clip::H264);
    large.size = {1920, 960};
    large.toneHz = 440;
    QTest::newRow("larger and with sound") << large << "film.mp4" << none;
}

void tst_Video::aFilmOfTheCommandLinePlays()
{
    QFETCH(Clip, film);
    QFETCH(QString, name);
    QFETCH(QVariantMap, settings);

    Player player;
    const QString path = player.folder() + QLatin1Char('/') + name;
    QCOMPARE(ClipWriter::write(path, film), QString());
    for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting)
        player.setSetting(setting.key(), setting.value());
    FilmOnScreen::start(player, {path});
    QCOMPARE(FilmOnScreen::watch(film), QString());
    QCOMPARE(FilmOnScreen::end(player), QStringLiteral("0"));
}

void tst_Video::aPlaylistStepsOnAndStartsAgain()
{
    Player player;
    QVector<Clip> clips;
    for (const QString &name : {QStringLiteral("a.mp4"), QStringLiteral("b.mkv")}) {
        Clip second = clip(Clip::H264, 1);
        second.firstNumber = 1000 * clips.size();
        QCOMPARE(ClipWriter::write(player.folder() + QLatin1Char('/') + name, second), QString());
        clips.append(second);
    }
    QFile list(player.folder() + QStringLiteral("/list.ospl"));
    QVERIFY(list.open(QIODevice::WriteOnly));
    list.write(R"([{"media": "a.mp4"}, {"media": "b.mkv"}])");
    list.close();

    FilmOnScreen::start(player, {list.fileName()});
    for (const int index : {0, 1, 0})
        QCOMPARE(FilmOnScreen::watch(clips.at(index)), QString());
    QCOMPARE(FilmOnScreen::end(player), QStringLiteral("0"));
}

QTEST_MAIN(tst_Video)
#include "tst_Video.moc"
