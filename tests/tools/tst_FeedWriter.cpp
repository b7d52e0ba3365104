#include "FeedOptions.h"
#include "FeedWriter.h"
#include "WarningsFail.h"

#include <QtTest>

#include <unistd.h>

#include <cstring>

using Stamps = QVector<quint64>;

namespace {

const QSize kSize(4, 2);
constexpr int kBytes = 32;

void writeFrame(FeedWriter &writer, char value)
{
    std::memset(writer.nextFrame(), value, std::size_t(writer.frameBytes()));
    QVERIFY(writer.publish());
}

} // namespace

class tst_FeedWriter : public WarningsFail
{
    Q_OBJECT

private slots:
    void init() { WarningsFail::init(); }
    void cleanup()
    {
        m_block.remove();
        WarningsFail::cleanup();
    }

    void framesStandInTheBlockAsTheFormatSays()
    {
        FeedWriter writer(m_name);
        QCOMPARE(writer.open({kSize, 30000, 1001}), QString());
        for (const char value : {'a', 'b', 'c', 'd'})
            writeFrame(writer, value);
        QCOMPARE(bytes(0, 22), m_tag + '\0');
        QCOMPARE(bytes(0x8C, 8).toHex(), QByteArray("0300000000000000"));
        for (int slot = 0; slot < 3; ++slot) {
            const int record = 0x94 + 56 * slot;
            const int stamp = slot == 0 ? 4 : slot + 1;
            QCOMPARE(number(record), quint64(stamp));
            QCOMPARE(bytes(int(number(record + 0x10)), kBytes),
                     QByteArray(kBytes, char('a' + stamp - 1)));
            QCOMPARE(bytes(record + 0x18, 10).toHex(), QByteArray("0400020010003075e903"));
            QVERIFY(isReady(slot));
        }
        writer.nextFrame(); // its pixels change from here on
        QVERIFY(isReady(0) && !isReady(1));
        QCOMPARE(number(0x94 + 56), quint64(5));
    }

    void aBlockThatCannotBeUsedIsToldWithTheRemedy_data()
    {
        QTest::addColumn<QByteArray>("tag");
        QTest::addColumn<int>("slotCount");
        QTest::addColumn<quint64>("stamp");
        QTest::addColumn<int>("length");
        QTest::addColumn<QString>("wrong");
        const auto row = [](const char *name, const QByteArray &tag, int slotCount, quint64 stamp,
                            int length, const char *wrong) {
            QTest::newRow(name) << tag << slotCount << stamp << length << wrong;
        };
        row("another version", "QXLT_Shared_Memory1.2", 3, 1, 4096, "no live feed");
        row("tag goes on", m_tag + '1', 3, 1, 4096, "no live feed");
        row("ends in the header", m_tag, 3, 1, 0x93, "no live feed");
        row("no records", m_tag, 0, 1, 4096, "too small");
        row("65535 records", m_tag, 65535, 1, 4096, "too small");
        row("a byte short", m_tag, 3, 1, 0x94 + 3 * 56 + 3 * kBytes - 1, "too small");
        row("just large enough", m_tag, 3, 1, 0x94 + 3 * 56 + 3 * kBytes, "");
        row("highest stamp", m_tag, 3, ~quint64(0), 4096, "used up");
        row("not sized yet", m_tag, 3, 0, 0, "");
    }
    void aBlockThatCannotBeUsedIsToldWithTheRemedy()
    {
        QFETCH(QByteArray, tag);
        QFETCH(int, slotCount);
        QFETCH(quint64, stamp);
        QFETCH(int, length);
        QFETCH(QString, wrong);
        make(tag, slotCount, {stamp, 0, 0}, length);
        const QString said = FeedWriter(m_name).open({kSize});
        QVERIFY2(said.isEmpty() == wrong.isEmpty() && said.contains(wrong), qPrintable(said));
        QCOMPARE(said.contains(QStringLiteral("orbix-feed --remove")), !wrong.isEmpty());
    }

    void aWriterGoesOnWithTheNewestRecord()
    {
        const quint64 large = 1ull << 40;
        const std::pair<Stamps, int> rings[] = {{{4, 5, 6}, 2},
                                                {{7, 5, 6}, 0},
                                                {{large, large + 3, 9, 8, 1}, 1},
                                                {{0, 0, 0}, 0}};
        for (const auto &[stamps, slot] : rings) {
            make(m_tag, stamps.size(), stamps, 4096);
            FeedWriter writer(m_name);
            QCOMPARE(writer.open({kSize}), QString());
            QVERIFY(!writer.takeRejection()); // of the writer before
            for (int i = 0; i < stamps.size(); ++i)
                QVERIFY(!isReady(i)); // its pixels may be gone
            writeFrame(writer, 'a');
            QCOMPARE(int(bytes(0x8C, 1).at(0)), stamps.size());
            QCOMPARE(number(0x94 + slot * 56),
                     *std::max_element(stamps.cbegin(), stamps.cend()) + 1);
            QVERIFY(isReady(slot));
        }
    }

    void framesOfAnotherSizeAreRemarked()
    {
        make(m_tag, 3, {1, 2, 3}, 4096);
        for (const bool isOther : {true, false}) {
            FeedWriter writer(m_name);
            QCOMPARE(writer.open({QSize(8, 2)}), QString());
            QCOMPARE(writer.remark().contains(QStringLiteral("4x2")), isOther);
            QCOMPARE(writer.remark().isEmpty(), !isOther);
            for (int i = 0; i < 3; ++i)
                writeFrame(writer, 'a');
        }
    }

    void aBlockHasOneWriterAtATime()
    {
        {
            FeedWriter first(m_name);
            QCOMPARE(first.open({kSize}), QString());
            QVERIFY(FeedWriter(m_name).open({kSize}).startsWith(QStringLiteral("Another writer")));
        }
        QCOMPARE(FeedWriter(m_name).open({kSize}), QString());
    }

    void aBlockThatIsCutShortIsTold()
    {
        FeedWriter writer(m_name);
        QCOMPARE(writer.open({QSize(64, 64)}), QString());
        uchar *frame = writer.nextFrame();
        m_block.resize(4096); // the records stay, the pixels go
        QFile zero(QStringLiteral("/dev/zero"));
        QVERIFY(zero.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
        QVERIFY(::read(zero.handle(), frame + 8192, 1) < 0 && errno == EFAULT);
        m_block.resize(0);
        QVERIFY(!writer.publish() && !writer.nextFrame() && !writer.takeRejection());
    }

    void aRejectionIsToldOnceExceptTheFirstOfANewBlock()
    {
        for (const bool isNew : {true, false}) {
            FeedWriter writer(m_name);
            QCOMPARE(writer.open({kSize}), QString());
            for (const bool isTold : {!isNew, true}) {
                write(0x90, QByteArray(1, 1));
                QCOMPARE(writer.takeRejection(), isTold);
                QVERIFY(!writer.takeRejection());
            }
        }
    }

    void sizesThatAFeedCannotHaveAreTold()
    {
        for (const QSize size :
             {QSize(0, 1), QSize(16384, 1), QSize(1, 65536), QSize(16383, 65535)})
            QVERIFY(!FeedWriter(m_name).open({size}).isEmpty() && !m_block.exists());
    }

    void optionsAreReadOrRefused()
    {
        const QSize none;
        const std::tuple<const char *, QSize, QPoint> options[] = {
            {"3840x1920", {3840, 1920}, {}},
            {"0x1920", none, {}},
            {"4294967297x2", none, {}},
            {"4x2\n", none, {}},
            {"30", none, {30, 1}},
            {"30000/1001", none, {30000, 1001}},
            {"30/0", none, {}},
            {"65536", none, {}},
            {"30/", none, {}},
            {"-30", none, {}},
        };
        for (const auto &[text, size, rate] : options) {
            const QString option = QString::fromLatin1(text);
            QCOMPARE(FeedOptions::parseSize(option).value_or(none), size);
            const auto read = FeedOptions::parseRate(option).value_or(FeedOptions::Rate{0, 0});
            QCOMPARE(QPoint(read.numerator, read.denominator), rate);
        }
    }

    void framesGoOutNoSoonerThanTheRateSays()
    {
        using namespace std::chrono_literals;
        const FeedPace::Time start{};
        FeedPace pace({100, 1});
        const std::chrono::milliseconds times[][2] = {
            {0ms, 0ms},   {1ms, 10ms},  {19ms, 20ms}, // on time: ready, due
            {75ms, 75ms}, {76ms, 85ms}, {77ms, 95ms}, // late, and none hurries
        };
        for (const auto &time : times)
            QVERIFY(pace.due(start + time[0]) == start + time[1]);
        FeedPace fraction({30000, 1001});
        for (int i = 0; i < 30000; ++i)
            fraction.due(start);
        QVERIFY(std::chrono::abs(fraction.due(start) - start - 1001s) < 1ms);
    }

private:
    QByteArray bytes(int at, int count)
    {
        m_block.open(QIODevice::ReadOnly);
        const QByteArray all = m_block.readAll();
        m_block.close();
        return all.mid(at, count);
    }
    quint64 number(int at) { return qFromLittleEndian<quint64>(bytes(at, 8).constData()); }
    bool isReady(int slot) { return bytes(0x94 + 56 * slot + 0x30, 2) == QByteArray("\1\0", 2); }
    void write(int at, const QByteArray &what)
    {
        m_block.open(QIODevice::ReadWrite);
        m_block.seek(at);
        m_block.write(what);
        m_block.close();
    }
    /// As another writer left it: rejected, all records ready, with frames of 4x2.
    void make(const QByteArray &tag, int slotCount, const Stamps &stamps, qint64 length)
    {
        QByteArray all = tag.leftJustified(0x94, '\0');
        qToLittleEndian(quint16(slotCount), all.data() + 0x8C);
        all[0x90] = 1;
        for (const quint64 stamp : stamps) {
            QByteArray record(56, '\0');
            record[0x18] = 4;
            record[0x1A] = 2;
            record[0x30] = 1;
            qToLittleEndian(stamp, record.data());
            all += record;
        }
        write(0, all);
        m_block.resize(length);
    }

    const QByteArray m_tag = "QXLT_Shared_Memory1.3";
    const QByteArray m_name = "orbix-feed-" + QByteArray::number(qint64(::getpid()));
    QFile m_block{QString::fromLatin1("/dev/shm/" + m_name)};
};

QTEST_GUILESS_MAIN(tst_FeedWriter)
#include "tst_FeedWriter.moc"
