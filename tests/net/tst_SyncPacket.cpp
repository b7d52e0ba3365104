#include "SyncPacket.h"

#include "Garbage.h"
#include "WarningsFail.h"

#include <QtTest>

namespace {

/// The binary form of samplePacket().
constexpr char kBinarySample[] =
    "71626a7301000000d80000000f000000bc0000009b0200000200696403006f78730000001205000005007069746368"
    "00000000a09999b93f1ae105000800706f736974696f6e0000920900000400726f6c6c000000000000000000003a00"
    "00000500737461746500930d0000030075726c0000001c000000660069006c0065003a002f002f002f0043003a002f"
    "006d0065006400690061002f00440438043b044c043c04200031002e006d0070003400921600000300796177000000"
    "000000000000f83f0c0000001c00000030000000400000005400000060000000a8000000";

/// Latin-1 text and negative numbers, as another packet.
constexpr char kLatinSample[] =
    "71626a7301000000ac0000000f000000900000009b0200000200696403006f78730000001205000005007069746368"
    "00000000a09999b93ffaffffff0800706f736974696f6e0000920900000400726f6c6c000000000000000000003a00"
    "000005007374617465009b0d0000030075726c000000130066696c653a2f2f2f6d656469612ffc2e6d703400000"
    "0baffffff03007961770000000c0000001c0000003000000040000000540000006000000084000000";

SyncPacket samplePacket()
{
    SyncPacket packet;
    packet.id = QStringLiteral("oxs");
    packet.yaw = 1.5F;
    packet.pitch = 0.1F;
    packet.url = QStringLiteral("file:///C:/media/фильм 1.mp4");
    packet.state = 1;
    packet.position = 12040;
    return packet;
}

QByteArray binarySample()
{
    return QByteArray::fromHex(kBinarySample);
}

/// The sample with one little-endian word replaced.
QByteArray damaged(int place, quint32 word)
{
    QByteArray bytes = binarySample();
    qToLittleEndian(word, bytes.data() + place);
    return bytes;
}

/// A document of `count` members that all are the same bytes: the name "a" and a text of 60 kB.
QByteArray sharedMembers(quint32 count)
{
    constexpr quint32 letters = 60000;
    constexpr quint32 table = 12 + 4 + 4 + 2 + letters + 2;
    QByteArray bytes("qbjs");
    const auto add = [&bytes](quint32 word) {
        word = qToLittleEndian(word);
        bytes.append(reinterpret_cast<const char *>(&word), sizeof word);
    };
    for (const quint32 word : {1U, table + 4 * count, count << 1U | 1U, table,
                               3U | 1U << 3U | 1U << 4U | 20U << 5U, 1U | quint32('a') << 16U})
        add(word);
    bytes.append(char(letters & 0xffU)).append(char(letters >> 8U));
    bytes.append(QByteArray(letters + 2, 'x'));
    for (quint32 i = 0; i < count; ++i)
        add(12);
    return bytes;
}

} // namespace

class tst_SyncPacket : public WarningsFail
{
    Q_OBJECT

private slots:
    void aPacketIsWrittenAsItsFixture();
    void aPacketIsReadFromItsFixture();
    void foreignTextIsReadAsFarAsItMakesSense_data();
    void foreignTextIsReadAsFarAsItMakesSense();
    void textWithoutSenseIsRefused_data();
    void textWithoutSenseIsRefused();
    void unsoundBinaryIsRefused_data();
    void unsoundBinaryIsRefused();
};

void tst_SyncPacket::aPacketIsWrittenAsItsFixture()
{
    QCOMPARE(samplePacket().toText(),
             QByteArray("{\"id\":\"oxs\",\"pitch\":0.10000000149011612,\"position\":12040,"
                        "\"roll\":0,\"state\":1,\"url\":\"file:///C:/media/фильм 1.mp4\","
                        "\"yaw\":1.5}"));
    QCOMPARE(samplePacket().toBinary().toHex(), QByteArray(kBinarySample));
    SyncPacket latin = samplePacket();
    latin.yaw = -3;
    latin.position = -1;
    latin.url = QStringLiteral("file:///media/ü.mp4");
    QCOMPARE(latin.toBinary().toHex(), QByteArray(kLatinSample));
    QCOMPARE(SyncPacket().toText(),
             QByteArray("{\"id\":\"\",\"pitch\":0,\"position\":0,\"roll\":0,\"state\":0,"
                        "\"url\":\"\",\"yaw\":0}"));
}

void tst_SyncPacket::aPacketIsReadFromItsFixture()
{
    const SyncPacket sample = samplePacket();
    for (const auto &packet : {SyncPacket::fromBinary(binarySample()),
                               SyncPacket::fromBinary(binarySample() + "behind it"),
                               SyncPacket::fromText(sample.toText())}) {
        QVERIFY(packet);
        QCOMPARE(packet->id, sample.id);
        QCOMPARE(packet->yaw, 1.5F);
        QCOMPARE(packet->pitch, 0.1F);
        QCOMPARE(packet->roll, 0.F);
        QCOMPARE(packet->url, sample.url);
        QCOMPARE(packet->state, 1);
        QCOMPARE(packet->position, 12040);
    }
}

void tst_SyncPacket::foreignTextIsReadAsFarAsItMakesSense_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<float>("yaw");
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("url");
    const auto row = [](const char *name, const char *text, float yaw, int position,
                        const char *url) {
        QTest::newRow(name) << QByteArray(text) << yaw << position << QString::fromUtf8(url);
    };
    row("other members are of no account", R"({"x":"y","yaw":2})", 2, 0, "");
    row("brackets in a name", R"({"url":"file:///a\"[1] {b.mp4"})", 0, 0, "file:///a\"[1] {b.mp4");
    row("white space", " {\n\"yaw\" : 2 }\n", 2, 0, "");
    row("numbers as texts", R"({"yaw":"2.5","position":"70"})", 2.5F, 70, "");
    row("types that are none", R"({"yaw":"left","position":"","url":null})", 0, 0, "");
    row("null", R"({"yaw":null,"position":null,"url":null})", 0, 0, "");
    row("the last of two", R"({"yaw":1,"yaw":2})", 2, 0, "");
    row("the greatest float", R"({"yaw":3.4028234663852886e38})", 3.4028234663852886e38F, 0, "");
    row("the greatest position", R"({"position":2147483647})", 0, 2147483647, "");
    row("a part of a millisecond", R"({"position":1.6})", 0, 2, "");
}

void tst_SyncPacket::foreignTextIsReadAsFarAsItMakesSense()
{
    QFETCH(QByteArray, text);
    const auto packet = SyncPacket::fromText(text);
    QVERIFY(packet);
    QTEST(packet->yaw, "yaw");
    QTEST(packet->position, "position");
    QTEST(packet->url, "url");
}

void tst_SyncPacket::textWithoutSenseIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray deep = R"({"id":)" + QByteArray(20000, '[') + QByteArray(20000, ']') + '}';
    const QPair<const char *, QByteArray> rows[] = {
        {"nothing", {}},
        {"no document", "{\"id\":\"oxs\""},
        {"noise", garbage(1400)},
        {"the binary form", binarySample()},
        {"an array", "[1,2]"},
        {"no member", "{}"},
        {"deep", deep},
        {"an array as a member", R"({"yaw":1,"x":[]})"},
        {"an object as a member", R"({"yaw":1,"x\\":{}})"},
        {"too large for a float", R"({"pitch":3.5e38})"},
        {"too large for a double", R"({"roll":1e999})"},
        {"infinite", R"({"yaw":"inf"})"},
        {"not a number", R"({"yaw":"nan"})"},
        {"a position out of range", R"({"position":2147483648})"},
        {"a url longer than any", R"({"url":")" + QByteArray(16385, 'a') + "\"}"},
        {"a state out of range", R"({"state":-1e10})"},
    };
    for (const auto &[name, text] : rows)
        QTest::newRow(name) << text;
}

void tst_SyncPacket::textWithoutSenseIsRefused()
{
    QFETCH(QByteArray, text);
    QVERIFY(!SyncPacket::fromText(text));
}

void tst_SyncPacket::unsoundBinaryIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    // Words of the sample: 0 tag, 4 version, 8 size, 12 count, 16 table, 20 the first member.
    const quint32 text = 3;
    const quint32 latin = 1U << 3U;
    const quint32 latinName = 1U << 4U;
    const QPair<const char *, QByteArray> rows[] = {
        {"nothing", {}},
        {"a header alone", binarySample().left(19)},
        {"another tag", damaged(0, 0x12345678)},
        {"another version", damaged(4, 2)},
        {"larger than the datagram", damaged(8, 0xd9)},
        {"a size that runs over", damaged(8, 0xffffffff)},
        {"an array", damaged(12, 14)},
        {"more members than bytes", damaged(12, 0xffffffff)},
        {"a few more members than bytes", damaged(12, 20U << 1U | 1U)},
        {"the table in the header", damaged(16, 8)},
        {"the table behind the end", damaged(16, 0xfffffffc)},
        {"a member behind the end", damaged(20 + 0xbc - 12, 0xfffffffc)},
        {"a long name", damaged(24, 0x6469ffff)},
        {"a long name of wide letters", damaged(20, text | latin | 20U << 5U)},
        {"a text behind the end", damaged(20, text | latin | latinName | 0x7ffffffU << 5U)},
        {"a wide text without end", damaged(20, text | latinName | 8U << 5U)},
        {"an array as a member", damaged(20, 4 | latinName | 20U << 5U)},
        {"an object as a member", damaged(20, 5 | latinName | 20U << 5U)},
        {"members that share their bytes", sharedMembers(1000)},
        {"not a number",
         QByteArray::fromHex(
             QByteArray(kBinarySample).replace("000000000000f83f", "000000000000f87f"))},
        {"text form", samplePacket().toText()},
    };
    for (const auto &[name, bytes] : rows)
        QTest::newRow(name) << bytes;
}

void tst_SyncPacket::unsoundBinaryIsRefused()
{
    QVERIFY(SyncPacket::fromBinary(binarySample()));
    QVERIFY(SyncPacket::fromBinary(sharedMembers(1)));
    QFETCH(QByteArray, bytes);
    QVERIFY(!SyncPacket::fromBinary(bytes));
}

QTEST_GUILESS_MAIN(tst_SyncPacket)
#include "tst_SyncPacket.moc"
