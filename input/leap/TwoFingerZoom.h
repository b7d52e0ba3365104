#pragma once

#include "HandScene.h"
#include "HandState.h"

/// Two pointing fingers of hands that are not open zoom as the hands draw apart, most likely
/// (above 0.98) meant so. The tips lie side by side: less than 30 mm apart in depth, more than
/// 15 mm across.
namespace TwoFingerZoom {

HandDecision detect(const HandScene &scene, const HandState &state);

} // namespace TwoFingerZoom
