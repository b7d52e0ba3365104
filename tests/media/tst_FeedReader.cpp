#include "FeedReader.h"

#include "FeedBlock.h"
#include "ProcessLevel.h"
#include "WarningsFail.h"

#include <QtTest>

#include <vector>

using namespace std::chrono_literals;

namespace {

constexpr char kName[] = "orbix-reader-test";
constexpr char kRejected[] = "is no live feed of version";
constexpr char kSkipped[] = "do not stand within its memory";

/// The test as the writer, and its clock: acts at each look of the reader, from 1 on. The reader
/// gives up when this returns false.
FeedReader::Pause at(std::chrono::milliseconds time, const std::function<bool(int)> &act)
{
    return [=, look = 0](std::chrono::milliseconds wait) mutable {
        return wait == time && act(++look);
    };
}

bool never(std::chrono::milliseconds)
{
    return false;
}

/// What the reader copies, in memory of just that size.
std::optional<std::vector<uchar>> pixels(const FeedReader &reader,
                                         const FeedFormat::SharedFrameRecord &frame)
{
    std::vector<uchar> copy(std::size_t(4) * frame.frameWidth * frame.frameHeight);
    return reader.copyPixels(frame, copy.data()) ? std::optional(copy) : std::nullopt;
}

int mappings()
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    return maps.open(QIODevice::ReadOnly) ? maps.readAll().count(kName) : -1;
}

/// A block and a reader that has it.
struct Feed
{
    FeedBlock block;
    FeedReader reader;

    Feed(int count, const QSize &size, int padding = 0)
        : block(kName, count, size, padding)
        , reader(block.name())
    {
        if (!reader.connectToWriter(never))
            qFatal("The block is not found");
    }

    void write(int slot, quint64 stamp) { block.setRecord(slot, block.record(slot, stamp)); }

    /// The stamp of the frame that is taken; -1 if there is none.
    qint64 take()
    {
        const auto frame = reader.takeFrame();
        return frame ? qint64(frame->frameStamp) : -1;
    }
};

} // namespace

class tst_FeedReader : public WarningsFail
{
    Q_OBJECT

private slots:
    void looksForTheBlockUntilItIsThereOrItIsToldToGiveUp();
    void rejectsAnotherVersionAndGoesOnLooking();
    void anHourOfRejectionsHoldsNothingAndWarnsOnce();
    void looksTwiceInTheTimeOfAFrame();
    void takesTheFramesInTheOrderOfTheRing();
    void staysAtAnOlderFrame();
    void skipsFramesThatDoNotStandWithinTheBlock();
    void believesNoWrongSlotCount();
    void copiesLinesWithoutWhatStandsBetweenThem();
    void dropsAFrameThatIsOverwrittenBeforeItIsCopied();
    void survivesABlockThatIsCutShort();
    void beginsAnewWithAnotherBlock();
};

void tst_FeedReader::looksForTheBlockUntilItIsThereOrItIsToldToGiveUp()
{
    FeedReader reader(FeedBlock(kName, 1, {1, 1}).name()); // which is gone again
    QVERIFY(!reader.connectToWriter(at(100ms, [](int look) { return look < 3; })));
    QVERIFY(!reader.feedConnected());
    QCOMPARE(reader.computePollInterval(never), 0);
    QVERIFY(!reader.takeFrame());

    std::optional<FeedBlock> block;
    QVERIFY(reader.connectToWriter(at(100ms, [&block](int look) {
        if (look == 3)
            block.emplace(kName, 2, QSize(1, 1));
        return look <= 3;
    })));
    QVERIFY(!reader.computePollInterval(at(10ms, [](int look) { return look < 3; })));
    const auto writeAtLast = [&block](int look) {
        block->setRecord(look == 3 ? 0 : 1, block->record(0, 1));
        return look <= 3;
    };
    QCOMPARE(reader.computePollInterval(at(10ms, writeAtLast)).value_or(-1), 16);
    reader.release();
    QVERIFY(!reader.feedConnected());
    QCOMPARE(mappings(), 1); // the block's own
}

void tst_FeedReader::rejectsAnotherVersionAndGoesOnLooking()
{
    const QByteArray right = "QXLT_Shared_Memory1.3";
    const struct
    {
        QByteArray tag;
        int bytes;
    } rows[] = {{"QXLT_Shared_Memory1.4", 1000},
                {right.chopped(1), 1000},
                {right + '0', 1000},
                {right.leftJustified(128, '3'), 1000}, // no zero at all
                {{}, 1000},
                {right, 0x93},
                {right, 5},
                {right, 0}};
    expectWarning(QLatin1String(kRejected));
    for (const auto &row : rows) {
        std::optional<FeedBlock> block(std::in_place, kName, 1, QSize(16, 16));
        block->setTag(row.tag);
        block->resize(row.bytes);
        FeedReader reader(block->name());
        int looks = 0;
        const auto replaceIfRejected = [&](int look) {
            looks = look;
            const bool isRejected = row.bytes < 0x94
                || (block->get<quint32>(0x90) == 1 && block->get<quint32>(0x84) != 0);
            if (look == 2) {
                block.reset();
                block.emplace(kName, 1, QSize(1, 1));
            }
            return isRejected && mappings() == 1 && look <= 2;
        };
        QVERIFY2(reader.connectToWriter(at(100ms, replaceIfRejected)), row.tag);
        QCOMPARE(looks, 2);
        QVERIFY(block->get<quint32>(0x84) != 0);
        QCOMPARE(block->get<quint32>(0x90), 0U);
    }
}

void tst_FeedReader::anHourOfRejectionsHoldsNothingAndWarnsOnce()
{
    static int warnings = 0;
    static QtMessageHandler before = nullptr;
    before = qInstallMessageHandler([](auto type, const auto &context, const auto &message) {
        ++warnings;
        before(type, context, message);
    });
    expectWarning(QLatin1String(kRejected));
    FeedBlock block(kName, 1, {1, 1});
    block.setTag("QXLT_Shared_Memory1.2");
    FeedReader reader(block.name());
    const int files = ProcessLevel::now().files;
    QVERIFY(!reader.connectToWriter(at(100ms, [&block](int look) {
        const bool isEmpty = look % 2 != 0;
        block.resize(isEmpty ? 0 : block.size());
        if (!isEmpty)
            block.put(0x80, quint32(block.descriptor())); // which is no handle of this process
        return look < 36000;
    })));
    qInstallMessageHandler(before);
    QCOMPARE(warnings, 1);
    QCOMPARE(ProcessLevel::now().files, files);
    QCOMPARE(mappings(), 1);
}

void tst_FeedReader::looksTwiceInTheTimeOfAFrame()
{
    const int rates[][3] = {{30, 1, 16},   {25, 1, 20},   {60, 1, 8},
                            {1, 10, 5000}, {65535, 1, 1}, {1, 65535, 32767500},
                            {0, 1, 16},    {30, 0, 16},   {30000, 1001, 16}};
    Feed feed(1, {1, 1});
    for (const auto &[numerator, denominator, milliseconds] : rates) {
        FeedBlock::Record record = feed.block.record(0, 1);
        record.numerator = quint16(numerator);
        record.denominator = quint16(denominator);
        feed.block.setRecord(0, record);
        QCOMPARE(feed.reader.computePollInterval(never).value_or(-1), milliseconds);
        QVERIFY(feed.block.isReady(0));
    }
}

void tst_FeedReader::takesTheFramesInTheOrderOfTheRing()
{
    Feed feed(3, {2, 2});
    for (int stamp = 0; stamp < 20; stamp += 2) {
        const int next = stamp + 1;
        feed.write(next % 3, quint64(next));
        feed.write(stamp % 3, quint64(stamp));
        QCOMPARE(feed.take(), qint64(stamp));
        QVERIFY(!feed.block.isReady(stamp % 3) && feed.block.isReady(next % 3));
        QCOMPARE(feed.take(), qint64(next));
        QVERIFY(!feed.block.isReady(next % 3));
        QVERIFY(!feed.reader.takeFrame());
    }
}

void tst_FeedReader::staysAtAnOlderFrame()
{
    const quint64 rows[][3] = {{5, 4, 0},
                               {5, 5, 1},
                               {0xFFFFFFFF, 0x100000000, 1},
                               {0x100000000, 0xFFFFFFFF, 0},
                               {1, 0x8000000000000000, 1},
                               {0x8000000000000000, 1, 0}};
    for (const auto &[first, second, isTaken] : rows) {
        Feed feed(3, {1, 1});
        feed.write(0, first);
        feed.write(1, second);
        feed.write(2, ~quint64(0));
        QVERIFY(feed.reader.takeFrame());
        QCOMPARE(feed.reader.takeFrame().has_value(), isTaken != 0);
        QCOMPARE(feed.block.isReady(1), isTaken == 0);
        if (isTaken != 0)
            continue;
        QVERIFY(!feed.reader.takeFrame());
        feed.write(1, first);
        QVERIFY(feed.reader.takeFrame());
        QVERIFY(!feed.block.isReady(1) && feed.block.isReady(2));
    }
}

void tst_FeedReader::skipsFramesThatDoNotStandWithinTheBlock()
{
    // 0x94 of the header, 2 records of 56 bytes, 2 frames of 4 lines with 16 bytes: 388 in all.
    const struct
    {
        const char *what;
        int at; ///< within the record
        int bytes;
        quint64 value;
        bool isTaken;
    } rows[] = {{"to the block's end", 0x10, 4, 324, true},
                {"a byte past the end", 0x10, 4, 325, false},
                {"far away", 0x10, 4, 0xFFFFFFFF, false},
                {"so far that the end is a small number", 0x10, 4, 0xFFFFFFD0, false},
                {"no pixels", 0x10, 4, 0, false},
                {"no width", 0x18, 2, 0, false},
                {"lines shorter than the width", 0x18, 2, 5, false},
                {"a line with more bytes than 16 bits say", 0x18, 2, 0x4004, false},
                {"no height", 0x1A, 2, 0, false},
                {"too high", 0x1A, 2, 9, false},
                {"lines a byte short", 0x1C, 2, 15, false},
                {"lines to the block's end", 0x1C, 2, 32, true},
                {"lines past the block's end", 0x1C, 2, 33, false},
                {"all ones", 0, 56, ~quint64(0), false}};
    expectWarning(QLatin1String(kSkipped));
    for (const auto &row : rows) {
        Feed feed(2, {4, 4});
        feed.write(0, ~quint64(0));
        for (int i = 0; i < row.bytes; ++i)
            feed.block.put(0x94 + row.at + i, uchar(row.value >> unsigned(8 * (i % 8))));
        feed.write(1, row.isTaken ? ~quint64(0) : 7);
        const auto frame = feed.reader.takeFrame();
        QVERIFY2(frame.has_value() == row.isTaken, row.what);
        QVERIFY(!frame || pixels(feed.reader, *frame));
        QVERIFY(!feed.block.isReady(0));
        QVERIFY2(feed.reader.takeFrame(), row.what);
    }
}

void tst_FeedReader::believesNoWrongSlotCount()
{
    Feed feed(3, {1, 1}); // no room for a fourth record
    for (int slot = 0; slot < 3; ++slot)
        feed.write(slot, quint64(slot));
    feed.block.setSlotCount(0);
    QVERIFY(!feed.reader.takeFrame());
    feed.block.setSlotCount(0xFFFF);
    for (int slot = 0; slot < 3; ++slot)
        QCOMPARE(feed.take(), qint64(slot));
    feed.write(0, 3);
    QCOMPARE(feed.take(), qint64(3));
    feed.block.setSlotCount(1); // while the reader is at the second record
    feed.write(0, 4);
    QCOMPARE(feed.take(), qint64(4));

    feed.block.resize(0x94 + 55); // no room for any, though memory goes on to the page's end
    feed.write(0, 5);
    FeedReader late(feed.block.name());
    QVERIFY(late.connectToWriter(never));
    QVERIFY(!late.computePollInterval(never));
    QVERIFY(!late.takeFrame());
}

void tst_FeedReader::copiesLinesWithoutWhatStandsBetweenThem()
{
    for (const int padding : {0, 1, 3, 4, 64}) {
        Feed feed(2, {3, 2}, padding);
        feed.write(0, 0);
        std::vector<uchar> expected(24);
        for (int i = 0; i < 24; ++i) {
            expected[size_t(i)] = uchar(i + 1);
            feed.block.pixels(0)[i < 12 ? i : i + padding] = uchar(i + 1);
        }
        const auto frame = feed.reader.takeFrame();
        QVERIFY(frame && pixels(feed.reader, *frame) == expected);
    }
}

void tst_FeedReader::dropsAFrameThatIsOverwrittenBeforeItIsCopied()
{
    for (const int padding : {0, 4}) {
        Feed feed(3, {2, 2}, padding);
        feed.write(0, 1);
        const auto frame = feed.reader.takeFrame();
        QVERIFY(frame && pixels(feed.reader, *frame));
        feed.block.put(0x94, quint64(4)); // its stamp
        QVERIFY(!pixels(feed.reader, *frame));
    }
}

void tst_FeedReader::survivesABlockThatIsCutShort()
{
    for (const int bytes : {0, 0x94, 0x94 + 3 * 56, 9000}) { // the last is amid the pixels
        for (const int padding : {0, 4}) {
            Feed feed(3, {64, 64}, padding);
            feed.write(0, 1);
            const auto frame = feed.reader.takeFrame();
            feed.block.resize(bytes);
            QVERIFY(frame && !pixels(feed.reader, *frame));
            QVERIFY(!feed.reader.takeFrame());
            QVERIFY(!feed.reader.computePollInterval(never));
            feed.block.resize(feed.block.size());
            feed.block.setHeader();
            feed.write(1, 2);
            const auto again = feed.reader.takeFrame();
            QVERIFY(again && pixels(feed.reader, *again));
            feed.block.resize(bytes);
            feed.reader.release();
            QCOMPARE(mappings(), 1);
        }
    }
}

void tst_FeedReader::beginsAnewWithAnotherBlock()
{
    Feed feed(3, {1, 1});
    feed.write(0, 1000);
    QCOMPARE(feed.take(), qint64(1000));
    feed.reader.release();
    feed.write(0, 1);
    QVERIFY(feed.reader.connectToWriter(never));
    QCOMPARE(feed.take(), qint64(1));
}

QTEST_GUILESS_MAIN(tst_FeedReader)
#include "tst_FeedReader.moc"
