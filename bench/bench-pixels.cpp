// Conversions of pixels between formats, against a copy of memory. A conversion reads its source
// and writes its target; the copy that it is held against moves as many bytes in all: it reads and
// writes the mean of the two sizes, by the line too.

#include "PixelKernels.h"
#include "RatioTable.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using PixelKernels::Format;

// A panorama, far larger than the processor's caches.
constexpr std::size_t kWidth = 4096;
constexpr std::size_t kHeight = 2048;

std::size_t lineBytes(Format format)
{
    return kWidth * std::size_t(format.components * format.bitsPerComponent) / 8;
}

std::string name(Format format)
{
    constexpr const char *components[] = {"", "gray", "", "rgb", "rgba"};
    return components[format.components] + std::to_string(format.bitsPerComponent);
}

using Picture = std::vector<unsigned char>;

/// Samples without a pattern, floats a little beyond black and white too, enough for any
/// components.
Picture makeNoise(int bitsPerComponent)
{
    Picture bytes(lineBytes({4, bitsPerComponent}) * kHeight);
    std::uint32_t value = 1;
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        value = value * 1664525U + 1013904223U;
        const float share = float(value >> 8U) * 0x1.2p-24F - 0.0625F;
        std::memcpy(bytes.data() + i, &value, 4);
        if (bitsPerComponent == 32)
            std::memcpy(bytes.data() + i, &share, 4);
    }
    return bytes;
}

const Picture &noise(int bitsPerComponent)
{
    static std::map<int, Picture> made;
    Picture &picture = made[bitsPerComponent];
    if (picture.empty())
        picture = makeNoise(bitsPerComponent);
    return picture;
}

/// Room for any target.
Picture &room()
{
    static Picture picture(lineBytes({4, 32}) * kHeight);
    return picture;
}

void convert(benchmark::State &state, Format from, Format to, bool isWide)
{
    const PixelKernels::Kernel kernel = PixelKernels::kernel(from, to, isWide);
    const unsigned char *const source = noise(from.bitsPerComponent).data();
    unsigned char *const target = room().data();
    for ([[maybe_unused]] auto _ : state) {
        for (std::size_t y = 0; y < kHeight; ++y)
            kernel(source + y * lineBytes(from), target + y * lineBytes(to), kWidth);
        benchmark::ClobberMemory();
    }
}

void copy(benchmark::State &state, std::size_t bytes)
{
    const unsigned char *const source = noise(32).data();
    unsigned char *const target = room().data();
    for ([[maybe_unused]] auto _ : state) {
        for (std::size_t y = 0; y < kHeight; ++y)
            std::memcpy(target + y * bytes, source + y * bytes, bytes);
        benchmark::ClobberMemory();
    }
}

void addBenchmark(const std::string &title, const std::function<void(benchmark::State &)> &run)
{
    benchmark::RegisterBenchmark(title.c_str(), run)->UseRealTime();
}

} // namespace

int main(int argc, char **argv)
{
    std::vector<Format> formats;
    for (const int bits : {8, 16, 32}) {
        for (const int components : {1, 3, 4})
            formats.push_back({components, bits});
    }
    std::set<std::size_t> copies;
    for (const Format from : formats) {
        for (const Format to : formats) {
            const std::size_t bytes = (lineBytes(from) + lineBytes(to)) / 2;
            const std::string peer = "copy-" + std::to_string(bytes);
            copies.insert(bytes);
            for (const bool isWide : {false, true}) {
                if (isWide && !PixelKernels::isWideProcessor())
                    continue;
                addBenchmark(name(from) + "-" + name(to) + (isWide ? "-wide" : ""),
                             [=](benchmark::State &state) {
                                 convert(state, from, to, isWide);
                                 state.SetLabel(peer);
                             });
            }
        }
    }
    for (const std::size_t bytes : copies) {
        addBenchmark("copy-" + std::to_string(bytes),
                     [bytes](benchmark::State &state) { copy(state, bytes); });
    }
    return runBenchmarks(argc, argv);
}
