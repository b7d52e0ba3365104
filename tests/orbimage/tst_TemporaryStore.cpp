#include "TemporaryStore.h"

#include "WarningsFail.h"

#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <climits>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qint64 kMiB = qint64(1) << 20;
const QString kHold = QStringLiteral("--hold");

qint64 endlessSpace(const QString &)
{
    return LLONG_MAX;
}

bool notRemovable(const QString &)
{
    return false;
}

bool makeFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write("x") == 1;
}

/// The other copy of the program: makes a file, says so and waits for its end.
int hold(const QString &folder)
{
    TemporaryStore store({folder}, endlessSpace, notRemovable);
    const QString file = store.fileFor(1, 1, 8);
    if (!makeFile(file))
        return 1;
    QFile output;
    if (!output.open(stdout, QIODevice::WriteOnly) || output.write(file.toUtf8() + '\n') < 0
        || !output.flush())
        return 1;
    return QCoreApplication::exec();
}

} // namespace

class tst_TemporaryStore : public WarningsFail
{
    Q_OBJECT

private slots:
    void init();
    void aDirectoryHolds1024Files();
    void aFolderIsChosenByItsRoom_data();
    void aFolderIsChosenByItsRoom();
    void directoriesOfOthersArePassedOver();
    void threadsGetDifferentFiles();
    void leftoversOfAKilledCopyAreRemovedAndNothingElse();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    QString directory(int number) const
    {
        return path(QStringLiteral("ORBIX.%1.%2").arg(getpid()).arg(number));
    }
    int entryCount() const
    {
        return int(
            QDir(m_folder->path())
                .entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot)
                .size());
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_TemporaryStore::init()
{
    WarningsFail::init();
    m_folder = std::make_unique<QTemporaryDir>();
}

void tst_TemporaryStore::aDirectoryHolds1024Files()
{
    TemporaryStore store({m_folder->path()}, endlessSpace, notRemovable);
    for (int i = 0; i < 1024 + 2; ++i) {
        const QString file = store.fileFor(1, 1, 8);
        QCOMPARE(file, directory(i / 1024) + QStringLiteral("/%1").arg(i % 1024));
        QVERIFY(makeFile(file));
    }
    QCOMPARE(store.directoriesMade(), 2);
    struct stat status = {};
    QCOMPARE(stat(qPrintable(directory(1)), &status), 0);
    QCOMPARE(int(status.st_mode & 0777U), 0700);

    store.clear();
    QCOMPARE(entryCount(), 0);
    QCOMPARE(store.fileFor(1, 1, 8), directory(1) + QStringLiteral("/2"));
    QCOMPARE(entryCount(), 1);
}

void tst_TemporaryStore::aFolderIsChosenByItsRoom_data()
{
    QTest::addColumn<QVector<qint64>>("room"); // of each folder; negative on a removable drive
    QTest::addColumn<QVector<int>>("size");
    QTest::addColumn<int>("folder"); // -1 for none

    const QVector<int> mb = {1000, 500, 16}; // a million bytes
    const qint64 much = 1000000 + 1024 * kMiB;
    const qint64 some = 1000000 + 100 * kMiB;
    const auto row = [](const char *name, const QVector<qint64> &room, const QVector<int> &size,
                        int folder) { QTest::newRow(name) << room << size << folder; };
    row("much in both", {much, much}, mb, 0);
    row("much in the second", {much - 1, much}, mb, 1);
    row("some in both", {some, much - 1}, mb, 0);
    row("some in the second", {some - 1, some}, mb, 1);
    row("none", {some - 1, some - 1}, mb, -1);
    row("a removable drive", {-much, some}, mb, 1);
    row("more than 32 bits", {much, (qint64(40000) * 40000 * 16) + 1024 * kMiB},
        {40000, 40000, 128}, 1);
    row("more than 64 bits", {LLONG_MAX}, {INT_MAX, INT_MAX, 128}, -1);
    row("no folders", {}, mb, -1);
    row("no height", {much}, {1, -1, 8}, -1);
    row("no depth", {much}, {1, 1, 0}, -1);
}

void tst_TemporaryStore::aFolderIsChosenByItsRoom()
{
    QFETCH(QVector<qint64>, room);
    QFETCH(QVector<int>, size);
    QFETCH(int, folder);
    QStringList folders;
    for (int i = 0; i < room.size(); ++i) {
        folders.append(path(QString::number(i)));
        QVERIFY(QDir().mkpath(folders.last()));
    }
    TemporaryStore store(
        folders, [&](const QString &name) { return std::abs(room[folders.indexOf(name)]); },
        [&](const QString &name) { return room[folders.indexOf(name)] < 0; });
    const QString file = store.fileFor(size[0], size[1], size[2]);
    QCOMPARE(file.isEmpty(), folder < 0);
    QVERIFY2(folder < 0 || file.startsWith(folders[folder] + QLatin1Char('/')), qPrintable(file));
}

void tst_TemporaryStore::directoriesOfOthersArePassedOver()
{
    QVERIFY(QDir().mkpath(directory(0)));
    QVERIFY(QDir().mkpath(path(QStringLiteral("trap"))));
    QVERIFY(QFile::link(path(QStringLiteral("trap")), directory(1)));
    QVERIFY(QFile::link(path(QStringLiteral("nowhere")), directory(2)));
    QVERIFY(makeFile(directory(3)));
    TemporaryStore store({m_folder->path()}, endlessSpace, notRemovable);
    QCOMPARE(store.fileFor(1, 1, 8), directory(4) + QStringLiteral("/0"));
    store.clear();
    QCOMPARE(entryCount(), 5);

    TemporaryStore nowhere({path(QStringLiteral("nowhere"))}, endlessSpace, notRemovable);
    QCOMPARE(nowhere.fileFor(1, 1, 8), QString());
}

void tst_TemporaryStore::threadsGetDifferentFiles()
{
    constexpr int kThreads = 8;
    constexpr int kFiles = 12800;
    TemporaryStore store({m_folder->path()}, endlessSpace, notRemovable);
    std::array<QStringList, kThreads> found;
    // What std::async runs the thread sanitizer, as it is set for Qt, passes over.
    std::array<std::thread, kThreads> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads[std::size_t(i)] = std::thread([&store, &files = found[std::size_t(i)]] {
            files.reserve(kFiles);
            for (int file = 0; file < kFiles; ++file)
                files.append(store.fileFor(1, 1, 8));
        });
    }
    QSet<QString> all;
    for (int i = 0; i < kThreads; ++i) {
        threads[std::size_t(i)].join();
        all.unite(QSet<QString>(found[std::size_t(i)].cbegin(), found[std::size_t(i)].cend()));
    }
    QCOMPARE(all.size(), kThreads * kFiles);
    QCOMPARE(store.directoriesMade(), kThreads * kFiles / 1024);
    store.clear();
    QCOMPARE(entryCount(), 0);
}

void tst_TemporaryStore::leftoversOfAKilledCopyAreRemovedAndNothingElse()
{
    const auto folderWith = [this](const char *folder, const char *file) {
        const QString made = path(QString::fromLatin1(folder));
        return QDir().mkpath(made) && makeFile(made + QLatin1Char('/') + QLatin1String(file));
    };
    QVERIFY(folderWith("ORBIX.1.2", "3")); // the only one that goes
    QVERIFY(folderWith("ORBIX.1.3", "notes"));
    QVERIFY(folderWith("ORBIX.1", "0"));
    QVERIFY(folderWith("ORBIX.1.x", "0"));
    QVERIFY(folderWith("ORBIX.1.2.3", "0"));
    QVERIFY(folderWith("other.1.2", "0"));
    QVERIFY(makeFile(path(QStringLiteral("ORBIX.2.2"))));
    QVERIFY(QFile::link(path(QStringLiteral("other.1.2")), path(QStringLiteral("ORBIX.1.4"))));
    QStringList kept = {QStringLiteral("ORBIX.1.3/notes"), QStringLiteral("ORBIX.1/0"),
                        QStringLiteral("ORBIX.1.x/0"),     QStringLiteral("ORBIX.1.2.3/0"),
                        QStringLiteral("other.1.2/0"),     QStringLiteral("ORBIX.2.2"),
                        QStringLiteral("ORBIX.1.4/0")};
    if (geteuid() == 0) { // who alone can make a folder of someone else
        QVERIFY(folderWith("ORBIX.5.5", "0"));
        QCOMPARE(chown(qPrintable(path(QStringLiteral("ORBIX.5.5"))), 65534, 65534), 0);
        kept.append(QStringLiteral("ORBIX.5.5/0"));
    }

    QProcess other;
    other.start(QCoreApplication::applicationFilePath(), {kHold, m_folder->path()});
    QVERIFY(other.waitForReadyRead());
    const QString held = QString::fromUtf8(other.readLine()).trimmed();
    TemporaryStore store({m_folder->path()}, endlessSpace, notRemovable);
    const QString own = store.fileFor(1, 1, 8);
    QVERIFY(makeFile(own));

    store.removeLeftovers();
    QVERIFY(QFile::exists(held) && QFile::exists(own));
    QVERIFY(!QFile::exists(path(QStringLiteral("ORBIX.1.2"))));

    other.kill();
    QVERIFY(other.waitForFinished());
    QVERIFY(QFile::exists(held));
    store.removeLeftovers();
    QVERIFY(!QFile::exists(QFileInfo(held).path()));
    QVERIFY(QFile::exists(own));
    for (const QString &name : qAsConst(kept))
        QVERIFY2(QFile::exists(path(name)), qPrintable(name));
}

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3 && arguments[1] == kHold)
        return hold(arguments[2]);
    tst_TemporaryStore test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_TemporaryStore.moc"
