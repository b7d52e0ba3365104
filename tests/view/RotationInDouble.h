#pragma once

#include <QMatrix4x4>

#include <algorithm>
#include <array>
#include <cmath>

/// 3×3 rotations in double precision, row by row, as an independent reference for single-precision
/// matrices. The axes are right-handed, angles in radians.
namespace RotationInDouble {

using Matrix = std::array<std::array<double, 3>, 3>;

inline Matrix product(const Matrix &a, const Matrix &b)
{
    Matrix result{};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            for (int k = 0; k < 3; ++k)
                result[row][column] += a[row][k] * b[k][column];
        }
    }
    return result;
}

inline Matrix aroundX(double angle)
{
    const double s = std::sin(angle);
    const double c = std::cos(angle);
    return {{{1, 0, 0}, {0, c, -s}, {0, s, c}}};
}

inline Matrix aroundY(double angle)
{
    const double s = std::sin(angle);
    const double c = std::cos(angle);
    return {{{c, 0, s}, {0, 1, 0}, {-s, 0, c}}};
}

inline Matrix aroundZ(double angle)
{
    const double s = std::sin(angle);
    const double c = std::cos(angle);
    return {{{c, -s, 0}, {s, c, 0}, {0, 0, 1}}};
}

/// The view's rotation: roll first, then pitch up, then yaw to the right.
inline Matrix view(double yaw, double pitch, double roll)
{
    return product(product(aroundY(-yaw), aroundX(-pitch)), aroundZ(roll));
}

/// The largest difference of an element. Infinite if the fourth row or column is not the
/// identity's, or an element is not a number.
inline double distance(const QMatrix4x4 &matrix, const Matrix &reference)
{
    double largest = 0;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            const bool inner = row < 3 && column < 3;
            const double expected = inner ? reference[row][column] : (row == column ? 1 : 0);
            const double difference = std::abs(double(matrix(row, column)) - expected);
            if (!(difference <= (inner ? 10.0 : 0.0)))
                return HUGE_VAL;
            largest = std::max(largest, difference);
        }
    }
    return largest;
}

} // namespace RotationInDouble
