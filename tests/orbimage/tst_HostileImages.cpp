#include "Garbage.h"
#include "ImageDef.h"
#include "ImageFiles.h"
#include "OrbImageLibrary.h"
#include "WarningsFail.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <sys/resource.h>
#include <sys/stat.h>
#include <cstdio>
#include <functional>

using namespace ImageFiles;

namespace {

constexpr char kDescribe[] = "--describe";
constexpr long kMostMemory = 64L * 1024; // KiB for one description
constexpr int kDeadlineMs = 20000;
constexpr quint16 kExifDirectory = 0x8769;
constexpr quint16 kGpsDirectory = 0x8825;

long largestMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

/// Describes a good file and then another; prints by how many KiB the process grew at the second
/// and its size.
int describe(const QString &good, const QString &path)
{
    OrbImageLibrary::start();
    ImageDef *image = nullptr;
    ImageDef::open(good, &image, false);
    const long before = largestMemory();
    ImageDef::open(path, &image, false);
    std::printf("%ld %d %d\n", largestMemory() - before, image ? image->width() : 0,
                image ? image->height() : 0);
    OrbImageLibrary::stop();
    return 0;
}

/// CRC-32 as PNG has it (ISO 3309).
quint32 crc(const QByteArray &bytes)
{
    quint32 value = 0xffffffff;
    for (const char byte : bytes) {
        value ^= uchar(byte);
        for (int bit = 0; bit < 8; ++bit)
            value = value >> 1U ^ (value & 1U ? 0xedb88320 : 0);
    }
    return ~value;
}

QByteArray bigEndian(quint32 value)
{
    return TiffWriter(true).number(value, 4);
}

QByteArray pngChunk(const QByteArray &name, const QByteArray &content)
{
    return bigEndian(quint32(content.size())) + name + content + bigEndian(crc(name + content));
}

QByteArray png(quint32 width, quint32 height, const QByteArray &chunks)
{
    return "\x89PNG\r\n\x1a\n"
        + pngChunk("IHDR", bigEndian(width) + bigEndian(height) + QByteArray("\x08\2\0\0\0", 5))
        + chunks + pngChunk("IDAT", qCompress(QByteArray(64, '\0')).mid(4)) + pngChunk("IEND", {});
}

/// A PNG with text that is long once it is unpacked.
QByteArray pngOfText(const QByteArray &chunk, const QByteArray &start, const QByteArray &text)
{
    return png(8, 8, pngChunk(chunk, start + qCompress(text, 9).mid(4)));
}

QByteArray xmp(const QByteArray &content, const QByteArray &before = {})
{
    return before + "<x:xmpmeta xmlns:x='adobe:ns:meta/'>" + content + "</x:xmpmeta>";
}

QByteArray pngOfXmp(const QByteArray &text)
{
    return png(8, 8, pngChunk("iTXt", QByteArray("XML:com.adobe.xmp\0\0\0\0\0", 22) + text));
}

/// Entities that grow tenfold with each level.
QByteArray growingEntities()
{
    QByteArray types = "<!DOCTYPE x [<!ENTITY e0 'xxxxxxxxxx'>";
    for (int level = 1; level < 10; ++level) {
        const QByteArray below = "&e" + QByteArray::number(level - 1) + ';';
        types += "<!ENTITY e" + QByteArray::number(level) + " '" + below.repeated(10) + "'>";
    }
    return xmp("&e9;", types + "]>");
}

/// A TIFF block of one directory that `items` gives.
QByteArray tiff(const std::function<QVector<TiffItem>(TiffWriter &)> &items, quint32 next = 0)
{
    TiffWriter writer(false);
    return writer.finished(writer.addDirectory(items(writer), next));
}

QByteArray tiffOfSize(quint16 side)
{
    return tiff([side](TiffWriter &w) {
        return QVector<TiffItem>{w.shorts(256, {side}),    w.shorts(257, {side}),
                                 w.shorts(258, {8, 8, 8}), w.shorts(262, {2}),
                                 w.pointer(273, 8),        w.shorts(277, {3}),
                                 w.pointer(279, 100)};
    });
}

/// A TIFF with IPTC whose data sets Exiv2 compares each with each.
QByteArray tiffOfIptc(int count)
{
    const QByteArray repeatable("\x1c\2\x19\0\0", 5);
    const QByteArray single("\x1c\2\x5a\0\0", 5);
    return tiff([&](TiffWriter &w) {
        return QVector<TiffItem>{w.shorts(256, {8}), w.shorts(257, {8}),
                                 w.bytes(0x83BB,
                                         repeatable.repeated(count) + single.repeated(count))};
    });
}

/// Four directories, each with `count` items of unknown tags that all have the same `size` bytes.
QByteArray manyItems(int count, quint32 size)
{
    TiffWriter writer(true);
    QVector<TiffItem> items{writer.shorts(256, {8}), writer.shorts(257, {8})};
    for (int i = 0; i < count; ++i) {
        TiffItem item = writer.pointer(quint16(0xC800 + i), 8);
        item.type = 7;
        item.count = size;
        items.append(item);
    }
    const quint32 gps = writer.addDirectory(items);
    const quint32 exif = writer.addDirectory(items);
    const quint32 next = writer.addDirectory(items);
    const quint32 first =
        writer.addDirectory(items
                                + QVector<TiffItem>{writer.pointer(kExifDirectory, exif),
                                                    writer.pointer(kGpsDirectory, gps)},
                            next);
    if (writer.end() < size + 8)
        writer.add(QByteArray(int(size + 8 - writer.end()), '\0'));
    return writer.finished(first);
}

/// EXIF whose maker's note stands in the block as given.
QByteArray exifWithNote(const QByteArray &maker, const QByteArray &note)
{
    TiffWriter writer(true);
    const quint32 start = writer.add(note);
    return cameraExif(writer, maker, start, writer.end());
}

QByteArray exifWithPointers(quint32 exif, quint32 next)
{
    return tiff([exif](
                    TiffWriter &w) { return QVector<TiffItem>{w.pointer(kExifDirectory, exif)}; },
                next);
}

bool hasSanitizer()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#else
    return false;
#endif
}

} // namespace

/// Files that mean harm, or were cut and changed on their way.
class tst_HostileImages : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { OrbImageLibrary::stop(); }

    void aCutFileIsNothingOrTheWhole_data();
    void aCutFileIsNothingOrTheWhole();
    void changedExifLeavesThePicture();
    void aDescriptionCostsLittle_data();
    void aDescriptionCostsLittle();
    void whatAHeaderRefusesNobodyElseTakes();
    void whatIsNoFileIsNothing();

private:
    QString newPath() { return m_folder.filePath(QString::number(++m_files) + m_suffix); }

    QVector<long> describedByChild(const QString &path) const;

    QTemporaryDir m_folder;
    QString m_suffix = QStringLiteral(".jpg");
    int m_files = 0;
    QString m_good;
    QByteArray m_jpeg;
};

void tst_HostileImages::initTestCase()
{
    OrbImageLibrary::start();
    m_good = m_folder.filePath(QStringLiteral("good.jpg"));
    QCOMPARE(run(QStringLiteral("convert"),
                 {QStringLiteral("-size"), QStringLiteral("64x32"),
                  QStringLiteral("plasma:red-blue"), m_good}),
             QString());
    m_jpeg = read(m_good);
}

/// What describe() prints; nothing if it does not end well.
QVector<long> tst_HostileImages::describedByChild(const QString &path) const
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {QLatin1String(kDescribe), m_good, path});
    if (!child.waitForFinished(kDeadlineMs) || child.exitStatus() != QProcess::NormalExit
        || child.exitCode() != 0)
        return {};
    QVector<long> numbers;
    const QList<QByteArray> words = child.readAll().simplified().split(' ');
    for (const QByteArray &word : words)
        numbers.append(word.toLong());
    return numbers;
}

void tst_HostileImages::aCutFileIsNothingOrTheWhole_data()
{
    QTest::addColumn<QString>("suffix");
    for (const char *const suffix : {".jpg", ".png", ".tif", ".psd"})
        QTest::newRow(suffix) << QString::fromLatin1(suffix);
}

void tst_HostileImages::aCutFileIsNothingOrTheWhole()
{
    QFETCH(QString, suffix);
    m_suffix = suffix;
    const QString whole = newPath();
    QCOMPARE(run(QStringLiteral("convert"), {m_good, whole}), QString());
    QCOMPARE(run(QStringLiteral("exiftool"),
                 {QStringLiteral("-Make=Maker"), QStringLiteral("-XMP:Title=Title"),
                  QStringLiteral("-ISO=100"), QStringLiteral("-GPSLatitude=1"), whole}),
             QString());
    if (suffix == QLatin1String(".jpg"))
        QVERIFY(write(whole, withExif(read(whole), sphericalExif(1, 2, true))));
    const QByteArray content = read(whole);
    int described = 0;
    for (int size = 0; size < content.size(); size += size < 2048 ? 1 : 97) {
        const QString path = newPath();
        QVERIFY(write(path, content.left(size)));
        ImageDef *image = nullptr;
        if (ImageDef::open(path, &image, false)) {
            QCOMPARE(QSize(image->width(), image->height()), QSize(64, 32));
            ++described;
        }
        QVERIFY(QFile::remove(path));
    }
    QVERIFY(described > 0 && described < content.size());
}

void tst_HostileImages::changedExifLeavesThePicture()
{
    m_suffix = QStringLiteral(".jpg");
    for (const QByteArray &exif :
         {sphericalExif(1, 2, true), sphericalExif(1, 2, false),
          nikonExif("\x26\x30\x10\x10\x30\x30", 50, true), olympusExif("LENSES", 50, false)}) {
        for (int i = 0; i < exif.size(); ++i) {
            for (const int mask : {0xff, 0x80, 0x01}) {
                QByteArray changed = exif;
                changed[i] = char(changed.at(i) ^ mask);
                const QString path = newPath();
                QVERIFY(write(path, withExif(m_jpeg, changed)));
                ImageDef *image = nullptr;
                QVERIFY(ImageDef::open(path, &image, false));
                QCOMPARE(QSize(image->width(), image->height()), QSize(64, 32));
                QVERIFY(QFile::remove(path));
            }
        }
    }
}

void tst_HostileImages::aDescriptionCostsLittle_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isPicture"); // must have a description

    const auto row = [](const char *name, const QByteArray &content, bool isPicture = false) {
        QTest::newRow(name) << content << isPicture;
    };
    const auto exifRow = [&](const char *name, const QByteArray &exif) {
        row(name, withExif(m_jpeg, exif), true);
    };
    exifRow("directory that follows itself", exifWithPointers(1000, 8));
    exifRow("EXIF directory that is the first", exifWithPointers(8, 0));
    exifRow("places past the end", exifWithPointers(0xfffffff0, 0xfffffffe));
    exifRow("note past the end", exifWithNote("RICOH", {}));
    const QByteArray ricoh("Ricoh\0\0\0", 8);
    TiffWriter loop(true);
    const quint32 start = loop.end();
    loop.addDirectory({loop.pointer(0x4001, start + 8)}, start + 8, ricoh);
    exifRow("spherical directory that is its own", cameraExif(loop, "RICOH", start, loop.end()));
    for (const auto &head : {ricoh, QByteArray("Nikon\0\2\x10\0\0MM\0*\0\0\0\x08", 18),
                             QByteArray("OLYMPUS\0II\3\0", 12), QByteArray("Panasonic\0\0\0", 12),
                             QByteArray("SONY DSC \0\0\0", 12), QByteArray("AOC\0MM", 6),
                             QByteArray("\0\x10", 2), QByteArray()}) {
        for (const char *const maker : {"RICOH", "Canon", "Minolta", "SAMSUNG"})
            exifRow(qPrintable(QLatin1String(maker) + QLatin1String(" noise after ")
                               + QString::fromLatin1(head.toPercentEncoding())),
                    exifWithNote(maker, head + garbage(2000)));
    }
    exifRow("1000 items of the same 60 KB", manyItems(250, 60000));
    exifRow("5000 items", manyItems(1250, 60000));
    row("1000 items of the same 1 MB of a TIFF", manyItems(250, 1000000));
    row("4000 items of the same 100 KB of a TIFF", manyItems(1000, 100000));
    row("100000 items of a TIFF", manyItems(25000, 4));

    constexpr quint16 kSide = 65535;
    row("huge PNG", png(kSide, kSide, {}), true);
    row("huge TIFF", tiffOfSize(kSide), true);
    QByteArray jpeg = m_jpeg;
    jpeg.replace(jpeg.indexOf("\xff\xc0") + 5, 4, "\xff\xff\xff\xff");
    row("huge JPEG", jpeg);
    row("huge PSD",
        QByteArray("8BPS\0\1\0\0\0\0\0\0\0\3", 14) + bigEndian(kSide) + bigEndian(kSide)
            + QByteArray("\0\x08\0\3\0\0\0\0\0\0\0\0\0\0", 14),
        true);
    row("huge BMP",
        QByteArray("BM\0\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\xff\xff\0\0\xff\xff\0\0\1\0\x18\0", 30)
            + QByteArray(100, '\0'));
    row("huge GIF",
        QByteArray("GIF89a\xff\xff\xff\xff\0\0\0,\0\0\0\0\xff\xff\xff\xff\0\x08", 24)
            + QByteArray(100, '\1'));
    row("huge HDR", "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 65535 +X 65535\n");
    row("huge WebP",
        QByteArray("RIFF\x16\0\0\0WEBPVP8L\x0a\0\0\0\x2f\xff\xff\xff\x0f\0\0\0\0\0", 30));

    row("PNG profile that grows",
        pngOfText("iCCP", QByteArray("p\0\0", 3), QByteArray(100 << 20, 'x')), true);
    row("PNG text that grows",
        pngOfText("zTXt", QByteArray("Raw profile type exif\0\0", 23), QByteArray(100 << 20, '1')),
        true);
    row("long XMP", pngOfXmp(xmp(QByteArray(20 << 20, ' '))), true);
    QByteArray properties;
    for (int i = 0; i < 60000; ++i)
        properties += "<a:p" + QByteArray::number(i) + "/>";
    const QByteArray rdf("<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>");
    row("XMP of many properties",
        pngOfXmp(xmp(rdf + "<rdf:Description rdf:about='' xmlns:a='a:'>" + properties
                     + "</rdf:Description></rdf:RDF>")),
        true);
    row("IPTC of many data sets", tiffOfIptc(80000));
    row("XMP of growing entities", pngOfXmp(growingEntities()), true);
    row("deep XMP", pngOfXmp(xmp(QByteArray("<a>").repeated(1 << 20))), true);
    const QByteArray item("<rdf:Description><rdf:Description xmlns:a='a:' ><a:a>");
    row("deep RDF", pngOfXmp(xmp(rdf + item.repeated(100000))), true);
}

void tst_HostileImages::aDescriptionCostsLittle()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isPicture);
    m_suffix = QStringLiteral(".image");
    const QString path = newPath();
    QVERIFY(write(path, content));
    const QVector<long> told = describedByChild(path);
    QCOMPARE(told.size(), 3);
    if (isPicture)
        QVERIFY(told.at(1) > 0);
    if (hasSanitizer())
        QSKIP("A sanitizer keeps what is freed, so that memory tells nothing");
    QVERIFY2(told.at(0) <= kMostMemory, qPrintable(QString::number(told.at(0))));
}

void tst_HostileImages::whatAHeaderRefusesNobodyElseTakes()
{
    const QString cmyk = m_folder.filePath(QStringLiteral("cmyk.jpg"));
    QCOMPARE(run(QStringLiteral("convert"),
                 {m_good, QStringLiteral("-colorspace"), QStringLiteral("CMYK"), cmyk}),
             QString());
    const QByteArray jpeg = read(cmyk);
    const auto pngOfPalette = [](quint32 height, char depth) {
        QByteArray bytes = png(8, height, {});
        bytes.replace(24, 2, QByteArray(1, depth) + '\3');
        bytes.replace(29, 4, bigEndian(crc(bytes.mid(12, 17))));
        return bytes;
    };
    for (const QByteArray &content :
         {jpeg.left(jpeg.indexOf("\xff\xda")), pngOfPalette(0, 8), pngOfPalette(8, 99)}) {
        const QString path = newPath();
        QVERIFY(write(path, content));
        ImageDef *image = nullptr;
        QVERIFY(!ImageDef::open(path, &image, false));
    }
}

void tst_HostileImages::whatIsNoFileIsNothing()
{
    const QString pipe = m_folder.filePath(QStringLiteral("pipe.jpg"));
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    const QString empty = m_folder.filePath(QStringLiteral("empty.jpg"));
    QVERIFY(write(empty, {}));
    const QString link = m_folder.filePath(QStringLiteral("link.jpg"));
    QVERIFY(QFile::link(link, link));
    QStringList paths{pipe,
                      empty,
                      link,
                      m_folder.path(),
                      m_folder.filePath(QStringLiteral("no.jpg")),
                      QStringLiteral("/dev/zero"),
                      QString()};
    const QString closed = m_folder.filePath(QStringLiteral("closed.jpg"));
    QVERIFY(write(closed, m_jpeg));
    QVERIFY(QFile::setPermissions(closed, {}));
    if (!QFileInfo(closed).isReadable()) // as it is to the superuser
        paths << closed;
    for (const QString &path : qAsConst(paths))
        QVERIFY2(describedByChild(path).mid(1) == QVector<long>({0, 0}), qPrintable(path));
}

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String(kDescribe))
        return describe(arguments.value(2), arguments.value(3));
    tst_HostileImages test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_HostileImages.moc"
