#pragma once

#include "HandScene.h"

/// Watches for hands that leave the device's field.
namespace ZoneCheck {

/// Edges of the field; bits.
enum Edge : quint8 { Left = 1, Right = 2, Bottom = 4, Top = 8 };

struct Result
{
    bool handLost = false;    ///< the last hand has just left through an edge
    quint8 outZone = 0;       ///< edges that a hand is lost at
    bool emitsChange = false; ///< `outZone` is to be told; otherwise it changes silently
    qint64 zoneTime = 0;      ///< frame time at which a hand left, µs
};

/// Looks back over ten frames for a hand that fades at an edge: confidence below 0.1, or below 0.2
/// less than 50 mm from the boundary, and beyond 100 mm to a side, under 100 mm or over 300 mm. A
/// second after the hand is gone, no edge is told.
Result check(const HandScene &scene, qint64 zoneTime);

} // namespace ZoneCheck
