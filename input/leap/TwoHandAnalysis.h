#pragma once

#include "HandScene.h"
#include "HandState.h"

/// Two open hands, by how they are held: flat they change between flat picture and little planet,
/// see PlanetSwitch, and tilted they hold a planet, see TwoHandTilt. Palms within 0.08 radians of
/// upright count as upright, as a discrete gesture.
namespace TwoHandAnalysis {

/// The state remembers how the hands are held even if nothing acted.
HandDecision detect(const HandScene &scene, const HandState &state);

} // namespace TwoHandAnalysis
