#include "CircleFit.h"

#include <cmath>

void Leap::CircleFit::add(const Vector &point)
{
    if (m_count++ == 0)
        m_origin = point;
    const Vector p = point - m_origin;
    m_area += m_last.cross(p);
    m_last = p;
    m_sum += p;
    m_sumOfX += p * p.x;
    m_sumOfY += p * p.y;
    m_sumOfZ += p * p.z;
    m_sumOfSquares += p * p.magnitudeSquared();
    m_squares += p.magnitudeSquared();
}

std::optional<Leap::Circle> Leap::CircleFit::circle() const
{
    constexpr float kRoundness = 1.0F / 9; // of the variances
    if (m_count < 3)
        return {};

    // Axes of the plane.
    const Vector normal = m_area.normalized();
    const Vector aside = std::abs(normal.x) < 0.7F ? Vector::xAxis() : Vector::yAxis();
    const Vector u = aside.cross(normal).normalized();
    const Vector v = normal.cross(u);

    // With |p|^2 = 2 c.p + d on the circle, c solves the normal equations of the second moments
    // about the mean.
    const auto count = float(m_count);
    const Vector mean = m_sum / count;
    const auto moment = [this, &mean, count](const Vector &a, const Vector &b) {
        const Vector product(m_sumOfX.dot(b), m_sumOfY.dot(b), m_sumOfZ.dot(b));
        return product.dot(a) / count - mean.dot(a) * mean.dot(b);
    };
    const float uu = moment(u, u);
    const float vv = moment(v, v);
    const float uv = moment(u, v);
    const float meanSquare = m_squares / count;
    const Vector skew = (m_sumOfSquares / count - mean * meanSquare) / 2;
    const float determinant = uu * vv - uv * uv;
    const float trace = uu + vv;
    // The variances along and across are the roots of t^2 - trace t + determinant.
    const float root = std::sqrt(std::max(trace * trace - 4 * determinant, 0.0F));
    if (!(trace > 0) || !(trace - root > kRoundness * (trace + root)))
        return {};
    const float cu = (skew.dot(u) * vv - skew.dot(v) * uv) / determinant;
    const float cv = (skew.dot(v) * uu - skew.dot(u) * uv) / determinant;

    // The centre in the plane through the mean; the radius from the mean squared distance to it.
    const Vector center = u * cu + v * cv + normal * mean.dot(normal);
    const float off = mean.dot(u) - cu;
    const float across = mean.dot(v) - cv;
    const float radius = std::sqrt(uu + vv + off * off + across * across);
    if (!std::isfinite(radius))
        return {};
    return Circle{m_origin + center, normal, radius};
}
