#include "Clap.h"

HandDecision Clap::detect(const HandScene &scene, const HandState &state)
{
    constexpr float kTogether = 50; // mm
    constexpr int kHeadset = 2;     // camera mode
    HandDecision decision;
    decision.state = state;
    const float apart = scene.left.stabilizedPalmPosition().distanceTo(
        scene.right.stabilizedPalmPosition());
    if (scene.frames.current().hands().count() != 2 || !state.clapArmed || !(apart < kTogether))
        return decision;
    decision.acted = true;
    decision.togglesPlay = true;
    decision.takesBack = scene.options.cameraMode != kHeadset;
    decision.state.clapArmed = false;
    return decision;
}
