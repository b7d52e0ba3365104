#include "PixelKernels.h"

#include <array>
#include <cstdint>
#include <cstring>

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
        return T(Word(Word(sample - (sample >> 8)) + 128) >> 8); // rounded, and never above 16 bits
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

template <typename S, int from, typename T, int to>
void convert(const unsigned char *__restrict source, unsigned char *__restrict target,
             std::size_t count)
{
    if constexpr (from == to && sizeof(S) == sizeof(T)) {
        std::memcpy(target, source, count * from * sizeof(S));
    } else if constexpr (from == to) {
        for (std::size_t i = 0; i < count * from; ++i)
            store(target, i, converted<T>(load<S>(source, i)));
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            if constexpr (to == 1) {
                store(target, i,
                      gray<T>(load<S>(source, from * i), load<S>(source, from * i + 1),
                              load<S>(source, from * i + 2)));
            } else {
                constexpr std::size_t step = from == 1 ? 0 : 1;
                for (std::size_t c = 0; c < 3; ++c)
                    store(target, to * i + c, converted<T>(load<S>(source, from * i + step * c)));
                if constexpr (to == 4)
                    store(target, 4 * i + 3, kMost<T>);
            }
        }
    }
}

// Tables by the place of a format among the components 1, 3, 4 and the depths 8, 16, 32.
using Row = std::array<PixelKernels::Kernel, 9>;

template <typename S, int from>
constexpr Row kRow = {convert<S, from, Byte, 1>,  convert<S, from, Word, 1>,
                      convert<S, from, float, 1>, convert<S, from, Byte, 3>,
                      convert<S, from, Word, 3>,  convert<S, from, float, 3>,
                      convert<S, from, Byte, 4>,  convert<S, from, Word, 4>,
                      convert<S, from, float, 4>};

constexpr std::array<Row, 9> kKernels = {kRow<Byte, 1>, kRow<Word, 1>, kRow<float, 1>,
                                         kRow<Byte, 3>, kRow<Word, 3>, kRow<float, 3>,
                                         kRow<Byte, 4>, kRow<Word, 4>, kRow<float, 4>};

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

PixelKernels::Kernel PixelKernels::kernel(Format from, Format to)
{
    const int source = place(from);
    const int target = place(to);
    return source < 0 || target < 0 ? nullptr : kKernels[std::size_t(source)][std::size_t(target)];
}
