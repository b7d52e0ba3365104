#include "TwoFingerZoom.h"

#include "FingerPair.h"
#include "ViewMotion.h"

HandDecision TwoFingerZoom::detect(const HandScene &scene, const HandState &state)
{
    constexpr float kLikely = 0.98F;
    constexpr float kDeepest = 30;   // mm
    constexpr float kNarrowest = 15; // mm
    HandDecision decision;
    decision.state = state;
    const Leap::Frame &now = scene.frames.current();
    const Leap::Frame &before = scene.frames.previous();
    const auto pair = fingerPair(PointerSelection::two(now));
    if (!pair || scene.oneHandOpen || scene.twoHandsOpen || !(pair->depth < kDeepest)
        || !(pair->spread > kNarrowest) || !(now.scaleProbability(before) > kLikely))
        return decision;

    ViewMotion::applyScale(decision.state, double(now.scaleFactor(before)), now.timestamp());
    decision.state.planet.planetFov += double(decision.state.view.fov) - double(state.view.fov);
    decision.acted = true;
    return decision;
}
