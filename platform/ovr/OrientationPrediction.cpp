#include "OrientationPrediction.h"

#include <algorithm>
#include <cmath>

namespace {

/// Samples that a headset sends at its own pace are seen up to one late: over a shorter time that
/// would make the speed of a steady turn swing.
constexpr double kBaseSeconds = 0.01;

/// A head that gave no other orientation for so long stands still. Also the furthest look ahead.
constexpr double kMemorySeconds = 0.1;

/// What no head reaches, nor the sensors of a headset: a jump, such as on a new centre.
constexpr double kFastestRadPerSecond = 35; // 2000 degrees

/// Radians per second, for unit quaternions.
double speed(const OrientationSample &earlier, const OrientationSample &later)
{
    const ovrQuatf &a = earlier.orientation;
    const ovrQuatf &b = later.orientation;
    const double cosine = std::abs(a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w);
    return 2 * std::acos(std::min(1.0, cosine)) / (later.seconds - earlier.seconds);
}

} // namespace

void OrientationPrediction::add(const OrientationSample &sample)
{
    if (!m_samples.empty() && m_samples.back().orientation == sample.orientation)
        return;
    m_samples.push_back(sample);
    while (m_samples.size() > 2 && m_samples[1].seconds <= sample.seconds - kBaseSeconds)
        m_samples.pop_front();
}

ovrQuatf OrientationPrediction::at(double nowSeconds, double aheadSeconds) const
{
    if (m_samples.empty())
        return {0, 0, 0, 0};
    const OrientationSample &first = m_samples.front();
    const OrientationSample &last = m_samples.back();
    const double measured = last.seconds - first.seconds;
    if (!(aheadSeconds > 0) || !(measured > 0) || measured > kMemorySeconds
        || nowSeconds - last.seconds > kMemorySeconds || !isUnit(first.orientation)
        || !isUnit(last.orientation) || speed(first, last) > kFastestRadPerSecond)
        return last.orientation;
    const double ahead = std::min(nowSeconds - last.seconds + aheadSeconds, kMemorySeconds);
    return turned(first, last, last.seconds + ahead);
}
