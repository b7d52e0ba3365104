#pragma once

#include "HandScene.h"
#include "HandState.h"

/// Two pointing fingers of hands that are not both open, less than 30 mm apart in depth, roll the
/// view with the line between their tips. Within 0.1 radians of level the view snaps to level and
/// rests for 0.2 s; jumps of 0.4 radians or more are no roll.
namespace TwoFingerRoll {

HandDecision detect(const HandScene &scene, const HandState &state);

} // namespace TwoFingerRoll
