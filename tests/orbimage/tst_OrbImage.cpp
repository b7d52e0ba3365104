#include "OrbException.h"
#include "OrbImage.h"

#include "WarningsFail.h"

#include <QtTest>

#include <climits>
#include <cstring>
#include <functional>

namespace {

/// What the image library says of `action`; empty if nothing.
QString failure(const std::function<void()> &action)
{
    try {
        action();
    } catch (const OrbException &e) {
        return e.message();
    }
    return {};
}

/// A picture of gray samples.
template <typename T>
void fill(OrbImage &image, int width, int height, const std::vector<T> &samples)
{
    image.allocate(width, height, kGflGrey, 8 * sizeof(T));
    for (int y = 0; y < height; ++y)
        std::memcpy(image.bitmap().line(y), samples.data() + y * width, sizeof(T) * width);
}

/// The bytes of all lines without their padding.
QByteArray pixels(const OrbImage &image)
{
    const GflBitmap &b = image.bitmap();
    const int bytes = b.width * gflComponents(b.type) * b.bitsPerComponent / 8;
    QByteArray all;
    for (int y = 0; y < b.height; ++y)
        all.append(reinterpret_cast<const char *>(b.line(y)), bytes);
    return all;
}

QByteArray bytes(std::initializer_list<int> values)
{
    QByteArray all;
    for (const int value : values)
        all.append(char(value));
    return all;
}

} // namespace

class tst_OrbImage : public WarningsFail
{
    Q_OBJECT

private slots:
    void theSameShapeKeepsItsPixels()
    {
        OrbImage image;
        fill<quint8>(image, 3, 2, {1, 2, 3, 4, 5, 6});
        QCOMPARE(image.bitmap().bytesPerLine, std::size_t(4));
        QCOMPARE(image.byteCount(), std::size_t(8));
        const unsigned char *const data = image.bitmap().data;
        image.allocate(3, 2, kGflGrey, 8);
        QCOMPARE(pixels(image), bytes({1, 2, 3, 4, 5, 6}));
        image.allocate(3, 2, kGflGrey, 8, true);
        QCOMPARE(pixels(image), QByteArray(6, 0));
        QCOMPARE(image.bitmap().data, data);
        image.allocate(3, 2, 1, 8, true, nullptr, 16);
        QCOMPARE(image.bitmap().type, 1U);
        QCOMPARE(image.bitmap().bytesPerLine, std::size_t(16));
    }

    void pixelsOfSomeoneElseStayTheirs()
    {
        unsigned char mine[] = {1, 2, 3, 9, 4, 5, 6};
        {
            OrbImage image;
            image.allocate(1, 2, kGflRgb, 8, false, mine, 4);
            QCOMPARE(pixels(image), bytes({1, 2, 3, 4, 5, 6}));
            OrbImage moved = std::move(image);
            QCOMPARE(image.bitmap().data, nullptr); // NOLINT(*-use-after-move,*-cplusplus.Move)
            moved.allocate(1, 2, kGflRgba, 8, true);
            QCOMPARE(mine[0], uchar(1));
            moved.allocate(1, 2, kGflRgb, 8, true, mine, 4);
        }
        QCOMPARE(mine[3], uchar(9)); // between the lines
        QCOMPARE(mine[6], uchar(0));
    }

    void whatCannotBeMadeIsRefused_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<uint>("type");
        QTest::addColumn<int>("bits");
        QTest::addColumn<int>("padding");
        QTest::addColumn<QString>("message");
        const QString parameter = QStringLiteral("Invalid Parameter");
        for (const uint type : {0U, 0x3U, 0x8U, 0x12U, 0x800U, 0x4000U, 0x80000000U})
            QTest::addRow("type %x", type) << 1 << 1 << type << 8 << 4 << parameter;
        for (const int bits : {0, 1, 24, 64, -8})
            QTest::addRow("depth %d", bits) << 1 << 1 << 2U << bits << 4 << "Invalid Bitmap";
        QTest::newRow("no width") << 0 << 1 << 2U << 8 << 4 << parameter;
        QTest::newRow("height") << 1 << -1 << 2U << 8 << 4 << parameter;
        QTest::newRow("padding") << 1 << 1 << 2U << 8 << 0 << parameter;
        QTest::newRow("too large") << INT_MAX << INT_MAX << 0x20U << 32 << 4 << parameter;
        QTest::newRow("padded") << 1 << INT_MAX << 2U << 8 << INT_MAX << "Not enough memory";
    }
    void whatCannotBeMadeIsRefused()
    {
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(uint, type);
        QFETCH(int, bits);
        QFETCH(int, padding);
        OrbImage image;
        fill<quint8>(image, 2, 1, {7, 8});
        const QString message = failure(
            [&] { image.allocate(width, height, type, bits, true, nullptr, padding); });
        QTEST(message, "message");
        QCOMPARE(pixels(image), bytes({7, 8}));
    }

    void copiesTakeTheTargetsFormat()
    {
        OrbImage gray;
        fill<quint8>(gray, 2, 2, {1, 2, 3, 4});
        OrbImage image;
        image.allocate(2, 2, kGflRgba, 16);
        image.copy(gray);
        const std::array<quint16, 4> last = {4 * 257, 4 * 257, 4 * 257, 65535};
        QCOMPARE(std::memcmp(image.bitmap().line(1) + 8, last.data(), 8), 0);
        gray.allocate(2, 2, kGflGrey, 8, true);
        gray.copy(image);
        QCOMPARE(pixels(gray), bytes({1, 2, 3, 4}));
    }

    void rectanglesAreCopiedWhereTheyFit_data()
    {
        QTest::addColumn<QRect>("from");
        QTest::addColumn<QPoint>("to");
        QTest::addColumn<QByteArray>("expected"); // empty where it does not fit
        const auto row = [](const char *name, const QRect &from, const QPoint &to,
                            const QByteArray &expected = {}) {
            QTest::newRow(name) << from << to << expected;
        };
        row("all", {0, 0, 3, 2}, {0, 0}, bytes({1, 2, 3, 4, 5, 6}));
        row("part", {1, 0, 2, 1}, {0, 1}, bytes({0, 0, 0, 2, 3, 0}));
        row("last", {2, 1, 1, 1}, {2, 1}, bytes({0, 0, 0, 0, 0, 6}));
        row("beyond the source", {2, 0, 2, 1}, {0, 0});
        row("above the source", {0, -1, 1, 1}, {0, 0});
        row("beyond the target", {0, 0, 2, 1}, {2, 0});
        row("below the target", {0, 0, 1, 2}, {0, 1});
        row("before the target", {0, 0, 1, 1}, {-1, 0});
        row("far", {0, 0, 1, 1}, {INT_MAX, INT_MAX});
        row("empty", {0, 0, 0, 1}, {0, 0});
    }
    void rectanglesAreCopiedWhereTheyFit()
    {
        QFETCH(QRect, from);
        QFETCH(QPoint, to);
        QFETCH(QByteArray, expected);
        OrbImage source;
        fill<quint8>(source, 3, 2, {1, 2, 3, 4, 5, 6});
        OrbImage image;
        image.allocate(3, 2, kGflGrey, 8, true);
        const QString message = failure([&] { image.copy(source, from, to); });
        QCOMPARE(message, expected.isEmpty() ? QStringLiteral("Invalid Parameter") : QString());
        QCOMPARE(pixels(image), expected.isEmpty() ? QByteArray(6, 0) : expected);
    }

    void aBufferIsCopiedOverItself()
    {
        OrbImage image;
        fill<quint8>(image, 3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
        image.copy(image, {0, 0, 2, 2}, {1, 1});
        QCOMPARE(pixels(image), bytes({1, 2, 3, 4, 1, 2, 7, 4, 5}));
    }

    void whatIsNoPictureIsRefused()
    {
        const QString bitmap = QStringLiteral("Invalid Bitmap");
        const QString parameter = QStringLiteral("Invalid Parameter");
        const OrbImage none;
        OrbImage image;
        fill<quint8>(image, 2, 1, {7, 8});
        OrbImage odd;
        odd.allocate(2, 1, 0x40, 8, true); // three components of an order that is not known
        OrbImage other;
        other.allocate(1, 2, kGflGrey, 8, true);
        QCOMPARE(failure([&] { image.copy(none); }), bitmap);
        QCOMPARE(failure([&] { OrbImage().copy(image); }), bitmap);
        QCOMPARE(failure([&] { image.copy(other); }), parameter);
        QCOMPARE(failure([&] { image.reducedCopy(none, 1, 1, kGflRgb, 8); }), bitmap);
        QCOMPARE(failure([&] { image.reducedCopy(odd, 1, 1, kGflRgb, 8); }), bitmap);
        QCOMPARE(failure([&] { image.reducedCopy(image, 3, 1, kGflRgb, 8); }), parameter);
        QCOMPARE(failure([&] { image.reducedCopy(image, 1, 2, kGflRgb, 8); }), parameter);
        QCOMPARE(failure([&] { image.reducedCopy(image, 1, 0, kGflRgb, 8); }), parameter);
        QCOMPARE(failure([&] { image.reducedCopy(image, 1, 1, 0x8, 8); }), parameter);
        QCOMPARE(failure([&] { none.toImage({1, 1}); }), bitmap);
        QCOMPARE(failure([&] { image.toImage({1, 0}); }), parameter);
        QCOMPARE(failure([&] {
                     image.toImage({INT_MAX, INT_MAX});
                 }),
                 QStringLiteral("Not enough memory"));
        QCOMPARE(pixels(image), bytes({7, 8}));
    }

    void blocksAreReducedToTheirMeans()
    {
        constexpr int factor = 3;
        constexpr int width = 4;
        constexpr int height = 5;
        for (const unsigned type : {kGflGrey, kGflRgb, kGflRgba}) {
            const int components = gflComponents(type);
            OrbImage source;
            source.allocate(width * factor, height * factor, type, 16);
            std::vector<qint64> sums(std::size_t(width * height * components));
            quint32 noise = 1;
            for (int y = 0; y < height * factor; ++y) {
                auto *line = reinterpret_cast<quint16 *>(source.bitmap().line(y));
                for (int i = 0; i < width * factor * components; ++i) {
                    noise = noise * 1664525U + 1013904223U;
                    line[i] = quint16(noise >> 16U);
                    const int x = i / components / factor;
                    const int at = (y / factor * width + x) * components + i % components;
                    sums[std::size_t(at)] += line[i];
                }
            }
            OrbImage image;
            image.reducedCopy(source, width, height, type, 16);
            for (int i = 0; i < width * height * components; ++i) {
                const auto *line = reinterpret_cast<const quint16 *>(
                    image.bitmap().line(i / (width * components)));
                QCOMPARE(qint64(line[i % (width * components)]),
                         (sums[std::size_t(i)] * 2 + 9) / 18);
            }
        }
    }

    void pixelsOnABorderCountByTheirShare()
    {
        OrbImage source;
        fill<quint8>(source, 5, 1, {0, 30, 60, 90, 250});
        OrbImage image;
        image.reducedCopy(source, 3, 1, kGflGrey, 8);
        // (0 + 2/3 30) / (5/3), (1/3 30 + 60 + 1/3 90) / (5/3), (2/3 90 + 250) / (5/3)
        QCOMPARE(pixels(image), bytes({12, 60, 186}));

        fill<float>(source, 1, 5, {0, 3, 6, 9, 30});
        source.reducedCopy(source, 1, 3, kGflGrey, 32);
        for (const auto &[y, expected] : {std::pair(0, 1.2F), {1, 6.0F}, {2, 21.6F}})
            QCOMPARE(*reinterpret_cast<const float *>(source.bitmap().line(y)), expected);
    }

    void wideWhitePicturesStayWhite()
    {
        constexpr int width = 65535;
        OrbImage source;
        fill<quint16>(source, width, 3, std::vector<quint16>(std::size_t(width) * 3, 65535));
        source.reducedCopy(source, 7, 2, kGflRgb, 8);
        QCOMPARE(pixels(source), QByteArray(7 * 2 * 3, char(255)));
    }

    void imagesHaveTheSizeAskedFor()
    {
        OrbImage image;
        fill<quint16>(image, 4, 2, {0, 0, 65535, 65535, 0, 0, 65535, 65535});
        for (const QSize size : {QSize(4, 2), QSize(2, 1), QSize(2, 8), QSize(400, 2)}) {
            const QImage picture = image.toImage(size);
            QCOMPARE(picture.size(), size);
            QCOMPARE(picture.format(), QImage::Format_RGB888);
            QCOMPARE(picture.pixel(0, 0), qRgb(0, 0, 0));
            QCOMPARE(picture.pixel(size.width() - 1, size.height() - 1), qRgb(255, 255, 255));
        }
    }

    void missingFilesAreNamed()
    {
        OrbImage image;
        QCOMPARE(failure([&] { image.ID_Read(QStringLiteral("nosuch.tif")); }),
                 QStringLiteral("File \"%1/nosuch.tif\" is not found").arg(QDir::currentPath()));
        QCOMPARE(failure([&] { image.ID_Read({}); }), QStringLiteral("Invalid Parameter"));
        const QString path = QStringLiteral("/dev/null/a.tif");
        QCOMPARE(failure([&] { image.ID_WriteToCache(path); }), QStringLiteral("Invalid Bitmap"));
        image.allocate(1, 1, kGflGrey, 8, true);
        QCOMPARE(failure([&] { image.ID_WriteToCache({}); }), QStringLiteral("Invalid Parameter"));
        QCOMPARE(failure([&] { image.ID_WriteToCache(path); }),
                 QStringLiteral("Cannot write into file \"/dev/null/a.tif\""));
    }

    void exceptionsTellPlaceAndReason()
    {
        const OrbException exception(QStringLiteral("Größe"), "a.cpp", 12);
        QCOMPARE(exception.location(), QStringLiteral("File: \"a.cpp\" Line: 12"));
        QCOMPARE(exception.message(), QStringLiteral("Größe"));
        QCOMPARE(QString::fromLocal8Bit(exception.what()), QStringLiteral("Größe"));
        const QString place = QStringLiteral("File: \"%1\" Line: %2")
                                  .arg(QLatin1String(__FILE__), QString::number(__LINE__ + 1));
        const OrbException here(GflError::BadBitmap, QStringLiteral("b.tif"));
        QCOMPARE(here.location(), place);
        QCOMPARE(here.message(),
                 QStringLiteral("Error GFL : \"GFL_ERROR_BAD_BITMAP\"\nFile : \"%1/b.tif\"")
                     .arg(QDir::currentPath()));
        const std::pair<int, const char *> names[] = {{1, "GFL_ERROR_FILE_OPEN"},
                                                      {50, "GFL_ERROR_BAD_PARAMETERS"},
                                                      {8, "GFL_UNKNOWN_ERROR"}};
        for (const auto &[code, name] : names)
            QCOMPARE(OrbException(GflError(code)).message(),
                     QStringLiteral("Error GFL : \"%1\"").arg(QLatin1String(name)));
    }
};

QTEST_GUILESS_MAIN(tst_OrbImage)
#include "tst_OrbImage.moc"
