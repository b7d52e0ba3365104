#pragma once

#include "HandScene.h"
#include "HandState.h"

/// Two pointing fingers, far apart and about as deep, spin a little planet as they turn around each
/// other; in their place one open hand spins it as it goes to the side.
namespace TwoFingerRotation {

HandDecision detect(const HandScene &scene, const HandState &state);

} // namespace TwoFingerRotation
