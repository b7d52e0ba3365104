#include "HeadPose.h"

#include <cmath>

namespace {
constexpr double kHalfPi = 1.5707963267948966;
constexpr double kLeastNorm = 1e-6;
constexpr double kRoundingOfNorm = 1e-4; ///< what single precision leaves of a unit quaternion
} // namespace

std::optional<ovrQuatf> HeadPose::unit(const ovrQuatf &orientation)
{
    const ovrQuatf &q = orientation;
    const double norm = std::sqrt(double(q.x) * double(q.x) + double(q.y) * double(q.y)
                                  + double(q.z) * double(q.z) + double(q.w) * double(q.w));
    if (!std::isfinite(norm) || norm < kLeastNorm)
        return std::nullopt;
    if (std::abs(norm - 1) < kRoundingOfNorm)
        return q;
    const auto scaled = [norm](float value) { return static_cast<float>(double(value) / norm); };
    return ovrQuatf{scaled(q.x), scaled(q.y), scaled(q.z), scaled(q.w)};
}

Orientation::Angles HeadPose::angles(const ovrQuatf &orientation)
{
    const double x = double(orientation.x);
    const double y = double(orientation.y);
    const double z = double(orientation.z);
    const double w = double(orientation.w);
    const double sinPitch = -2 * (y * z - w * x);
    const auto result = [](double yaw, double pitch, double roll) {
        return Orientation::Angles{static_cast<float>(yaw), static_cast<float>(pitch),
                                   static_cast<float>(roll)};
    };
    if (std::abs(sinPitch) > 1) {
        const double roll = std::atan2(2 * (w * z - x * y), w * w + x * x - y * y - z * z);
        return result(0, std::copysign(kHalfPi, sinPitch), roll);
    }
    return result(std::atan2(2 * (w * y + x * z), w * w + z * z - x * x - y * y),
                  std::asin(sinPitch),
                  std::atan2(2 * (w * z + x * y), w * w + y * y - x * x - z * z));
}
