#pragma once

#include "FrameData.h"

namespace Leap {

/// How a finger touches the plane that faces the user in the middle of the interaction box. It
/// hovers within 80 mm in front. Each border gives way by 5 mm once it is crossed, so that a finger
/// at rest there does not flutter.
class TouchPlane
{
public:
    struct Touch
    {
        TouchZone zone = TouchZone::None;
        float distance = 1; ///< 80 mm in front or farther 1, at the plane 0, behind negative to -1
    };

    /// `ahead`: of the tip from the plane towards the user, mm. Touching has a distance of at most
    /// 0, and nothing else has.
    Touch touch(float ahead);

private:
    TouchZone m_zone = TouchZone::None;
};

} // namespace Leap
