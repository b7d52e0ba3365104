#include "Orientation.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.2831854820251465; // two pi in single precision
constexpr double kPiFloat = kTwoPi / 2;
constexpr double kExactTurns = 1e9; // so many times kTwoPi is still exact
constexpr float kHalfPi = 1.5707964F;
} // namespace

float Orientation::wrapAngle(double angle)
{
    if (std::abs(angle) <= kPiFloat)
        return static_cast<float>(angle);
    const double turns = std::floor((angle + kPi) / kTwoPi);
    if (std::abs(turns) > kExactTurns)
        return static_cast<float>(std::remainder(angle, kTwoPi));
    return static_cast<float>(angle - turns * kTwoPi);
}

QMatrix4x4 Orientation::rotationMatrix(double yaw, double pitch, double roll)
{
    const double sy = std::sin(yaw);
    const double cy = std::cos(yaw);
    const double sp = std::sin(pitch);
    const double cp = std::cos(pitch);
    const double sr = std::sin(roll);
    const double cr = std::cos(roll);
    const auto f = [](double value) { return static_cast<float>(value); };
    return QMatrix4x4(f(cr * cy + sr * sp * sy), f(cr * sp * sy - sr * cy), f(-sy * cp), 0, //
                      f(cp * sr), f(cp * cr), f(sp), 0,                                     //
                      f(cr * sy - sr * sp * cy), f(-sr * sy - cr * sp * cy), f(cp * cy), 0, //
                      0, 0, 0, 1);
}

Orientation::Angles Orientation::anglesFromMatrix(const QMatrix4x4 &m)
{
    const double sinPitch = m(1, 2);
    const auto aroundPole = [&m] { return std::atan2(-m(0, 1), m(0, 0)); };
    if (sinPitch >= 1)
        return {-kHalfPi, aroundPole(), 0};
    if (!(sinPitch > -1))
        return {kHalfPi, aroundPole(), 0};
    return {std::atan2(-m(0, 2), m(2, 2)), static_cast<float>(std::asin(sinPitch)),
            std::atan2(m(1, 0), m(1, 1))};
}
