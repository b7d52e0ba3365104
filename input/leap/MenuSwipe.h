#pragma once

#include "HandScene.h"

/// A flat hand on edge that swipes sideways opens or closes the menu of the pointer.
namespace MenuSwipe {

struct Result
{
    bool flipsMenu = false;
    qint64 lastAction = 0; ///< frame time of the last discrete gesture, µs
};

/// The swipe: for at least 130 ms, faster than 150 mm/s, its direction more than 0.5 sideways and
/// less than 0.4 up or down, begun right of the interaction box's middle or half its width off to
/// the left. The hand: grabbing and pinching less than 0.5, its palm's normal more than 0.4
/// sideways and less than 0.4 up or down. And more than a second after `lastAction`.
Result detect(const HandScene &scene, qint64 lastAction);

} // namespace MenuSwipe
