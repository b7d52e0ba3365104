#pragma once

#include "Orientation.h"
#include "ovr.h"

#include <optional>

/// Arithmetic of a head's orientation.
namespace HeadPose {

/// The orientation with a length of one; none if it has no direction or is not finite.
std::optional<ovrQuatf> unit(const ovrQuatf &orientation);

/// Yaw about the y axis, pitch about the x axis and roll about the z axis, in radians and in this
/// order, of a unit quaternion: right-handed, so yaw is to the left and pitch upwards. Straight up
/// and down, where only their sum counts, all turning about the vertical is roll, and yaw is 0.
Orientation::Angles angles(const ovrQuatf &orientation);

} // namespace HeadPose
