#pragma once

#include "HandScene.h"
#include "HandState.h"

/// Turns the view while the pointer is off the middle of the window, the faster the nearer it is to
/// the edge; no glide. Whether the pointer is outside the resting ellipse of 0.6 of the window.
/// `x` and `y` in pixels.
bool edgePush(HandView &view, const HandOptions &options, double x, double y);
