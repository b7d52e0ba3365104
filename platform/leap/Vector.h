#pragma once

#include <cmath>

namespace Leap {

/// A point or direction in the tracker's frame: x to the right, y up, z towards the user;
/// millimetres where it is a place, millimetres a second where it is a velocity.
struct Vector
{
    float x = 0;
    float y = 0;
    float z = 0;

    Vector() = default;
    constexpr Vector(float xIn, float yIn, float zIn)
        : x(xIn)
        , y(yIn)
        , z(zIn)
    {}

    static constexpr Vector xAxis() { return {1, 0, 0}; }
    static constexpr Vector yAxis() { return {0, 1, 0}; }
    static constexpr Vector zAxis() { return {0, 0, 1}; }

    float dot(const Vector &other) const { return x * other.x + y * other.y + z * other.z; }
    Vector cross(const Vector &other) const
    {
        return {y * other.z - z * other.y, z * other.x - x * other.z, x * other.y - y * other.x};
    }
    float magnitudeSquared() const { return dot(*this); }
    float magnitude() const { return std::sqrt(magnitudeSquared()); }
    float distanceTo(const Vector &other) const { return (*this - other).magnitude(); }

    /// Of length 1, or zero for a vector of no length.
    Vector normalized() const
    {
        const float length = magnitude();
        return length > 0 ? *this / length : Vector();
    }

    /// The angle between both in radians, 0 to pi; 0 if either is as good as zero.
    float angleTo(const Vector &other) const
    {
        constexpr float kSmallest = 1.1920929e-07F;
        const float product = magnitudeSquared() * other.magnitudeSquared();
        if (!(product > kSmallest))
            return 0;
        const float cosine = dot(other) / std::sqrt(product);
        return cosine >= 1 ? 0.0F : cosine <= -1 ? 3.14159265F : std::acos(cosine);
    }

    Vector operator-() const { return {-x, -y, -z}; }
    Vector operator+(const Vector &other) const { return {x + other.x, y + other.y, z + other.z}; }
    Vector operator-(const Vector &other) const { return {x - other.x, y - other.y, z - other.z}; }
    Vector operator*(float factor) const { return {x * factor, y * factor, z * factor}; }
    Vector operator/(float divisor) const { return {x / divisor, y / divisor, z / divisor}; }
    Vector &operator+=(const Vector &other) { return *this = *this + other; }
    Vector &operator/=(float divisor) { return *this = *this / divisor; }
    bool operator==(const Vector &other) const
    {
        return x == other.x && y == other.y && z == other.z;
    }
    bool operator!=(const Vector &other) const { return !(*this == other); }
};

} // namespace Leap
