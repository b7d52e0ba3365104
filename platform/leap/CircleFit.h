#pragma once

#include "Vector.h"

#include <optional>

namespace Leap {

/// The circle through points that come one after the other.
struct Circle
{
    Vector center;
    Vector normal; ///< so that the points go round it right-handed; length 1
    float radius = 0;
};

/// Fits it by least squares to any number of points (I. Kåsa, "A circle fitting procedure and its
/// error analysis", 1976), in the plane that the points' path encloses most area in. Keeps only
/// sums, so that a fit costs the same for any number.
class CircleFit
{
public:
    void add(const Vector &point);

    /// Nothing for points that are on a line, or nearly: less than a third as far spread across
    /// than along.
    std::optional<Circle> circle() const;

private:
    int m_count = 0;
    Vector m_origin; ///< the first point; all below is relative to it
    Vector m_last;
    Vector m_area; ///< sum of the cross products of neighbours: twice the area
    Vector m_sum;
    Vector m_sumOfX; ///< of x times the point, and so on
    Vector m_sumOfY;
    Vector m_sumOfZ;
    Vector m_sumOfSquares; ///< of the squared length times the point
    float m_squares = 0;
};

} // namespace Leap
