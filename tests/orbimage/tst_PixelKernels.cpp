#include "PixelKernels.h"

#include "WarningsFail.h"

#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace {

using PixelKernels::Format;
using Bytes = std::vector<unsigned char>;

constexpr int kComponents[] = {1, 3, 4};
constexpr int kDepths[] = {8, 16, 32};
constexpr int kGuards = 64;
constexpr unsigned char kGuard = 0xA5;
constexpr unsigned char kUnequal = 0x5A; // the kernels of the two kinds of processors do not agree

double most(int bits)
{
    return bits == 8 ? 255 : bits == 16 ? 65535 : 1;
}

double sampleAt(const Bytes &bytes, int bits, int index)
{
    const unsigned char *const place = bytes.data() + index * bits / 8;
    quint16 word = 0;
    float real = 0;
    std::memcpy(&word, place, 2);
    std::memcpy(&real, place, bits == 32 ? 4 : 0);
    return bits == 8 ? *place : bits == 16 ? word : double(real);
}

void setSample(Bytes &bytes, int bits, int index, double value)
{
    unsigned char *const place = bytes.data() + index * bits / 8;
    const auto word = quint16(bits == 32 ? 0 : value);
    const auto real = float(value);
    if (bits == 32)
        std::memcpy(place, &real, 4);
    else
        std::memcpy(place, &word, std::size_t(bits / 8)); // the low byte first
}

/// Numbers of any size and each that has a rule of its own, over and over.
Bytes noise(Format format, int count)
{
    static std::mt19937 random(1);
    const double full = most(format.bitsPerComponent);
    const double inf = std::numeric_limits<double>::infinity();
    const std::vector<double> floats = {0,
                                        1,
                                        0.5,
                                        127.5 / 255,
                                        std::nextafter(0.5F, 0.0F),
                                        0.5 / 255,
                                        1.5 / 65535,
                                        -0.25,
                                        1.75,
                                        inf,
                                        -inf,
                                        std::nan(""),
                                        -0.0,
                                        1e-40,
                                        3e38,
                                        1};
    std::uniform_real_distribution<double> anyOf(0, full);
    Bytes bytes(std::size_t(count * format.components * format.bitsPerComponent / 8) + kGuards);
    for (int i = 0; i < count * format.components; ++i) {
        double value = anyOf(random);
        if (format.bitsPerComponent == 32 && i % 3 == 0)
            value = floats[random() % floats.size()];
        else if (i % 7 == 0)
            value = random() % 2 ? full : 0;
        setSample(bytes, format.bitsPerComponent, i, value);
    }
    return bytes;
}

Bytes convert(const Bytes &source, Format from, Format to, int count)
{
    Bytes target(std::size_t(count * to.components * to.bitsPerComponent / 8) + kGuards, kGuard);
    Bytes wide = target;
    PixelKernels::kernel(from, to, false)(source.data(), target.data(), std::size_t(count));
    PixelKernels::kernel(from, to)(source.data(), wide.data(), std::size_t(count));
    return wide == target ? target : Bytes(target.size(), kUnequal);
}

/// The rule for one target sample.
double expected(const Bytes &source, Format from, Format to, int pixel, int component)
{
    const auto share = [&](int c) {
        return sampleAt(source, from.bitsPerComponent, pixel * from.components + c)
            / most(from.bitsPerComponent);
    };
    double value = 1;
    if (to.components == 1 && from.components > 1)
        value = 0.299 * share(0) + 0.587 * share(1) + 0.114 * share(2);
    else if (component < from.components || component < 3)
        value = share(from.components == 1 ? 0 : component);
    if (to.bitsPerComponent == 32)
        return double(float(value));
    // Halves go up; those of integers are inexact in the shares, by less than sums are apart.
    const double half = from.bitsPerComponent == 32 ? 0.5 : 0.5 + 1e-9;
    const double full = most(to.bitsPerComponent);
    return std::isnan(value) ? 0 : std::floor(qBound(0.0, value, 1.0) * full + half);
}

bool isEqual(double a, double b, int bits)
{
    if (bits != 32 || !std::isfinite(b))
        return a == b || (std::isnan(a) && std::isnan(b));
    return std::abs(a - b) <= std::abs(b) * double(std::numeric_limits<float>::epsilon());
}

} // namespace

class tst_PixelKernels : public WarningsFail
{
    Q_OBJECT

private slots:
    void everyPairFollowsTheRules_data()
    {
        QTest::addColumn<int>("fromComponents");
        QTest::addColumn<int>("fromBits");
        QTest::addColumn<int>("toComponents");
        QTest::addColumn<int>("toBits");
        for (const int from : kComponents)
            for (const int to : kComponents)
                for (const int fromBits : kDepths)
                    for (const int toBits : kDepths)
                        QTest::addRow("%d x %d to %d x %d", from, fromBits, to, toBits)
                            << from << fromBits << to << toBits;
    }
    void everyPairFollowsTheRules()
    {
        QFETCH(int, fromComponents);
        QFETCH(int, fromBits);
        QFETCH(int, toComponents);
        QFETCH(int, toBits);
        const Format from{fromComponents, fromBits};
        const Format to{toComponents, toBits};
        for (int count = 0; count <= 1000; count += count < 70 ? 1 : 465) {
            const Bytes source = noise(from, count);
            const Bytes target = convert(source, from, to, count);
            for (int i = 0; i < count * to.components; ++i) {
                const double wanted = expected(source, from, to, i / to.components,
                                               i % to.components);
                const double found = sampleAt(target, toBits, i);
                if (!isEqual(found, wanted, toBits))
                    QFAIL(qPrintable(QStringLiteral("sample %1 of %2 pixels: %3 in place of %4")
                                         .arg(i)
                                         .arg(count)
                                         .arg(found)
                                         .arg(wanted)));
            }
            QCOMPARE(Bytes(target.end() - kGuards, target.end()), Bytes(kGuards, kGuard));
        }
    }

    void everyIntegerIsRoundedToTheNearest()
    {
        constexpr int count = 65536;
        Bytes words(2 * count + kGuards);
        for (int i = 0; i < count; ++i)
            setSample(words, 16, i, i);
        const Bytes bytes = convert(words, {1, 16}, {1, 8}, count);
        for (int i = 0; i < count; ++i)
            QCOMPARE(int(bytes[std::size_t(i)]), (i * 2 + 257) / 514);
    }

    void wayAndBackIsExact_data()
    {
        QTest::addColumn<int>("components");
        QTest::addColumn<int>("bits");
        QTest::addColumn<int>("otherComponents");
        QTest::addColumn<int>("otherBits");
        QTest::newRow("8-16-8") << 1 << 8 << 1 << 16;
        QTest::newRow("8-32-8") << 3 << 8 << 3 << 32;
        QTest::newRow("16-32-16") << 4 << 16 << 4 << 32;
        for (const int bits : kDepths) {
            QTest::addRow("gray-rgb-gray, %d", bits) << 1 << bits << 3 << bits;
            QTest::addRow("rgb-rgba-rgb, %d", bits) << 3 << bits << 4 << bits;
        }
        QTest::newRow("gray 8-rgba 32-gray 8") << 1 << 8 << 4 << 32;
    }
    void wayAndBackIsExact()
    {
        QFETCH(int, components);
        QFETCH(int, bits);
        QFETCH(int, otherComponents);
        QFETCH(int, otherBits);
        constexpr int count = 65536;
        const Format format{components, bits};
        const Format other{otherComponents, otherBits};
        Bytes source(std::size_t(count * components * bits / 8));
        for (int i = 0; i < count * components; ++i)
            setSample(source, bits, i, bits == 32 ? i / 65521.0 : i % int(most(bits) + 1));
        Bytes back = convert(convert(source, format, other, count), other, format, count);
        back.resize(source.size());
        QVERIFY(back == source);
    }

    void addressesNeedNoAlignment()
    {
        for (const int bits : kDepths) {
            const Bytes source = noise({3, bits}, 40);
            Bytes moved = source;
            moved.insert(moved.begin(), 0);
            Bytes target(40 * 4 * 4 + 1);
            PixelKernels::kernel({3, bits}, {4, 16})(moved.data() + 1, target.data() + 1, 40);
            const Bytes wanted = convert(source, {3, bits}, {4, 16}, 40);
            QVERIFY(std::memcmp(target.data() + 1, wanted.data(), std::size_t(40) * 4 * 2) == 0);
        }
    }

    void otherFormatsHaveNoKernel()
    {
        for (const Format format : {Format{0, 8}, {2, 8}, {5, 8}, {1, 0}, {3, 24}, {4, 64}}) {
            QVERIFY(!PixelKernels::kernel(format, {1, 8}));
            QVERIFY(!PixelKernels::kernel({1, 8}, format));
        }
    }
};

QTEST_GUILESS_MAIN(tst_PixelKernels)
#include "tst_PixelKernels.moc"
