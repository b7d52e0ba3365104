#pragma once

#include "HandScene.h"
#include "HandState.h"

/// One open hand that is likely meant to move or turn, over a little planet seen nearly from above:
/// spins it, and brings pitch, roll and field of view frame by frame to where the planet becomes
/// flat.
namespace PlanetReturn {

HandDecision detect(const HandScene &scene, const HandState &state);

} // namespace PlanetReturn
