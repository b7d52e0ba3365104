#include "PictureState.h"

#include <QImage>

#include <algorithm>
#include <vector>

namespace {

constexpr QRgb kPlaceholderColour = qRgb(0x80, 0x80, 0x80); // "grey" of the scene
constexpr double kPlaceholderShare = 0.3;
constexpr double kOneColourShare = 0.9;
constexpr int kLeastColours = 64;

std::vector<QRgb> sortedPixels(const QImage &grab)
{
    const QImage image = grab.convertToFormat(QImage::Format_RGB32);
    std::vector<QRgb> pixels;
    pixels.reserve(size_t(image.width()) * size_t(image.height()));
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        pixels.insert(pixels.end(), line, line + image.width());
    }
    std::sort(pixels.begin(), pixels.end());
    return pixels;
}

} // namespace

PictureState judge(const QImage &grab)
{
    const std::vector<QRgb> pixels = sortedPixels(grab);

    int colours = 0;
    double largestShare = 0;
    double placeholderShare = 0;
    for (auto run = pixels.begin(); run != pixels.end();) {
        const auto end = std::upper_bound(run, pixels.end(), *run);
        const double share = double(end - run) / double(pixels.size());
        ++colours;
        largestShare = std::max(largestShare, share);
        if (*run == kPlaceholderColour)
            placeholderShare = share;
        run = end;
    }

    if (placeholderShare > kPlaceholderShare)
        return PictureState::Placeholder;
    if (colours < kLeastColours || largestShare > kOneColourShare)
        return PictureState::Empty;
    return PictureState::Picture;
}
