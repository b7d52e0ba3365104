#pragma once

#include "HandScene.h"
#include "HandState.h"

/// Two palms that come closer than 50 mm, after they have been apart, start or stop playback. What
/// their movement did to the view is taken back, except in a headset, which hands do not turn.
namespace Clap {

HandDecision detect(const HandScene &scene, const HandState &state);

} // namespace Clap
