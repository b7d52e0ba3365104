#pragma once

#include "ovr.h"

/// Notices a headset that is broken or was unplugged by the orientations that it gives. A sensor
/// that is worn or lies on a table is never quite still.
class PoseWatch
{
public:
    enum class News {
        None,
        Invalid, ///< none of the last orientations was one
        NotUnit, ///< they had to be brought to a length of one
        Still,   ///< the last ones were the same
        Well,    ///< after one of these
    };

    /// An orientation came at this time of a steady clock.
    News seen(const ovrQuatf &orientation, double seconds);

private:
    News judge(const ovrQuatf &orientation, double seconds);

    ovrQuatf m_last{};
    double m_lastValid = -1; ///< times; below 0 for none
    double m_lastTurned = -1;
    double m_lastUnit = -1;
    News m_told = News::Well;
};
