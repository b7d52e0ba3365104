#pragma once

#include "Vector.h"

namespace Leap {

/// Steadies a place that jitters, with little lag once it moves: a low-pass whose cutoff rises with
/// the speed (Casiez, Roussel and Vogel, "1 € Filter", CHI 2012). At a steady speed it lags by less
/// than 1 / (2 pi kPerSpeed), 5.3 mm.
class OneEuroFilter
{
public:
    /// `seconds` since the last one; without that the place does not change. The first, and what
    /// follows on something that is no number, comes out as it is.
    Vector filtered(const Vector &place, float seconds)
    {
        const bool isFirst = !m_isRunning || !std::isfinite(m_place.magnitudeSquared());
        if (isFirst) {
            m_isRunning = true;
            m_place = place;
            m_last = place;
            m_velocity = {};
        } else if (seconds > 0) {
            const Vector velocity = (place - m_last) / seconds;
            m_last = place;
            m_velocity += (velocity - m_velocity) * share(kSpeedCutoff, seconds);
            const float cutoff = kRestCutoff + kPerSpeed * m_velocity.magnitude();
            m_place += (place - m_place) * share(cutoff, seconds);
        }
        return m_place;
    }

private:
    static constexpr float kRestCutoff = 1.5F;  // Hz
    static constexpr float kPerSpeed = 0.03F;   // Hz for each mm/s
    static constexpr float kSpeedCutoff = 2.0F; // Hz

    /// Of the new value in a first-order low-pass.
    static float share(float cutoff, float seconds)
    {
        const float turn = 6.2831853F * cutoff * seconds;
        return turn / (turn + 1);
    }

    bool m_isRunning = false;
    Vector m_place;
    Vector m_last;
    Vector m_velocity;
};

} // namespace Leap
