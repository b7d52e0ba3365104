#pragma once

#include "HandScene.h"
#include "HandState.h"

/// Two open hands that draw apart or together, by more than 0.3 mm since the last frame and most
/// likely (above 0.99) meant so, zoom by the factor of their distances.
namespace TwoHandScale {

HandDecision detect(const HandScene &scene, const HandState &state);

} // namespace TwoHandScale
