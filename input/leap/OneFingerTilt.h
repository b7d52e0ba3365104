#pragma once

#include "HandScene.h"
#include "HandState.h"

/// One pointing finger, stretched far over the device and in its middle, tilts a little planet by
/// going straight up or down.
namespace OneFingerTilt {

HandDecision detect(const HandScene &scene, const HandState &state);

} // namespace OneFingerTilt
