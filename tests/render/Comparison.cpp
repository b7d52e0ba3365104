#include "Comparison.h"

#include <algorithm>
#include <cmath>

namespace {

double channelError(int drawn, double expected)
{
    return std::abs(drawn - 255 * std::clamp(expected, 0.0, 1.0));
}

double pixelError(QRgb drawn, const Colour &expected)
{
    return std::max({channelError(qRed(drawn), expected[0]),
                     channelError(qGreen(drawn), expected[1]),
                     channelError(qBlue(drawn), expected[2])});
}

double share(int part, int whole)
{
    return whole ? double(part) / whole : 0;
}

} // namespace

Comparison::Comparison(const QImage &drawn, const ReferencePicture &reference)
{
    const QSize size = reference.size();
    const bool sameSize = drawn.size() == size;
    for (int row = 0; row < size.height(); ++row) {
        for (int column = 0; column < size.width(); ++column) {
            const ReferencePicture::Pixel &expected = reference.pixel(column, row);
            m_defined += expected.region != ReferencePicture::Undefined;
            if (!reference.isAwayFromBorders(column, row))
                continue;
            ++m_compared;
            const double error = sameSize ? pixelError(drawn.pixel(column, row), expected.colour)
                                          : 255;
            m_wrong += error > kTolerance;
            if (error > m_maxError) {
                m_maxError = error;
                m_worst = {column, row};
            }
        }
    }
}

double Comparison::comparedShare() const
{
    return share(m_compared, m_defined);
}

double Comparison::wrongShare() const
{
    return share(m_wrong, m_compared);
}

QString Comparison::toString() const
{
    return QString::asprintf("%.3f %% wrong of %d pixels (%.1f %% of those defined), largest error "
                             "%.2f at %d, %d",
                             100 * wrongShare(), m_compared, 100 * comparedShare(), m_maxError,
                             m_worst.x(), m_worst.y());
}
