#pragma once

#include "HandScene.h"
#include "HandState.h"

/// A swipe, first among the gestures of the moment and more than a second after the last discrete
/// gesture, goes to the next medium.
namespace NextSwipe {

HandDecision detect(const HandScene &scene, const HandState &state);

} // namespace NextSwipe
