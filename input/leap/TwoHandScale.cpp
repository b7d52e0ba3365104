#include "TwoHandScale.h"

#include "ViewMotion.h"

#include <cmath>

HandDecision TwoHandScale::detect(const HandScene &scene, const HandState &state)
{
    constexpr float kLikely = 0.99F;
    constexpr float kNoise = 0.3F; // mm
    HandDecision decision;
    decision.state = state;
    const Leap::Frame &now = scene.frames.current();
    const Leap::Frame &before = scene.frames.previous();
    if (!scene.twoHandsOpen || !(now.scaleProbability(before) > kLikely))
        return decision;

    const Leap::Hand one = now.hands()[0];
    const Leap::Hand other = now.hands()[1];
    const Leap::Hand oneBefore = before.hand(one.id());
    const Leap::Hand otherBefore = before.hand(other.id());
    const float apart = one.stabilizedPalmPosition().distanceTo(other.stabilizedPalmPosition());
    const float apartBefore = oneBefore.stabilizedPalmPosition().distanceTo(
        otherBefore.stabilizedPalmPosition());
    if (!oneBefore.isValid() || !otherBefore.isValid() || !(std::abs(apart - apartBefore) > kNoise))
        return decision;

    ViewMotion::applyScale(decision.state, double(now.scaleFactor(before)), now.timestamp());
    decision.acted = true;
    return decision;
}
