#pragma once

#include "HandScene.h"
#include "HandState.h"
#include "TwoHandPosture.h"

/// Two open hands held flat change between the flat picture and the little planet.
namespace PlanetSwitch {

/// A flat picture becomes a planet at once, if the last discrete gesture is over 1.5 s ago.
HandDecision enter(const HandScene &scene, const HandState &state, const TwoHandPosture &posture);

/// A planet becomes flat after 17 frames in a row, over 3 s after the last discrete gesture. Acts
/// while it counts.
HandDecision leave(const HandScene &scene, const HandState &state, const TwoHandPosture &posture);

} // namespace PlanetSwitch
