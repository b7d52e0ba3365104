#include "TestPanorama.h"

#include <cmath>

namespace {

constexpr int kWidth = 512;
constexpr int kHeight = 256;
constexpr double kTwoPi = 6.283185307179586;

/// A wave that runs across the picture and is bent by a slower one. Lengths are in pictures.
struct BentWave
{
    double alongX; ///< periods
    double alongY;
    double phase; ///< turns
    double bend;  ///< turns

    int at(double x, double y) const
    {
        const double bent = phase + bend * std::sin(kTwoPi * (1.3 * x - 0.7 * y + phase));
        const double wave = std::sin(kTwoPi * (alongX * x + alongY * y + bent));
        return static_cast<int>(std::lround(127.5 * (1 + wave)));
    }
};

constexpr BentWave kRed{9.3, 1.7, 0.07, 0.31};
constexpr BentWave kGreen{-7.1, 4.6, 0.44, 0.23};
constexpr BentWave kBlue{3.4, -5.3, 0.83, 0.37};

} // namespace

QImage testPanorama()
{
    QImage image(kWidth, kHeight, QImage::Format_RGBA8888);
    for (int row = 0; row < kHeight; ++row) {
        for (int column = 0; column < kWidth; ++column) {
            const double x = (column + 0.5) / kWidth;
            const double y = (row + 0.5) / kHeight;
            image.setPixel(column, row, qRgb(kRed.at(x, y), kGreen.at(x, y), kBlue.at(x, y)));
        }
    }
    return image;
}
