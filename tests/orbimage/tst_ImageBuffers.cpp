#include "ImageBuffers.h"
#include "OrbException.h"
#include "TemporaryStore.h"

#include "WarningsFail.h"

#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <atomic>
#include <climits>
#include <cstring>
#include <thread>

#include <sched.h>
#include <sys/mount.h>

namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;
constexpr std::size_t kBytes = std::size_t(kWidth) * kHeight; ///< gray, 8 bits

/// The message of what `call` throws; empty where it throws nothing.
template <typename Call>
QString thrown(Call call)
{
    try {
        call();
    } catch (const OrbException &exception) {
        return exception.message();
    }
    return {};
}

void fill(const OrbImage &image, int value)
{
    for (int y = 0; y < image.bitmap().height; ++y)
        std::memset(image.bitmap().line(y), value, std::size_t(image.bitmap().width));
}

bool isFilled(const OrbImage &image, int value)
{
    for (int y = 0; y < image.bitmap().height; ++y) {
        const unsigned char *line = image.bitmap().line(y);
        if (!std::all_of(line, line + image.bitmap().width,
                         [value](unsigned char sample) { return sample == value; }))
            return false;
    }
    return true;
}

/// The buffers of a picture of one colour, with what stands around them.
struct Fixture
{
    QTemporaryDir folder;
    std::atomic<qint64> space{LLONG_MAX};
    std::atomic<int> filesAsked{0};
    TemporaryStore store;
    QString source = folder.filePath(QStringLiteral("source.tif"));
    ImageBuffers buffers;

    explicit Fixture(std::size_t memoryLimit, const QString &temporary = {})
        : store(
            {temporary.isEmpty() ? folder.path() : temporary},
            [this](const QString &) {
                ++filesAsked;
                return space.load();
            },
            [](const QString &) { return false; })
        , buffers(source, kWidth, kHeight, 8, store, memoryLimit)
    {
        OrbImage image;
        image.allocate(kWidth, kHeight, kGflGrey, 8);
        fill(image, 200);
        image.ID_WriteToCache(source);
    }

    void write(int width, int height, int value)
    {
        fill(buffers.acquire(width, height, true), value);
        buffers.release(width, height);
    }

    bool holds(int width, int height, int value)
    {
        const OrbImage &image = buffers.acquire(width, height, false);
        const GflBitmap &bitmap = image.bitmap();
        const bool isRight = bitmap.width == width && bitmap.height == height
            && bitmap.type == kGflGrey && bitmap.bitsPerComponent == 8 && isFilled(image, value);
        buffers.release(width, height);
        return isRight;
    }

    /// The sizes of the images that are in files.
    QVector<QSize> spilled() const
    {
        QVector<QSize> sizes;
        QDirIterator files(folder.path(), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            OrbImage image;
            if (files.next() == source)
                continue;
            image.ID_Read(files.filePath());
            sizes.append({image.bitmap().width, image.bitmap().height});
        }
        return sizes;
    }
};

} // namespace

class tst_ImageBuffers : public WarningsFail
{
    Q_OBJECT

private slots:
    void whatIsNotThereIsMadeFromTheNextLarger();
    void theOneUsedTheLongestTimeAgoGoesFirst();
    void onlyWhatMayHaveChangedIsWrittenAgain();
    void whatIsInUseStaysWhereItIs();
    void aSizeThatCannotBeIsRefused();
    void aMissingSourceIsSaidEvenForWhatIsHeld();
    void withoutRoomNothingIsLost();
    void threadsUnderASmallLimitFindWhatTheyWrote();
    void aDiskThatFillsUpLosesNothing();
};

void tst_ImageBuffers::whatIsNotThereIsMadeFromTheNextLarger()
{
    Fixture fixture(kBytes * 10);
    QVERIFY(fixture.holds(32, 24, 200)); // through the whole image
    fixture.write(kWidth, kHeight, 1);
    fixture.write(32, 24, 2);
    fixture.write(40, 16, 3);
    QVERIFY(fixture.holds(16, 12, 3)); // 40x16 is smaller than 32x24
    QVERIFY(fixture.holds(16, 20, 2));
    QVERIFY(fixture.holds(33, 17, 1));
    QCOMPARE(fixture.filesAsked.load(), 0);
}

void tst_ImageBuffers::theOneUsedTheLongestTimeAgoGoesFirst()
{
    Fixture fixture(kBytes + std::size_t(2) * 32 * 32);
    fixture.write(kWidth, kHeight, 1);
    fixture.write(32, 32, 2);
    QVERIFY(fixture.holds(kWidth, kHeight, 1));
    fixture.write(24, 40, 3); // from the whole image
    QVERIFY(fixture.spilled().isEmpty());
    fixture.write(25, 40, 4);
    QCOMPARE(fixture.spilled(), QVector<QSize>({{32, 32}}));
}

void tst_ImageBuffers::onlyWhatMayHaveChangedIsWrittenAgain()
{
    Fixture fixture(kBytes); // one at a time
    const auto useAll = [&fixture](int value) {
        bool isRight = true;
        for (int turn = 0; turn < 3; ++turn) {
            isRight &= fixture.holds(kWidth, kHeight, 200) && fixture.holds(64, 40, 200)
                && fixture.holds(60, 48, value);
        }
        return isRight;
    };
    QVERIFY(useAll(200));
    QCOMPARE(fixture.filesAsked.load(), 3);
    fixture.write(60, 48, 7);
    QVERIFY(useAll(7));
    QCOMPARE(fixture.filesAsked.load(), 4);
    QCOMPARE(fixture.spilled().size(), 3); // the stale one is gone
}

void tst_ImageBuffers::whatIsInUseStaysWhereItIs()
{
    Fixture fixture(kBytes / 2); // nothing fits beside another
    fixture.buffers.release(32, 32);
    QVERIFY(fixture.holds(32, 32, 200));
    fixture.buffers.release(32, 32); // once too often
    OrbImage &held = fixture.buffers.acquire(32, 32, true);
    const unsigned char *pixels = held.bitmap().data;
    fixture.buffers.acquire(32, 32, false);
    fixture.buffers.release(32, 32);
    for (const int width : {64, 20, 21, 22})
        fixture.write(width, 48, width);
    QCOMPARE(held.bitmap().data, pixels);
    fill(held, 9);
    fixture.buffers.release(32, 32);
    QVERIFY(fixture.holds(22, 48, 22));
    QVERIFY(fixture.holds(64, 48, 64));
    QVERIFY(fixture.holds(20, 48, 20)); // sends all others away
    QVERIFY(fixture.spilled().contains({32, 32}));
    QVERIFY(fixture.holds(32, 32, 9));
}

void tst_ImageBuffers::aSizeThatCannotBeIsRefused()
{
    Fixture fixture(kBytes);
    const std::array<QSize, 6> sizes = {
        {{0, 1}, {1, 0}, {-1, 5}, {kWidth + 1, 1}, {1, kHeight + 1}, {INT_MIN, INT_MAX}}};
    for (const QSize &size : sizes) {
        QCOMPARE(thrown([&] { fixture.buffers.acquire(size.width(), size.height(), false); }),
                 QStringLiteral("Invalid Parameter"));
    }
}

void tst_ImageBuffers::aMissingSourceIsSaidEvenForWhatIsHeld()
{
    Fixture fixture(kBytes * 2);
    QVERIFY(fixture.holds(kWidth, kHeight, 200));
    QVERIFY(QFile::rename(fixture.source, fixture.source + QStringLiteral("~")));
    const QString missing = QStringLiteral("File \"%1\" is not found").arg(fixture.source);
    QCOMPARE(thrown([&] { fixture.buffers.acquire(kWidth, kHeight, false); }), missing);
    QCOMPARE(thrown([&] { fixture.buffers.acquire(1, 1, false); }), missing);

    // What is no image, or another one by now, leaves nothing behind.
    Fixture changed(kBytes * 2);
    OrbImage other;
    other.allocate(kWidth, kHeight - 1, kGflGrey, 8);
    other.ID_WriteToCache(changed.source);
    QVERIFY(!thrown([&] { changed.buffers.acquire(1, 1, false); }).isEmpty());
    QVERIFY(QFile::remove(changed.source));
    QVERIFY(QFile::rename(fixture.source + QStringLiteral("~"), changed.source));
    QVERIFY(changed.holds(kWidth, kHeight, 200));
}

void tst_ImageBuffers::withoutRoomNothingIsLost()
{
    const auto lose = [](Fixture &fixture) {
        return thrown([&fixture] { fixture.buffers.acquire(50, 40, false); });
    };
    const QString message = QStringLiteral("No more space in temporary folder");
    Fixture fixture(kBytes * 2);
    fixture.write(kWidth, kHeight, 1);
    fixture.write(60, 45, 2);
    fixture.space = 0;
    QCOMPARE(lose(fixture), message);
    QCOMPARE(lose(fixture), message);
    QVERIFY(fixture.holds(kWidth, kHeight, 1));
    QVERIFY(fixture.holds(60, 45, 2));
    QVERIFY(fixture.spilled().isEmpty());
    fixture.space = LLONG_MAX;
    QVERIFY(fixture.holds(50, 40, 2));
    QVERIFY(fixture.holds(kWidth, kHeight, 1));
    QVERIFY(fixture.holds(60, 45, 2));
}

void tst_ImageBuffers::threadsUnderASmallLimitFindWhatTheyWrote()
{
    constexpr int kThreads = 8;
    constexpr int kTurns = 60;
    Fixture fixture(kBytes); // what a thread has written makes room for what it reads
    QVERIFY(fixture.holds(kWidth, kHeight, 200));
    QVERIFY(fixture.holds(48, 48, 200));
    for (int thread = 0; thread < kThreads; ++thread) // none is made while another is written
        QVERIFY(fixture.holds(40 + thread, 40, 200));

    std::array<int, kThreads> rights{};
    // What std::async runs the thread sanitizer, as it is set for Qt, passes over.
    std::array<std::thread, kThreads> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads[std::size_t(thread)] = std::thread(
            [&fixture, thread, &right = rights[std::size_t(thread)]] {
                for (int turn = 0; turn < kTurns; ++turn) {
                    fixture.write(40 + thread, 40, turn + thread);
                    right += fixture.holds(kWidth, kHeight, 200); // everybody's
                    right += fixture.holds(48, 48, 200);
                    right += fixture.holds(40 + thread, 40, turn + thread);
                }
            });
    }
    for (std::thread &thread : threads)
        thread.join();
    for (const int right : rights)
        QCOMPARE(right, 3 * kTurns);
    const int files = fixture.filesAsked;
    QVERIFY2(files > kThreads * 4, qPrintable(QString::number(files)));
    fixture.store.clear();
    QVERIFY(fixture.spilled().isEmpty());
    QCOMPARE(QDir(fixture.folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList(QStringLiteral("source.tif")));
}

/// Last: the mounts are of this process alone, but until its end.
void tst_ImageBuffers::aDiskThatFillsUpLosesNothing()
{
    const QTemporaryDir disk;
    const QByteArray place = QFile::encodeName(disk.path());
    if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0
        || mount("none", place.constData(), "tmpfs", 0, "size=8k") != 0)
        QSKIP(qPrintable(QStringLiteral("No disk can be mounted: %1").arg(qt_error_string())));

    {
        Fixture fixture(kBytes * 2, disk.path()); // two files fill the disk
        fixture.write(kWidth, kHeight, 1);
        fixture.write(63, 48, 2);
        fixture.write(62, 48, 3);
        fixture.write(61, 48, 4);
        const QString message =
            QStringLiteral("Not enough free space on \"%1\" to finish operation").arg(disk.path());
        QCOMPARE(thrown([&] { fixture.buffers.acquire(60, 48, false); }), message);
        QCOMPARE(mount("none", place.constData(), nullptr, MS_REMOUNT, "size=1m"), 0);
        QVERIFY(fixture.holds(60, 48, 4));
        QVERIFY(fixture.holds(61, 48, 4));
        QVERIFY(fixture.holds(62, 48, 3));
        QVERIFY(fixture.holds(63, 48, 2));
        QVERIFY(fixture.holds(kWidth, kHeight, 1));
    }
    QCOMPARE(umount(place.constData()), 0);
}

QTEST_GUILESS_MAIN(tst_ImageBuffers)
#include "tst_ImageBuffers.moc"
