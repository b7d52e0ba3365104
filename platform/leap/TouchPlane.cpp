#include "TouchPlane.h"

#include <algorithm>

Leap::TouchPlane::Touch Leap::TouchPlane::touch(float ahead)
{
    constexpr float kHover = 80; // mm
    constexpr float kGive = 5;   // mm
    const float plane = m_zone == TouchZone::Touching ? kGive : 0;
    const float edge = m_zone == TouchZone::None ? kHover : kHover + kGive;
    const float distance = ahead - plane;
    m_zone = !(distance > 0) ? TouchZone::Touching
        : ahead <= edge      ? TouchZone::Hovering
                             : TouchZone::None;
    return {m_zone, std::clamp(distance / kHover, -1.0F, 1.0F)};
}
