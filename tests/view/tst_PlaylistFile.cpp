#include "PlaylistFile.h"

#include "WarningsFail.h"

#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

using PlaylistFile::Entry;
using PlaylistFile::Error;
using PlaylistFile::Playlist;

Q_DECLARE_METATYPE(PlaylistFile::Error)

namespace {

constexpr qint64 kMiB = qint64(1024) * 1024;

/// The file that a URL names, without "." and "..".
QString file(const QUrl &url)
{
    return url.isLocalFile() ? QDir::cleanPath(url.toLocalFile()) : QString();
}

} // namespace

class tst_PlaylistFile : public WarningsFail
{
    Q_OBJECT

private slots:
    void textThatIsNoPlaylistIsRefused_data();
    void textThatIsNoPlaylistIsRefused();
    void entriesStartAtTheFolderOfTheFile_data();
    void entriesStartAtTheFolderOfTheFile();
    void mediaAndLogoAreKeptApartAndInOrder();
    void elementsThatAreNoEntriesGiveTheFolder_data();
    void elementsThatAreNoEntriesGiveTheFolder();
    void filesThatAreNoPlaylistsAreRefused_data();
    void filesThatAreNoPlaylistsAreRefused();
    void theSizeOfAFileIsBounded();

private:
    QString path(const QString &name) const { return m_folder.filePath(name); }
    void write(const QString &name, const QByteArray &content, qint64 padTo = 0);

    QTemporaryDir m_folder;
};

/// Makes a file, with blanks at its end up to `padTo` bytes.
void tst_PlaylistFile::write(const QString &name, const QByteArray &content, qint64 padTo)
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
    const QByteArray blanks(kMiB, ' ');
    while (file.pos() < padTo)
        file.write(blanks.constData(), qMin(kMiB, padTo - file.pos()));
    QVERIFY(file.flush());
}

void tst_PlaylistFile::textThatIsNoPlaylistIsRefused_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<Error>("error");

    const auto row = [](const char *name, const QByteArray &json,
                        Error error = Error::CannotParse) { QTest::newRow(name) << json << error; };
    row("nothing", {});
    row("another format", "#EXTM3U\na.mp4\n");
    row("binary", QByteArray("\x00\xff\x00[]", 5));
    row("cut off", R"([{"media":"a.jpg")");
    row("a comma too many", R"([{"media":"a.jpg"},])");
    row("something behind it", R"([{"media":"a.jpg"}] x)");
    row("broken UTF-8", "[{\"media\":\"\xc3\x28.jpg\"}]");
    row("UTF-16", QByteArray("\xff\xfe[\0]\0", 6));
    row("a bare string", R"("a.jpg")");
    row("a million open brackets", QByteArray(1000000, '['));
    row("a million nested objects", QByteArray(R"({"a":)").repeated(1000000));
    row("an object", R"({"media":"a.jpg"})", Error::NotAnArray);
    row("an empty array with a byte order mark", "\xef\xbb\xbf[ ]", Error::Empty);
}

void tst_PlaylistFile::textThatIsNoPlaylistIsRefused()
{
    QFETCH(QByteArray, json);
    QFETCH(Error, error);
    const Playlist playlist = PlaylistFile::parse(json, QDir(QStringLiteral("/films")));
    QCOMPARE(playlist.error, error);
    QVERIFY(playlist.entries.isEmpty());
}

void tst_PlaylistFile::entriesStartAtTheFolderOfTheFile_data()
{
    QTest::addColumn<QByteArray>("media");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, const QByteArray &media, const QString &expected) {
        QTest::newRow(name) << media << expected;
    };
    row("relative", "a.mp4", QStringLiteral("/films/day 1/a.mp4"));
    row("in a folder below", "b/c/a.mp4", QStringLiteral("/films/day 1/b/c/a.mp4"));
    row("in a folder above", "../a.mp4", QStringLiteral("/films/a.mp4"));
    row("with a dot", "./a.mp4", QStringLiteral("/films/day 1/a.mp4"));
    row("absolute", "/other/a.mp4", QStringLiteral("/other/a.mp4"));
    row("not ASCII", "Ö/写真 😀.jpg", QStringLiteral("/films/day 1/Ö/写真 😀.jpg"));
    row("escaped", R"(\u00d6\u5199.jpg)", QStringLiteral("/films/day 1/Ö写.jpg"));
    row("signs of addresses", "a#b?c=%41&d.jpg", QStringLiteral("/films/day 1/a#b?c=%41&d.jpg"));
    row("a percent sign alone", "100%.jpg", QStringLiteral("/films/day 1/100%.jpg"));
    row("a colon", "12:30.jpg", QStringLiteral("/films/day 1/12:30.jpg"));
    row("blanks around", " a.jpg ", QStringLiteral("/films/day 1/ a.jpg "));
}

void tst_PlaylistFile::entriesStartAtTheFolderOfTheFile()
{
    QFETCH(QByteArray, media);
    QFETCH(QString, expected);
    const Playlist playlist = PlaylistFile::parse(R"([{"media":")" + media + R"("}])",
                                                  QDir(QStringLiteral("/films/day 1")));
    QCOMPARE(playlist.error, Error::None);
    QCOMPARE(playlist.entries.size(), 1);
    QCOMPARE(file(playlist.entries.first().media), expected);
}

void tst_PlaylistFile::mediaAndLogoAreKeptApartAndInOrder()
{
    const QByteArray json = "\xef\xbb\xbf"
                            R"([
        {"media": "a.jpg", "logo": "logos/a.png", "title": "ignored"},
        {"logo": "/b.png", "media": "/b.mp4"},
        {"media": "a.jpg", "logo": "logos/second.png"}
    ])";
    const Playlist playlist = PlaylistFile::parse(json, QDir(QStringLiteral("/films")));
    QCOMPARE(playlist.error, Error::None);
    QStringList files;
    for (const Entry &entry : playlist.entries)
        files << file(entry.media) << file(entry.logo);
    const QStringList expected{QStringLiteral("/films/a.jpg"),
                               QStringLiteral("/films/logos/a.png"),
                               QStringLiteral("/b.mp4"),
                               QStringLiteral("/b.png"),
                               QStringLiteral("/films/a.jpg"),
                               QStringLiteral("/films/logos/second.png")};
    QCOMPARE(files, expected);
}

void tst_PlaylistFile::elementsThatAreNoEntriesGiveTheFolder_data()
{
    QTest::addColumn<QByteArray>("element");
    for (const char *element :
         {"{}", "null", "true", "-1e308", R"("a.jpg")", R"(["media", "a.jpg"])", "[]",
          R"({"media": 7, "logo": false})", R"({"media": null, "logo": null})",
          R"({"media": ["a.jpg"], "logo": {"media": "a.jpg"}})", R"({"Media": "a.jpg"})",
          R"({"media": "", "logo": ""})"}) {
        QTest::newRow(element) << QByteArray(element);
    }
}

void tst_PlaylistFile::elementsThatAreNoEntriesGiveTheFolder()
{
    QFETCH(QByteArray, element);
    const Playlist playlist = PlaylistFile::parse("[" + element + R"(, {"media": "last.jpg"}])",
                                                  QDir(QStringLiteral("/films")));
    QCOMPARE(playlist.error, Error::None);
    QCOMPARE(playlist.entries.size(), 2);
    QCOMPARE(file(playlist.entries.first().media), QStringLiteral("/films"));
    QCOMPARE(file(playlist.entries.first().logo), QStringLiteral("/films"));
    QCOMPARE(file(playlist.entries.last().media), QStringLiteral("/films/last.jpg"));
}

void tst_PlaylistFile::filesThatAreNoPlaylistsAreRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Error>("error");

    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("folder.ospl")));
    QVERIFY(QFile::link(path(QStringLiteral("nowhere")), path(QStringLiteral("dangling.ospl"))));
    QVERIFY(QFile::link(path(QStringLiteral("loop.ospl")), path(QStringLiteral("loop.ospl"))));
    QCOMPARE(mkfifo(qPrintable(path(QStringLiteral("pipe.ospl"))), 0600), 0);
    QVERIFY(QFile::link(QStringLiteral("/dev/zero"), path(QStringLiteral("endless.ospl"))));
    write(QStringLiteral("empty.ospl"), {});

    QTest::newRow("no name") << QString() << Error::CannotOpen;
    QTest::newRow("an empty file") << path(QStringLiteral("empty.ospl")) << Error::CannotParse;
    for (const char *name : {"missing", "folder", "dangling", "loop", "pipe", "endless"})
        QTest::newRow(name) << path(QLatin1String(name) + QStringLiteral(".ospl"))
                            << Error::CannotOpen;
    if (geteuid() != 0) { // nothing is unreadable for root
        write(QStringLiteral("secret.ospl"), R"([{"media":"a.jpg"}])");
        QFile::setPermissions(path(QStringLiteral("secret.ospl")), QFile::WriteOwner);
        QTest::newRow("unreadable") << path(QStringLiteral("secret.ospl")) << Error::CannotOpen;
    }
}

void tst_PlaylistFile::filesThatAreNoPlaylistsAreRefused()
{
    QFETCH(QString, name);
    QFETCH(Error, error);
    const Playlist playlist = PlaylistFile::read(name);
    QCOMPARE(playlist.error, error);
    QVERIFY(playlist.entries.isEmpty());
}

void tst_PlaylistFile::theSizeOfAFileIsBounded()
{
    const QString name = QStringLiteral("large.ospl");
    write(name, R"([{"media":"a.jpg"}])", 64 * kMiB);
    QCOMPARE(PlaylistFile::read(path(name)).error, Error::None);
    write(name, R"([{"media":"a.jpg"}])", 64 * kMiB + 1);
    QCOMPARE(PlaylistFile::read(path(name)).error, Error::CannotParse);
}

QTEST_GUILESS_MAIN(tst_PlaylistFile)
#include "tst_PlaylistFile.moc"
