#pragma once

#include "HandScene.h"
#include "HandState.h"

/// A circle drawn with one hand seeks: by radius in mm, turns since the last frame and the user's
/// sensitivity; forwards while it runs clockwise as the finger sees it.
namespace CircleSeek {

/// On a screen the hand is not open and points at it: its direction at most 0.2 to a side and at
/// least 0.7 forwards. With the pointer of camera mode 1 the tip is also in the middle fifth of
/// the interaction box, both ways.
HandDecision detect(const HandScene &scene, const HandState &state);

/// In a headset any circle of a hand that is not open counts.
HandDecision detectForHeadset(const HandScene &scene, const HandState &state);

} // namespace CircleSeek
