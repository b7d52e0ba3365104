#include "FakeMediaLoader.h"
#include "GlobalObjectFixture.h"

#include "WarningsFail.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString kDuration = QStringLiteral("application/playlist/imageDisplayDuration");
constexpr int kShortMs = 20;
/// Long enough for a wrongly running slide timer to be seen.
constexpr int kSeveralSlidesMs = 5 * kShortMs;

} // namespace

/// What is played: single sources, playlists, playlist files, slides.
class tst_OrbGlobalObjectPlaylist : public WarningsFail
{
    Q_OBJECT

private slots:
    void theFirstSourceOpens_data();
    void theFirstSourceOpens();
    void logosOfAPlaylistFileStayKnown();
    void aBadPlaylistFileIsReported_data();
    void aBadPlaylistFileIsReported();
    void steppingGoesRound();
    void anIndexBeyondTheListOpensNothing_data();
    void anIndexBeyondTheListOpensNothing();
    void namesAreWithoutTheirSuffix_data();
    void namesAreWithoutTheirSuffix();
    void anyOpeningStopsTheSlides_data();
    void anyOpeningStopsTheSlides();
    void aDurationThatIsNoneDoesNotRace_data();
    void aDurationThatIsNoneDoesNotRace();

private:
    QUrl write(const QString &name, const QByteArray &content);

    QTemporaryDir m_folder;
};

QUrl tst_OrbGlobalObjectPlaylist::write(const QString &name, const QByteArray &content)
{
    QFile file(m_folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("Cannot write %s", qPrintable(file.fileName()));
    return QUrl::fromLocalFile(file.fileName());
}

void tst_OrbGlobalObjectPlaylist::theFirstSourceOpens_data()
{
    QTest::addColumn<QList<QUrl>>("sources");
    QTest::addColumn<QUrl>("opened");
    QTest::addColumn<bool>("list"); ///< whose entries are always checked
    const QByteArray two = R"([{"media": "/v/a.jpg"}, {"media": "/v/b.jpg"}])";
    const QUrl capitals = write(QStringLiteral("list.OSPL"), two);
    const QUrl plain = write(QStringLiteral("list.ospl"), two);
    const QUrl one = write(QStringLiteral("one.ospl"), R"([{"media": "/v/a.jpg"}])");
    const QUrl server(QStringLiteral("http://host/list.ospl"));
    const QUrl first(QStringLiteral("file:///v/a.jpg"));
    QTest::newRow("one source") << urls({"http://host/c.mp4"})
                                << QUrl(QStringLiteral("http://host/c.mp4")) << false;
    QTest::newRow("two sources") << urls({"file:///v/a.jpg", "file:///v/b.jpg"}) << first << true;
    QTest::newRow("a playlist file") << QList<QUrl>{plain} << first << true;
    QTest::newRow("a playlist file of one entry") << QList<QUrl>{one} << first << false;
    QTest::newRow("in capitals") << QList<QUrl>{capitals} << capitals << false;
    QTest::newRow("among others") << QList<QUrl>{plain, capitals} << plain << true;
    QTest::newRow("on a server") << QList<QUrl>{server} << server << false;
}

void tst_OrbGlobalObjectPlaylist::theFirstSourceOpens()
{
    QFETCH(QList<QUrl>, sources);
    QFETCH(QUrl, opened);
    QFETCH(bool, list);
    GlobalObjectFixture f;
    FakeMediaLoader loader(&f.object);
    f.object.openFiles(urls({"file:///x.jpg", "file:///y.jpg", "file:///z.jpg"}));
    for (const bool checkFile : {true, false}) {
        f.object.setYaw(0.5F);
        loader.calls.clear();
        f.object.openFiles(sources, checkFile);
        f.object.openFiles(QList<QUrl>()); // changes nothing
        QCOMPARE(loader.calls.size(), 1);
        const FakeMediaLoader::Call call = loader.calls.first();
        QCOMPARE(call.source, opened);
        QCOMPARE(call.checkFile, checkFile || list);
        QCOMPARE(call.clearPlayList, false);
        QCOMPARE(call.error, QString());
        QCOMPARE(call.yaw, 0.0F); // straight ahead, already when it opens
        QCOMPARE(f.object.playListIndex(), list ? 0 : -1);
        QCOMPARE(f.object.playListIsEmpty(), !list);
        QCOMPARE(f.object.getPlayListNames().size(), list ? 2 : 0);
    }
}

void tst_OrbGlobalObjectPlaylist::logosOfAPlaylistFileStayKnown()
{
    const QUrl file = write(QStringLiteral("day 1.ospl"),
                            R"([{"media": "a.jpg", "logo": "a.png"}])");
    GlobalObjectFixture f;
    f.object.openFile(file.toLocalFile());
    f.object.openFiles(urls({"file:///x.jpg"}));
    const QUrl media = QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("a.jpg")));
    const QUrl logo = QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("a.png")));
    QCOMPARE(f.object.getDynamicLogo(media), logo);
    QCOMPARE(f.object.getDynamicLogo(QUrl(QStringLiteral("file:///elsewhere.jpg"))), QUrl());
}

void tst_OrbGlobalObjectPlaylist::aBadPlaylistFileIsReported_data()
{
    QTest::addColumn<QByteArray>("content"); ///< null: no file
    QTest::addColumn<QString>("error");
    QTest::newRow("missing") << QByteArray() << QStringLiteral("Error : cannot open file .ospl");
    QTest::newRow("no JSON") << QByteArray("a.mp4") << QStringLiteral("Error : cannot parse json");
    QTest::newRow("no array") << QByteArray("{}") << QStringLiteral("Error : json is not an array");
    QTest::newRow("empty") << QByteArray("[]") << QStringLiteral("Error : json is empty");
}

void tst_OrbGlobalObjectPlaylist::aBadPlaylistFileIsReported()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, error);
    const QString file = content.isNull()
        ? QStringLiteral("/missing.ospl")
        : write(QStringLiteral("bad.ospl"), content).toLocalFile();
    GlobalObjectFixture f;
    FakeMediaLoader loader(&f.object);
    f.object.openFiles(urls({"file:///a.jpg", "file:///b.jpg"}));
    f.object.setYaw(0.5F);
    loader.calls.clear();
    f.object.openFile(file, false);
    QCOMPARE(loader.calls.size(), 1);
    QVERIFY(loader.calls.first().source.isEmpty());
    QCOMPARE(loader.calls.first().checkFile, false);
    QCOMPARE(loader.calls.first().error, error);
    QVERIFY(f.object.playListIsEmpty());
    QCOMPARE(f.object.yaw(), 0.5F);
}

void tst_OrbGlobalObjectPlaylist::steppingGoesRound()
{
    GlobalObjectFixture f({{kDuration, kShortMs}});
    FakeMediaLoader loader(&f.object);
    f.object.openFiles(urls({"file:///a.jpg", "file:///b.jpg", "file:///c.jpg"}));
    f.object.playListSetPrevious();
    f.object.playListSetPrevious();
    f.object.playListSetNext();
    f.object.playListSetNext();
    f.object.startTimerNextImage();
    QTRY_COMPARE(f.object.playListIndex(), 1);
    QTest::qWait(kSeveralSlidesMs); // the next slide waits for its image to be shown
    QStringList opened;
    for (const FakeMediaLoader::Call &call : qAsConst(loader.calls))
        opened += call.source.fileName();
    QCOMPARE(opened.join(QLatin1Char(' ')), QStringLiteral("a.jpg c.jpg b.jpg c.jpg a.jpg b.jpg"));
}

void tst_OrbGlobalObjectPlaylist::anIndexBeyondTheListOpensNothing_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("the one after the last") << 2;
    QTest::newRow("the one before the first") << -1;
    QTest::newRow("far before") << -1000000;
}

void tst_OrbGlobalObjectPlaylist::anIndexBeyondTheListOpensNothing()
{
    QFETCH(int, index);
    GlobalObjectFixture f;
    FakeMediaLoader loader(&f.object);
    f.object.openFiles(urls({"file:///a.jpg", "file:///b.jpg"}));
    loader.calls.clear();
    f.object.setPlayListIndex(index);
    QVERIFY(loader.calls.isEmpty());
    f.object.setPlayListIndex(1);
    QCOMPARE(loader.calls.size(), 1);
}

void tst_OrbGlobalObjectPlaylist::namesAreWithoutTheirSuffix_data()
{
    QTest::addColumn<QString>("name");
    const auto row = [](const char *url, const char *name) {
        QTest::newRow(url) << QString::fromUtf8(name);
    };
    row("file:///v/a.b.c.jpg", "a.b.c");
    row("file:///v.x/a", "a");
    row("file:///v/.jpg", "");
    row("file:///v/gr%C3%B6%C3%9Fe%20%23%31.jpg", "größe #1");
    row("http://host/a.mp4?x=y.z", "a");
    row("udp://@239.0.0.1:1234", "");
}

void tst_OrbGlobalObjectPlaylist::namesAreWithoutTheirSuffix()
{
    QFETCH(QString, name);
    GlobalObjectFixture f;
    f.object.openFiles(urls({QTest::currentDataTag(), "file:///last.jpg"}));
    const QStringList expected{name, QStringLiteral("last")};
    QCOMPARE(f.object.getPlayListNames(), expected);
}

void tst_OrbGlobalObjectPlaylist::anyOpeningStopsTheSlides_data()
{
    QTest::addColumn<QList<QUrl>>("opened");
    QTest::newRow("another source") << urls({"file:///c.jpg"});
    QTest::newRow("another playlist") << urls({"file:///c.jpg", "file:///d.jpg"});
    QTest::newRow("a bad playlist file") << urls({"file:///missing.ospl"});
    QTest::newRow("clearing") << QList<QUrl>();
}

void tst_OrbGlobalObjectPlaylist::anyOpeningStopsTheSlides()
{
    QFETCH(QList<QUrl>, opened);
    GlobalObjectFixture f({{kDuration, kShortMs}});
    FakeMediaLoader loader(&f.object);
    f.object.openFiles(urls({"file:///a.jpg", "file:///b.jpg"}));
    f.object.startTimerNextImage();
    if (opened.isEmpty())
        f.object.clearPlayList();
    else
        f.object.openFiles(opened);
    const int calls = loader.calls.size();
    const int index = f.object.playListIndex();
    QTest::qWait(kSeveralSlidesMs);
    QCOMPARE(loader.calls.size(), calls);
    QCOMPARE(f.object.playListIndex(), index);
}

void tst_OrbGlobalObjectPlaylist::aDurationThatIsNoneDoesNotRace_data()
{
    QTest::addColumn<QVariant>("duration");
    QTest::newRow("zero") << QVariant(0);
    QTest::newRow("negative") << QVariant(-5);
    QTest::newRow("a word") << QVariant(QStringLiteral("long"));
    QTest::newRow("beyond whole numbers") << QVariant(QStringLiteral("99999999999"));
}

void tst_OrbGlobalObjectPlaylist::aDurationThatIsNoneDoesNotRace()
{
    QFETCH(QVariant, duration);
    GlobalObjectFixture f({{kDuration, duration}});
    f.object.openFiles(urls({"file:///a.jpg", "file:///b.jpg"}));
    f.object.startTimerNextImage();
    QTest::qWait(kSeveralSlidesMs);
    QCOMPARE(f.object.playListIndex(), 0);
}

QTEST_MAIN(tst_OrbGlobalObjectPlaylist)
#include "tst_OrbGlobalObjectPlaylist.moc"
