#include "PixelKernels.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace {

using Byte = std::uint8_t;
using Word = std::uint16_t;

template <typename T>
constexpr T kMost = T(~T(0));
template <>
constexpr float kMost<float> = 1.0F;

template <typename T>
constexpr bool kIsFloat = false;
template <>
constexpr bool kIsFloat<float> = true;

template <typename T>
T load(const unsigned char *samples, std::size_t index)
{
    T value;
    std::memcpy(&value, samples + index * sizeof(T), sizeof(T));
    return value;
}

template <typename T>
void store(unsigned char *samples, std::size_t index, T value)
{
    std::memcpy(samples + index * sizeof(T), &value, sizeof(T));
}

/// From a share of the range. The products of a float with 255 and 65535 are exact in a double, so
/// that the one rounding is that to the target.
template <typename T, typename Share>
T fromShare(Share share)
{
    if constexpr (kIsFloat<T>) {
        return T(share);
    } else {
        const Share aboveBlack = share > 0 ? share : 0; // so is "not a number"
        const Share inside = aboveBlack < 1 ? aboveBlack : 1;
        // lround would be a call. NOLINTNEXTLINE(bugprone-incorrect-roundings)
        return T(int(double(inside) * kMost<T> + 0.5));
    }
}

template <typename T, typename S>
T converted(S sample)
{
    if constexpr (sizeof(S) == sizeof(T))
        return sample;
    else if constexpr (kIsFloat<S>)
        return fromShare<T>(sample);
    else if constexpr (kIsFloat<T>)
        return T(sample) / T(kMost<S>);
    else if constexpr (sizeof(S) < sizeof(T))
        return T(sample * 257);
    else
        return T((sample * 255U + 32895U) >> 16); // as sample / 257, rounded
}

template <typename T, typename S>
T gray(S red, S green, S blue)
{
    if constexpr (kIsFloat<S>) {
        return fromShare<T>(0.299 * double(red) + 0.587 * double(green) + 0.114 * double(blue));
    } else {
        const std::uint32_t thousandfold = 299U * red + 587U * green + 114U * blue;
        if constexpr (kIsFloat<T>)
            return T(double(std::int32_t(thousandfold)) / (1000.0 * kMost<S>));
        else if constexpr (sizeof(S) < sizeof(T))
            return T((thousandfold * 257U + 500U) / 1000U);
        else if constexpr (sizeof(S) > sizeof(T))
            return T((thousandfold + 128500U) / 257000U);
        else
            return T((thousandfold + 500U) / 1000U);
    }
}

/// The four samples of a pixel of integers as one number. Compilers spread such a number over a
/// vector where they do not spread four stores.
template <typename T>
using PixelOf = std::conditional_t<sizeof(T) == 1, std::uint32_t, std::uint64_t>;

template <typename T>
PixelOf<T> inPlace(T sample, int component)
{
    constexpr bool isFirstLowest = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;
    const int place = isFirstLowest ? component : 3 - component;
    return PixelOf<T>(sample) << (place * 8 * int(sizeof(T)));
}

/// Inlined wherever it is called, so that it is compiled for the caller's processor.
template <typename S, int from, typename T, int to>
[[gnu::always_inline]] inline void convert(const unsigned char *__restrict source,
                                           unsigned char *__restrict target, std::size_t count)
{
    if constexpr (from == to && sizeof(S) == sizeof(T)) {
        std::memcpy(target, source, count * from * sizeof(S));
    } else if constexpr (from == to) {
        for (std::size_t i = 0; i < count * from; ++i)
            store(target, i, converted<T>(load<S>(source, i)));
    } else if constexpr (to == 1) {
        for (std::size_t i = 0; i < count; ++i) {
            store(target, i,
                  gray<T>(load<S>(source, from * i), load<S>(source, from * i + 1),
                          load<S>(source, from * i + 2)));
        }
    } else if constexpr (to == 4 && !kIsFloat<T>) {
        constexpr std::size_t step = from == 1 ? 0 : 1;
        for (std::size_t i = 0; i < count; ++i) {
            const auto red = converted<T>(load<S>(source, from * i));
            const auto green = converted<T>(load<S>(source, from * i + step));
            const auto blue = converted<T>(load<S>(source, from * i + 2 * step));
            store(target, i,
                  inPlace(red, 0) | inPlace(green, 1) | inPlace(blue, 2) | inPlace(kMost<T>, 3));
        }
    } else {
        constexpr std::size_t step = from == 1 ? 0 : 1;
        for (std::size_t i = 0; i < count; ++i) {
            for (std::size_t c = 0; c < 3; ++c)
                store(target, to * i + c, converted<T>(load<S>(source, from * i + step * c)));
            if constexpr (to == 4)
                store(target, 4 * i + 3, kMost<T>);
        }
    }
}

/// The kernels as any processor of the kind runs them.
struct Plain
{
    template <typename S, int from, typename T, int to>
    static void run(const unsigned char *__restrict source, unsigned char *__restrict target,
                    std::size_t count)
    {
        convert<S, from, T, to>(source, target, count);
    }
};

#ifdef __x86_64__
struct Wide
{
    template <typename S, int from, typename T, int to>
    [[gnu::target("avx2")]] static void run(const unsigned char *__restrict source,
                                            unsigned char *__restrict target, std::size_t count)
    {
        convert<S, from, T, to>(source, target, count);
    }
};
#else
using Wide = Plain;
#endif

// Tables by the place of a format among the components 1, 3, 4 and the depths 8, 16, 32.
using Row = std::array<PixelKernels::Kernel, 9>;
using Table = std::array<Row, 9>;

template <typename Kind, typename S, int from>
constexpr Row kRow = {Kind::template run<S, from, Byte, 1>,  Kind::template run<S, from, Word, 1>,
                      Kind::template run<S, from, float, 1>, Kind::template run<S, from, Byte, 3>,
                      Kind::template run<S, from, Word, 3>,  Kind::template run<S, from, float, 3>,
                      Kind::template run<S, from, Byte, 4>,  Kind::template run<S, from, Word, 4>,
                      Kind::template run<S, from, float, 4>};

template <typename Kind>
constexpr Table kTable = {kRow<Kind, Byte, 1>, kRow<Kind, Word, 1>, kRow<Kind, float, 1>,
                          kRow<Kind, Byte, 3>, kRow<Kind, Word, 3>, kRow<Kind, float, 3>,
                          kRow<Kind, Byte, 4>, kRow<Kind, Word, 4>, kRow<Kind, float, 4>};

/// -1 for a format that is none.
int place(PixelKernels::Format format)
{
    const int depth = format.bitsPerComponent == 8 ? 0
        : format.bitsPerComponent == 16            ? 1
        : format.bitsPerComponent == 32            ? 2
                                                   : -1;
    const int components = format.components == 1 ? 0
        : format.components == 3                  ? 3
        : format.components == 4                  ? 6
                                                  : -1;
    return depth < 0 || components < 0 ? -1 : components + depth;
}

} // namespace

bool PixelKernels::isWideProcessor()
{
#ifdef __x86_64__
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

PixelKernels::Kernel PixelKernels::kernel(Format from, Format to, bool isWide)
{
    const int source = place(from);
    const int target = place(to);
    if (source < 0 || target < 0)
        return nullptr;
    return (isWide ? kTable<Wide> : kTable<Plain>)[std::size_t(source)][std::size_t(target)];
}
