#include "FakeMediaLoader.h"
#include "GlobalObjectFixture.h"

#include "WarningsFail.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

/// What is played: single sources, playlists, playlist files.
class tst_OrbGlobalObjectPlaylist : public WarningsFail
{
    Q_OBJECT

private slots:
    void nothingToOpenChangesNothing();
    void oneSourceIsNoPlaylist_data();
    void oneSourceIsNoPlaylist();
    void severalSourcesAreAPlaylist();
    void aNewSourceStartsLookingStraightAhead();
    void aPlaylistFileStandsForItsEntries();
    void aPlaylistFileOfOneEntryOpensIt();
    void onlyThePlainSuffixIsAPlaylistFile_data();
    void onlyThePlainSuffixIsAPlaylistFile();
    void aBadPlaylistFileIsReported_data();
    void aBadPlaylistFileIsReported();
    void steppingGoesRound();
    void anIndexBeyondTheListOpensNothing_data();
    void anIndexBeyondTheListOpensNothing();
    void namesAreWithoutTheirSuffix_data();
    void namesAreWithoutTheirSuffix();

private:
    QString write(const QString &name, const QByteArray &content);

    QTemporaryDir m_folder;
};

QString tst_OrbGlobalObjectPlaylist::write(const QString &name, const QByteArray &content)
{
    QFile file(m_folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("Cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}

void tst_OrbGlobalObjectPlaylist::nothingToOpenChangesNothing()
{
    GlobalObjectFixture f;
    FakeMediaLoader loader(&f.object);
    f.object.openFiles(urls({"file:///a.jpg", "file:///b.jpg"}));
    f.object.setPlayListIndex(1);
    f.object.setYaw(0.5F);
    loader.calls.clear();
    QSignalSpy indexChanged(&f.object, &OrbGlobalObject::playListIndexChanged);

    f.object.openFiles(QList<QUrl>());
    f.object.openFiles(QList<QString>());
    QVERIFY(loader.calls.isEmpty());
    QCOMPARE(indexChanged.count(), 0);
    QCOMPARE(f.object.playListIndex(), 1);
    QCOMPARE(f.object.getPlayListNames().size(), 2);
    QCOMPARE(f.object.yaw(), 0.5F);
}

void tst_OrbGlobalObjectPlaylist::oneSourceIsNoPlaylist_data()
{
    QTest::addColumn<bool>("checkFile");
    QTest::newRow("checked") << true;
    QTest::newRow("not checked") << false;
}

void tst_OrbGlobalObjectPlaylist::oneSourceIsNoPlaylist()
{
    QFETCH(bool, checkFile);
    GlobalObjectFixture f;
    FakeMediaLoader loader(&f.object);
    f.object.openFiles(urls({"file:///a.jpg", "file:///b.jpg"}));
    loader.calls.clear();

    f.object.openFiles(urls({"http://host/c.mp4"}), checkFile);
    QCOMPARE(loader.calls.size(), 1);
    QCOMPARE(loader.calls.first().source, QUrl(QStringLiteral("http://host/c.mp4")));
    QCOMPARE(loader.calls.first().checkFile, checkFile);
    QCOMPARE(loader.calls.first().clearPlayList, false);
    QCOMPARE(loader.calls.first().error, QString());
    QCOMPARE(f.object.playListIndex(), -1);
    QVERIFY(f.object.playListIsEmpty());
    QVERIFY(f.object.getPlayListNames().isEmpty());
}

void tst_OrbGlobalObjectPlaylist::severalSourcesAreAPlaylist()
{
    GlobalObjectFixture f;
    FakeMediaLoader loader(&f.object);
    QVERIFY(f.object.playListIsEmpty());
    f.object.openFiles(urls({"file:///a.jpg", "file:///b.jpg"}), false);
    // The entries of a playlist are always checked.
    QCOMPARE(loader.calls.size(), 1);
    QCOMPARE(loader.calls.first().source, QUrl(QStringLiteral("file:///a.jpg")));
    QCOMPARE(loader.calls.first().checkFile, true);
    QCOMPARE(loader.calls.first().clearPlayList, false);
    QCOMPARE(f.object.playListIndex(), 0);
    QVERIFY(!f.object.playListIsEmpty());
}

void tst_OrbGlobalObjectPlaylist::aNewSourceStartsLookingStraightAhead()
{
    GlobalObjectFixture f;
    FakeMediaLoader loader(&f.object);
    f.object.setYaw(0.5F);
    f.object.setPitch(0.25F);
    f.object.setRoll(1);
    f.object.setRotationMatrix(QMatrix4x4(0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1), false);
    f.object.openFiles(urls({"file:///a.jpg"}));
    QVERIFY(f.object.yaw() == 0 && f.object.pitch() == 0 && f.object.roll() == 0);
    QVERIFY(f.object.rotationMatrix() == QMatrix4x4());
    QCOMPARE(loader.calls.size(), 1);
    QCOMPARE(loader.calls.first().yaw, 0.0F); // already when it opens
}

void tst_OrbGlobalObjectPlaylist::aPlaylistFileStandsForItsEntries()
{
    const QString file = write(QStringLiteral("day 1.ospl"), R"([
        {"media": "a.jpg", "logo": "a.png"}, {"media": "/v/b.mp4"}, {"media": "c.mp4"}])");
    GlobalObjectFixture f;
    FakeMediaLoader loader(&f.object);
    f.object.openFile(file, false);
    const QUrl first = QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("a.jpg")));
    QCOMPARE(loader.calls.size(), 1);
    QCOMPARE(loader.calls.first().source, first);
    QCOMPARE(loader.calls.first().checkFile, true);
    QCOMPARE(f.object.getPlayListNames().join(QLatin1Char(' ')), QStringLiteral("a b c"));
    const QUrl logo = QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("a.png")));
    QCOMPARE(f.object.getDynamicLogo(first), logo);
    QCOMPARE(f.object.getDynamicLogo(QUrl(QStringLiteral("file:///elsewhere.jpg"))), QUrl());

    // Logos stay known.
    f.object.openFiles(urls({"file:///x.jpg"}));
    QCOMPARE(f.object.getDynamicLogo(first), logo);
}

void tst_OrbGlobalObjectPlaylist::aPlaylistFileOfOneEntryOpensIt()
{
    const QString file = write(QStringLiteral("one.ospl"),
                               R"([{"media": "/v/a.jpg", "logo": "/v/a.png"}])");
    GlobalObjectFixture f;
    FakeMediaLoader loader(&f.object);
    f.object.openFile(file, false);
    QCOMPARE(loader.calls.size(), 1);
    QCOMPARE(loader.calls.first().source, QUrl(QStringLiteral("file:///v/a.jpg")));
    QCOMPARE(loader.calls.first().checkFile, false);
    QCOMPARE(f.object.playListIndex(), -1);
    QVERIFY(f.object.playListIsEmpty());
    QCOMPARE(f.object.getDynamicLogo(loader.calls.first().source),
             QUrl(QStringLiteral("file:///v/a.png")));
}

void tst_OrbGlobalObjectPlaylist::onlyThePlainSuffixIsAPlaylistFile_data()
{
    QTest::addColumn<QList<QUrl>>("sources");
    const QByteArray list = R"([{"media":"a.jpg"},{"media":"b.jpg"}])";
    const QUrl capitals = QUrl::fromLocalFile(write(QStringLiteral("list.OSPL"), list));
    const QUrl plain = QUrl::fromLocalFile(write(QStringLiteral("list.ospl"), list));
    QTest::newRow("in capitals") << QList<QUrl>{capitals};
    QTest::newRow("with other files") << QList<QUrl>{plain, capitals};
    QTest::newRow("on a server") << urls({"http://host/list.ospl"});
}

void tst_OrbGlobalObjectPlaylist::onlyThePlainSuffixIsAPlaylistFile()
{
    QFETCH(QList<QUrl>, sources);
    GlobalObjectFixture f;
    FakeMediaLoader loader(&f.object);
    f.object.openFiles(sources);
    QCOMPARE(loader.calls.size(), 1);
    QCOMPARE(loader.calls.first().source, sources.first());
    QCOMPARE(loader.calls.first().error, QString());
}

void tst_OrbGlobalObjectPlaylist::aBadPlaylistFileIsReported_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("error");
    QTest::newRow("missing") << m_folder.filePath(QStringLiteral("missing.ospl"))
                             << QStringLiteral("Error : cannot open file .ospl");
    QTest::newRow("no JSON") << write(QStringLiteral("no-json.ospl"), "film.mp4")
                             << QStringLiteral("Error : cannot parse json");
    QTest::newRow("no array") << write(QStringLiteral("object.ospl"), R"({"media":"a.jpg"})")
                              << QStringLiteral("Error : json is not an array");
    QTest::newRow("empty") << write(QStringLiteral("empty.ospl"), "[]")
                           << QStringLiteral("Error : json is empty");
}

void tst_OrbGlobalObjectPlaylist::aBadPlaylistFileIsReported()
{
    QFETCH(QString, file);
    QFETCH(QString, error);
    GlobalObjectFixture f;
    FakeMediaLoader loader(&f.object);
    f.object.openFiles(urls({"file:///a.jpg", "file:///b.jpg"}));
    f.object.setYaw(0.5F);
    for (bool checkFile : {true, false}) {
        loader.calls.clear();
        f.object.openFile(file, checkFile);
        QCOMPARE(loader.calls.size(), 1);
        QVERIFY(loader.calls.first().source.isEmpty());
        QCOMPARE(loader.calls.first().checkFile, checkFile);
        QCOMPARE(loader.calls.first().clearPlayList, false);
        QCOMPARE(loader.calls.first().error, error);
    }
    QVERIFY(f.object.playListIsEmpty());
    QCOMPARE(f.object.playListIndex(), -1);
    QCOMPARE(f.object.yaw(), 0.5F);
}

void tst_OrbGlobalObjectPlaylist::steppingGoesRound()
{
    GlobalObjectFixture f;
    FakeMediaLoader loader(&f.object);
    f.object.openFiles(urls({"file:///a.jpg", "file:///b.jpg", "file:///c.jpg"}));
    QSignalSpy indexChanged(&f.object, &OrbGlobalObject::playListIndexChanged);
    f.object.playListSetPrevious();
    f.object.playListSetPrevious();
    f.object.playListSetNext();
    f.object.playListSetNext();
    f.object.playListSetNext();
    QStringList opened;
    for (const FakeMediaLoader::Call &call : qAsConst(loader.calls)) {
        opened += call.source.fileName();
        QVERIFY(call.checkFile && !call.clearPlayList && call.error.isEmpty());
    }
    QCOMPARE(opened.join(QLatin1Char(' ')), QStringLiteral("a.jpg c.jpg b.jpg c.jpg a.jpg b.jpg"));
    QCOMPARE(indexChanged.count(), 5);
    QCOMPARE(f.object.playListIndex(), 1);
}

void tst_OrbGlobalObjectPlaylist::anIndexBeyondTheListOpensNothing_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("the one after the last") << 2;
    QTest::newRow("far beyond") << 1000000;
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
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *url, const char *name) {
        QTest::newRow(url) << QString::fromUtf8(url) << QString::fromUtf8(name);
    };
    row("file:///v/a.jpg", "a");
    row("file:///v/a.b.c.jpg", "a.b.c");
    row("file:///v.x/a", "a");
    row("file:///v/.jpg", "");
    row("file:///v/a.", "a");
    row("file:///v/gr%C3%B6%C3%9Fe%20%23%31.jpg", "größe #1");
    row("http://host/a.mp4?x=y.z", "a");
    row("udp://@239.0.0.1:1234", "");
}

void tst_OrbGlobalObjectPlaylist::namesAreWithoutTheirSuffix()
{
    QFETCH(QString, url);
    QFETCH(QString, name);
    GlobalObjectFixture f;
    f.object.openFiles(QList<QUrl>{QUrl(url), QUrl(QStringLiteral("file:///last.jpg"))});
    const QStringList expected{name, QStringLiteral("last")};
    QCOMPARE(f.object.getPlayListNames(), expected);
}

QTEST_MAIN(tst_OrbGlobalObjectPlaylist)
#include "tst_OrbGlobalObjectPlaylist.moc"
