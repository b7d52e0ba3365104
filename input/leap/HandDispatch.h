#pragma once

#include "HandActions.h"
#include "HandScene.h"
#include "HandState.h"

/// What `OrbLeap::cameraMode` means.
namespace CameraMode {
constexpr int kHandTranslation = 0; ///< one open hand moves the view, nothing points
constexpr int kFinger = 1;          ///< a finger points
constexpr int kHeadset = 2;         ///< hands seek and change media, the head looks around
constexpr int kHands = 3;           ///< all gestures
constexpr int kPlanet = 4;          ///< all gestures, always on a little planet
} // namespace CameraMode

/// Which kinds of gestures the user wants.
struct HandSwitches
{
    bool rollMode = false;
    bool fovMode = true;
    bool playPauseGesture = true;
    bool seekGesture = true;
};

/// In which order the gestures are tried on a frame, by mode and projection: the first that acts
/// mostly ends it. `state` is read anew after each attempt, which may change it.
void dispatchHands(const HandScene &scene, const HandState &state, const HandSwitches &switches,
                   bool hasPointables, HandActions &actions);
