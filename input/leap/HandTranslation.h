#pragma once

#include "HandScene.h"
#include "HandState.h"

/// One open hand holds the view as it would an object, without any glide.
namespace HandTranslation {

/// Turns the view by the hand's mean way over the last ten frames, unless that is 20 mm a frame
/// or more, while the hand is likely (above 0.7) meant to move or turn.
HandDecision detect(const HandScene &scene, const HandState &state);

/// Rolls the view as far as the palm is rolled.
HandDecision detectRoll(const HandScene &scene, const HandState &state);

} // namespace HandTranslation
