#include "OrientationPath.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kUnitTolerance = 1e-3; ///< of a length; some headsets give few digits

/// In double precision: the angle between two samples that lie close together is small.
struct Quaternion
{
    double x, y, z, w;
};

Quaternion precise(const ovrQuatf &q)
{
    return {q.x, q.y, q.z, q.w};
}

Quaternion conjugated(const Quaternion &q)
{
    return {-q.x, -q.y, -q.z, q.w};
}

Quaternion product(const Quaternion &a, const Quaternion &b)
{
    return {a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
            a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
            a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w,
            a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}

double length(const Quaternion &q)
{
    return std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
}

ovrQuatf normalised(const Quaternion &q)
{
    const double scale = 1 / length(q);
    return {static_cast<float>(q.x * scale), static_cast<float>(q.y * scale),
            static_cast<float>(q.z * scale), static_cast<float>(q.w * scale)};
}

} // namespace

bool isUnit(const ovrQuatf &orientation)
{
    return std::abs(length(precise(orientation)) - 1) < kUnitTolerance; // false for no number
}

ovrQuatf turned(const OrientationSample &earlier, const OrientationSample &later, double seconds)
{
    const double share = (seconds - earlier.seconds) / (later.seconds - earlier.seconds);
    if (!isUnit(earlier.orientation) || !isUnit(later.orientation)
        || !(later.seconds > earlier.seconds) || !std::isfinite(share))
        return earlier.orientation;

    const Quaternion start = precise(earlier.orientation);
    const Quaternion turn = product(precise(later.orientation), conjugated(start));
    const double side = turn.w < 0 ? -1 : 1;
    const double sine = std::hypot(turn.x, turn.y, turn.z);
    if (sine == 0)
        return earlier.orientation;
    const double half = std::atan2(sine, side * turn.w) * share;
    const double axisScale = side * std::sin(half) / sine;
    return normalised(
        product({turn.x * axisScale, turn.y * axisScale, turn.z * axisScale, std::cos(half)},
                start));
}

ovrQuatf orientationOf(double yawDeg, double pitchDeg, double rollDeg)
{
    const auto half = [](double degrees) { return degrees * kPi / 360; };
    const Quaternion yaw{0, std::sin(half(yawDeg)), 0, std::cos(half(yawDeg))};
    const Quaternion pitch{std::sin(half(pitchDeg)), 0, 0, std::cos(half(pitchDeg))};
    const Quaternion roll{0, 0, std::sin(half(rollDeg)), std::cos(half(rollDeg))};
    return normalised(product(product(yaw, pitch), roll));
}

OrientationPath::OrientationPath(std::vector<OrientationSample> samples, bool repeats)
    : m_samples(std::move(samples))
    , m_repeats(repeats)
{}

ovrQuatf OrientationPath::at(double seconds) const
{
    if (m_samples.empty())
        return {};
    const double end = m_samples.back().seconds;
    if (m_repeats && end > 0)
        seconds = std::fmod(std::max(seconds, 0.0), end);
    const auto next = std::upper_bound(m_samples.cbegin(), m_samples.cend(), seconds,
                                       [](double time, const OrientationSample &sample) {
                                           return time < sample.seconds;
                                       });
    if (next == m_samples.cbegin())
        return m_samples.front().orientation;
    if (next == m_samples.cend())
        return m_samples.back().orientation;
    return turned(*std::prev(next), *next, seconds);
}
