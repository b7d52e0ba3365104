#pragma once

#include "HandScene.h"
#include "HandState.h"

/// One hand pinches, held for 15 frames, and pulls: a flat picture becomes a little planet, and a
/// planet tilts and grows as the hand goes up or down, and rolls as it goes to the side. When the
/// pinch has been gone for 20 frames, the view bounces back to where the pull began, and how it
/// comes to rest decides what it is: see PlanetEvents::animationFinished.
namespace PlanetPull {

/// `pinchHeld` of the state is told even if nothing acted. In other projections a pinch is no more
/// than noted.
HandDecision detect(const HandScene &scene, const HandState &state);

} // namespace PlanetPull
