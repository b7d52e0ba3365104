#pragma once

#include "HandScene.h"
#include "HandState.h"
#include "TwoHandPosture.h"

/// Two open hands, at least 100 mm apart, hold a little planet as a ball: their tilt is its pitch,
/// with a field of view to match, and steering rolls it, or near the horizon turns it. Hands that
/// are not near the planet's pitch do not take hold of it. Upright hands that draw apart zoom.
namespace TwoHandTilt {

HandDecision detect(const HandScene &scene, const HandState &state, const TwoHandPosture &posture);

} // namespace TwoHandTilt
