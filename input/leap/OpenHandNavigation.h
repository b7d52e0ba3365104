#pragma once

#include "HandScene.h"
#include "HandState.h"

/// One open hand pans: its mean way over the last ten frames becomes the speed of the view, in mm
/// a frame. A hand on its side (palm within 45 degrees of left or right) pans little up and down,
/// and one that is hardly seen (confidence below 0.95) or less than 80 mm from leaving the field a
/// little less. Without a hand that is likely meant to move or turn, speeds are left to fade.
namespace OpenHandNavigation {

HandDecision detect(const HandScene &scene, const HandState &state);

} // namespace OpenHandNavigation
