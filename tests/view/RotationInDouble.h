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

/// Around the axis x (0), y (1) or z (2).
inline Matrix around(std::size_t axis, double angle)
{
    const std::size_t first = (axis + 1) % 3;
    const std::size_t second = (axis + 2) % 3;
    Matrix result{};
    result[axis][axis] = 1;
    result[first][first] = result[second][second] = std::cos(angle);
    result[second][first] = std::sin(angle);
    result[first][second] = -std::sin(angle);
    return result;
}

/// The view's rotation: roll first, then pitch up, then yaw to the right.
inline Matrix view(double yaw, double pitch, double roll)
{
    return product(product(around(1, -yaw), around(0, -pitch)), around(2, roll));
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
