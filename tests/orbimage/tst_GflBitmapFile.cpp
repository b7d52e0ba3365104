#include "gfl.h"

#include "AllocationBudget.h"
#include "Garbage.h"
#include "WarningsFail.h"

#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <csignal>
#include <cstring>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int kNone = 1;
constexpr int kLzw = 5;

/// A TIFF file whose directory stands before its only strip.
struct TiffFile
{
    quint32 width = 16;
    quint32 height = 16;
    int components = 1;
    int bits = 8;
    int compression = kNone;

    QByteArray withPixels(const QByteArray &pixels) const
    {
        QByteArray bytes("II*\0\10\0\0\0", 8);
        const auto put = [&bytes](auto value) {
            const auto little = qToLittleEndian(value);
            bytes.append(reinterpret_cast<const char *>(&little), sizeof little);
        };
        const std::array<std::array<quint32, 3>, 10> fields = {{
            {256, 4, width},
            {257, 4, height},
            {258, 3, quint32(bits)},
            {259, 3, quint32(compression)},
            {262, 3, components == 1 ? 1U : 2U},
            {273, 4, 8 + 2 + 10 * 12 + 4},
            {277, 3, quint32(components)},
            {278, 4, height},
            {279, 4, quint32(pixels.size())},
            {339, 3, bits == 32 ? 3U : 1U},
        }};
        put(quint16(fields.size()));
        for (const auto &field : fields) {
            put(quint16(field[0]));
            put(quint16(field[1]));
            put(quint32(1));
            put(field[2]);
        }
        put(quint32(0));
        return bytes + pixels;
    }
};

struct Pixels
{
    std::vector<unsigned char> bytes;
    GflBitmap bitmap;

    Pixels(unsigned type, int bits, int width, int height, int padding = 1)
    {
        const int line = width * gflComponents(type) * bits / 8;
        bitmap.type = type;
        bitmap.width = width;
        bitmap.height = height;
        bitmap.bitsPerComponent = bits;
        bitmap.bytesPerLine = (std::size_t(line) + std::size_t(padding) - 1) / std::size_t(padding)
            * std::size_t(padding);
        const QByteArray content = garbage(int(bitmap.bytesPerLine) * height);
        bytes.assign(content.begin(), content.end());
        bitmap.data = bytes.data();
    }
};

QByteArray lines(const GflBitmap &bitmap)
{
    const int length = bitmap.width * gflComponents(bitmap.type) * bitmap.bitsPerComponent / 8;
    QByteArray all;
    for (int y = 0; y < bitmap.height; ++y)
        all.append(reinterpret_cast<const char *>(bitmap.line(y)), length);
    return all;
}

/// The error's value, so that a test says which.
int loaded(const QString &path, GflBitmap *bitmap)
{
    return int(gflLoadBitmapUTF8(path.toStdString(), bitmap));
}

} // namespace

class tst_GflBitmapFile : public WarningsFail
{
    Q_OBJECT

private slots:
    void everyBitmapComesBackAsItWas_data();
    void everyBitmapComesBackAsItWas();
    void anotherProgramReadsWhatIsSaved();
    void whatIsNoBitmapIsNotSaved();
    void whatCannotBeWrittenIsAnErrorAndLeavesNoFile();
    void filesOfOtherProgramsAreReadAtTheirDepth_data();
    void filesOfOtherProgramsAreReadAtTheirDepth();
    void headersThatPromiseTooMuchAllocateNothing_data();
    void headersThatPromiseTooMuchAllocateNothing();
    void aFileThatIsCutIsNotRead_data();
    void aFileThatIsCutIsNotRead();
    void whatIsNoImageFileIsAnError();

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    QString written(const QByteArray &content, const char *name = "file") const;
    QByteArray convert(const QStringList &arguments) const;

    QTemporaryDir m_folder;
};

QString tst_GflBitmapFile::written(const QByteArray &content, const char *name) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        return {};
    return file.fileName();
}

/// What ImageMagick prints.
QByteArray tst_GflBitmapFile::convert(const QStringList &arguments) const
{
    QProcess process;
    process.setWorkingDirectory(m_folder.path());
    process.start(QStringLiteral("convert"), arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qWarning() << process.readAllStandardError();
    return process.readAllStandardOutput();
}

void tst_GflBitmapFile::everyBitmapComesBackAsItWas_data()
{
    QTest::addColumn<unsigned>("type");
    QTest::addColumn<int>("bits");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("padding");
    QTest::addColumn<unsigned>("loadedType");

    for (const unsigned type : {kGflGrey, kGflRgb, kGflRgba}) {
        for (const int bits : {8, 16, 32})
            QTest::addRow("type %u, %d bits", type, bits)
                << type << bits << QSize(37, 11) << 64 << type;
    }
    QTest::newRow("one pixel") << 0x10U << 8 << QSize(1, 1) << 1 << 0x10U;
    QTest::newRow("many strips") << 0x20U << 32 << QSize(1031, 517) << 1 << 0x20U;
    QTest::newRow("one component") << 0x01U << 16 << QSize(5, 3) << 1 << 0x02U;
    QTest::newRow("three components") << 0x1000U << 8 << QSize(5, 3) << 1 << 0x10U;
    QTest::newRow("four components") << 0x2000U << 8 << QSize(5, 3) << 1 << 0x20U;
}

void tst_GflBitmapFile::everyBitmapComesBackAsItWas()
{
    QFETCH(unsigned, type);
    QFETCH(int, bits);
    QFETCH(QSize, size);
    QFETCH(int, padding);
    const Pixels saved(type, bits, size.width(), size.height(), padding);
    written(QByteArray(100, 'x')); // what was there is gone
    QCOMPARE(int(gflSaveBitmapUTF8(path("file").toStdString(), saved.bitmap)), 0);

    GflBitmap bitmap;
    QCOMPARE(loaded(path("file"), &bitmap), 0);
    QCOMPARE(QSize(bitmap.width, bitmap.height), size);
    QTEST(bitmap.type, "loadedType");
    QCOMPARE(bitmap.bitsPerComponent, bits);
    QCOMPARE(bitmap.data, bitmap.owned.get());
    QCOMPARE(lines(bitmap), lines(saved.bitmap));
}

void tst_GflBitmapFile::anotherProgramReadsWhatIsSaved()
{
    const Pixels saved(kGflRgba, 16, 37, 11, 64);
    QCOMPARE(int(gflSaveBitmapUTF8(path("a.tif").toStdString(), saved.bitmap)), 0);
    QCOMPARE(convert({QStringLiteral("a.tif"), QStringLiteral("-depth"), QStringLiteral("16"),
                      QStringLiteral("-endian"), QStringLiteral("LSB"), QStringLiteral("rgba:-")}),
             lines(saved.bitmap));
}

void tst_GflBitmapFile::whatIsNoBitmapIsNotSaved()
{
    const auto refused = [this](auto change) {
        Pixels pixels(kGflRgb, 16, 4, 4);
        change(pixels.bitmap);
        return gflSaveBitmapUTF8(path("none.tif").toStdString(), pixels.bitmap)
            == GflError::BadBitmap;
    };
    QVERIFY(refused([](GflBitmap &bitmap) { bitmap.data = nullptr; }));
    QVERIFY(refused([](GflBitmap &bitmap) { bitmap.height = -4; }));
    QVERIFY(refused([](GflBitmap &bitmap) { bitmap.type = 0x30; }));
    QVERIFY(refused([](GflBitmap &bitmap) { bitmap.bitsPerComponent = 12; }));
    QVERIFY(refused([](GflBitmap &bitmap) { bitmap.bytesPerLine = 23; }));
    QVERIFY(!QFile::exists(path("none.tif")));
}

void tst_GflBitmapFile::whatCannotBeWrittenIsAnErrorAndLeavesNoFile()
{
    const Pixels pixels(kGflRgb, 8, 300, 300);
    const auto saved = [&pixels](const QString &path) {
        return gflSaveBitmapUTF8(path.toStdString(), pixels.bitmap);
    };
    QCOMPARE(mkfifo(qPrintable(path("nobody reads")), 0600), 0);
    QCOMPARE(int(saved(path("missing/a.tif"))), int(GflError::FileCreate));
    QCOMPARE(int(saved(path("nobody reads"))), int(GflError::FileCreate));
    QCOMPARE(int(saved(m_folder.path())), int(GflError::FileCreate));
    QCOMPARE(int(saved(QStringLiteral("/dev/full"))), int(GflError::FileCreate));
    QVERIFY(QFile::exists(QStringLiteral("/dev/full")) && QFile::exists(path("nobody reads")));

    // As on a disk that fills up after so many bytes, the last of which are the directory's.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before = {};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
    for (const rlim_t room : {rlim_t(0), rlim_t(10000), rlim_t(300 * 300 * 3 + 20)}) {
        const rlimit full = {room, before.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &full), 0);
        const GflError error = saved(path("full.tif"));
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &before), 0);
        QCOMPARE(int(error), int(GflError::FileWrite));
        QVERIFY(!QFile::exists(path("full.tif")));
    }
}

void tst_GflBitmapFile::filesOfOtherProgramsAreReadAtTheirDepth_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("options");
    QTest::addColumn<unsigned>("type");
    QTest::addColumn<int>("bits");
    QTest::addColumn<QVector<int>>("pixel"); // of 0 to 255

    const auto row = [](const char *name, const char *options, unsigned type, int bits,
                        const QVector<int> &pixel) {
        QTest::addRow("%s %s %d", name, options, bits)
            << QString::fromLatin1(name) << QString::fromLatin1(options) << type << bits << pixel;
    };
    const QVector<int> orange = {255, 128, 1};
    const QVector<int> glass = {255, 128, 1, 51};
    row("a.tif", "-depth 8 -compress none", kGflRgb, 8, orange);
    row("a.tif", "-depth 8 -compress lzw", kGflRgb, 8, orange);
    row("a.tif", "-depth 16 -endian MSB -compress zip", kGflRgb, 16, orange);
    row("a.tif", "-depth 16 -compress rle -alpha set", kGflRgba, 16, glass);
    row("a.tif", "-depth 32 -define quantum:format=floating-point -compress zip", kGflRgb, 32,
        orange);
    row("a.tif", "-depth 8 -define tiff:tile-geometry=16x16", kGflRgb, 8, orange);
    row("a.tif", "-depth 8 -interlace plane", kGflRgb, 8, orange);
    row("a.tif", "-depth 8 -compress none -orient bottom-left", kGflRgb, 8, orange);
    row("a.tif",
        "-depth 8 -compress zip -alpha set -define tiff:alpha=associated -fill #f0f "
        "-colorize 100",
        kGflRgba, 8, {255, 0, 255, 51});
    row("a.tif", "-depth 8 -compress jpeg -fill white -colorize 100 -type TrueColor", kGflRgb, 8,
        {255, 255, 255});
    row("a.tif",
        "-depth 16 -fill #808080 -colorize 100 -colorspace gray -define tiff:tile-geometry=16x16",
        kGflGrey, 16, {128});
    row("a.png", "-depth 16 -define png:bit-depth=16", kGflRgb, 16, orange);
    row("a.png", "-depth 8 -alpha set", kGflRgba, 8, glass);
    row("a.png", "-depth 16 -define png:bit-depth=16 -alpha set", kGflRgba, 16, glass);
    row("a.png",
        "-fill #808080 -colorize 100 -colorspace gray -depth 16 -define png:color-type=0 -define png:bit-depth=16",
        kGflGrey, 16, {128});
    row("a.jpg", "-fill white -colorize 100 -type TrueColor", kGflRgb, 8, {255, 255, 255});
    row("a.jpg", "-fill #808080 -colorize 100 -colorspace gray", kGflGrey, 8, {128});
    row("a.bmp", "-type TrueColor", kGflRgb, 8, orange);
}

void tst_GflBitmapFile::filesOfOtherProgramsAreReadAtTheirDepth()
{
    QFETCH(QString, name);
    QFETCH(QString, options);
    QFETCH(int, bits);
    QFETCH(QVector<int>, pixel);
    const QString colour = options.contains(QLatin1String("-alpha set"))
        ? QStringLiteral("xc:srgba(255,128,1,0.2)")
        : QStringLiteral("xc:srgb(255,128,1)");
    convert(QStringList{QStringLiteral("-size"), QStringLiteral("37x11"), colour}
            + options.split(QLatin1Char(' ')) + QStringList{name});

    GflBitmap bitmap;
    QCOMPARE(loaded(m_folder.filePath(name), &bitmap), 0);
    QCOMPARE(QSize(bitmap.width, bitmap.height), QSize(37, 11));
    QTEST(bitmap.type, "type");
    QCOMPARE(bitmap.bitsPerComponent, bits);
    QByteArray one;
    for (const int sample : pixel) {
        const auto deep = quint16(sample * 257);
        const float real = float(sample) / 255;
        one.append(bits == 8 ? QByteArray(1, char(sample))
                       : bits == 16
                       ? QByteArray(reinterpret_cast<const char *>(&deep), sizeof deep)
                       : QByteArray(reinterpret_cast<const char *>(&real), sizeof real));
    }
    QCOMPARE(lines(bitmap).toHex(), one.repeated(37 * 11).toHex());
}

void tst_GflBitmapFile::headersThatPromiseTooMuchAllocateNothing_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("error");

    const auto tiff = [](const char *name, const TiffFile &header, GflError error) {
        QTest::newRow(name) << header.withPixels(garbage(1000)) << int(error);
    };
    tiff("4 GiB", {65535, 65535}, GflError::NoMemory);
    tiff("a line more than 2 GiB", {1U << 16U, (1U << 15U) + 1}, GflError::NoMemory);
    tiff("2 GiB", {1U << 16U, 1U << 15U}, GflError::FileRead);
    tiff("2 GiB, compressed", {1U << 16U, 1U << 15U, 1, 8, kLzw}, GflError::FileRead);
    tiff("more than 64 bits hold", {UINT32_MAX, UINT32_MAX, 4, 32}, GflError::FileRead);
    tiff("a line of more than 32 bits", {UINT32_MAX, 1, 3, 32}, GflError::NoMemory);
    tiff("another reader's", {65535, 65535, 1, 4}, GflError::FileRead);
    tiff("no width", {0, 16}, GflError::FileRead);
    tiff("no height", {16, 0}, GflError::FileRead);
    tiff("no components", {16, 16, 0}, GflError::FileRead);

    QTest::newRow("PPM") << QByteArray("P6 30000 30000 255\n") << int(GflError::NoMemory);
}

void tst_GflBitmapFile::headersThatPromiseTooMuchAllocateNothing()
{
    QFETCH(QByteArray, file);
    GflBitmap bitmap;
    bitmap.width = 7;
    const QString path = written(file);
    int error = 0;
    {
        const AllocationBudget budget(64 << 20); // more would be NoMemory
        error = loaded(path, &bitmap);
    }
    QTEST(error, "error");
    QCOMPARE(bitmap.width, 7); // left alone
}

void tst_GflBitmapFile::aFileThatIsCutIsNotRead_data()
{
    QTest::addColumn<QByteArray>("file");

    const TiffFile ahead = {64, 64, 3, 16};
    const QByteArray whole = ahead.withPixels(garbage(64 * 64 * 6));
    GflBitmap bitmap;
    QCOMPARE(loaded(written(whole), &bitmap), 0);
    const Pixels pixels(kGflRgb, 16, 64, 64);
    QCOMPARE(int(gflSaveBitmapUTF8(path("a.tif").toStdString(), pixels.bitmap)), 0);
    QFile behind(path("a.tif"));
    QVERIFY(behind.open(QIODevice::ReadOnly));

    QTest::newRow("the directory ahead") << whole;
    QTest::newRow("the directory behind") << behind.readAll();
    QTest::newRow("compressed") << convert({QStringLiteral("a.tif"), QStringLiteral("-compress"),
                                            QStringLiteral("zip"), QStringLiteral("tif:-")});
}

void tst_GflBitmapFile::aFileThatIsCutIsNotRead()
{
    QFETCH(QByteArray, file);
    GflBitmap bitmap;
    for (int size = 8; size < file.size() - 8; size += 1 + size / 16)
        QCOMPARE(loaded(written(file.left(size)), &bitmap), int(GflError::FileRead));
    QCOMPARE(bitmap.data, nullptr);
}

void tst_GflBitmapFile::whatIsNoImageFileIsAnError()
{
    GflBitmap bitmap;
    QCOMPARE(mkfifo(qPrintable(path("pipe")), 0600), 0);
    for (const QString &name :
         {path("missing"), path("pipe"), m_folder.path(), QStringLiteral("/dev/zero"), QString()})
        QCOMPARE(loaded(name, &bitmap), int(GflError::FileOpen));
    if (geteuid() != 0) { // nothing is unreadable for root
        QVERIFY(QFile::setPermissions(written("x", "secret"), QFile::WriteOwner));
        QCOMPARE(loaded(path("secret"), &bitmap), int(GflError::FileOpen));
    }
    QCOMPARE(loaded(written({}), &bitmap), int(GflError::UnknownFormat));
    QCOMPARE(loaded(written(garbage(5000)), &bitmap), int(GflError::UnknownFormat));
}

QTEST_GUILESS_MAIN(tst_GflBitmapFile)
#include "tst_GflBitmapFile.moc"
