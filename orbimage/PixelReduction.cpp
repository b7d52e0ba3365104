#include "PixelReduction.h"

#include "GflBitmap.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

// Along each axis the area of a target pixel is measured in parts of a source pixel, as many parts
// as the target has pixels: an area is then as many parts long as the source has pixels, and all
// borders are whole numbers. The sums are exact for integer samples of up to 65535 x 65535 pixels.

/// Calls `add` with the place of each source pixel that the target's pixel `place` covers, and with
/// the parts of it that are covered.
template <typename Add>
void forCovered(int place, int sourceLength, int targetLength, const Add &add)
{
    const std::int64_t parts = targetLength;
    const std::int64_t begin = std::int64_t(place) * sourceLength;
    const std::int64_t end = begin + sourceLength;
    for (std::int64_t i = begin / parts; i * parts < end; ++i)
        add(int(i), double(std::min(end, (i + 1) * parts) - std::max(begin, i * parts)));
}

template <typename T>
void addLine(const unsigned char *line, double weight, std::vector<double> &sums)
{
    for (std::size_t i = 0; i < sums.size(); ++i) {
        T sample;
        std::memcpy(&sample, line + i * sizeof(T), sizeof(T));
        sums[i] += weight * double(sample);
    }
}

} // namespace

void PixelReduction::reduce(const GflBitmap &source, const QSize &size, const LineTaker &take)
{
    const auto components = std::size_t(gflComponents(source.type));
    const auto add = source.bitsPerComponent == 8 ? addLine<std::uint8_t>
        : source.bitsPerComponent == 16           ? addLine<std::uint16_t>
                                                  : addLine<float>;
    const double most = source.bitsPerComponent == 8 ? 255
        : source.bitsPerComponent == 16              ? 65535
                                                     : 1;
    const double scale = most * source.width * source.height;

    std::vector<double> sums(std::size_t(source.width) * components);
    std::vector<float> means(std::size_t(size.width()) * components);
    for (int y = 0; y < size.height(); ++y) {
        std::fill(sums.begin(), sums.end(), 0.0);
        forCovered(y, source.height, size.height(),
                   [&](int line, double weight) { add(source.line(line), weight, sums); });
        for (int x = 0; x < size.width(); ++x) {
            double pixel[4] = {};
            forCovered(x, source.width, size.width(), [&](int column, double weight) {
                for (std::size_t c = 0; c < components; ++c)
                    pixel[c] += weight * sums[std::size_t(column) * components + c];
            });
            for (std::size_t c = 0; c < components; ++c)
                means[std::size_t(x) * components + c] = float(pixel[c] / scale);
        }
        take(y, reinterpret_cast<const unsigned char *>(means.data()));
    }
}
