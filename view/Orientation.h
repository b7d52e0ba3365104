#pragma once

#include <QMatrix4x4>

/// Arithmetic of the camera's orientation. Angles are in radians.
namespace Orientation {

struct Angles
{
    float yaw = 0;
    float pitch = 0;
    float roll = 0;
};

/// The angle less whole turns, within [-pi, pi) up to single precision; -pi and pi as
/// single-precision values come back unchanged. A turn is the single-precision value of two pi,
/// which every writer of angles uses, so that a wrapped angle wraps to itself. The angle must be
/// finite.
float wrapAngle(double angle);

/// The rotation of a view ray into the world: Ry(-yaw) · Rx(-pitch) · Rz(roll) with the usual
/// right-handed matrices, for column vectors. Sines and cosines are taken in double precision.
QMatrix4x4 rotationMatrix(double yaw, double pitch, double roll);

/// Yaw, pitch and roll of a rotation matrix. At the poles of pitch (row 1, column 2 at or beyond
/// ±1, or not a number) yaw is ∓pi/2, the remaining angle goes to pitch, and roll is 0.
Angles anglesFromMatrix(const QMatrix4x4 &matrix);

} // namespace Orientation
