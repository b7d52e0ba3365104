#include "OneFingerTilt.h"

#include "PointerSelection.h"

#include <cmath>

HandDecision OneFingerTilt::detect(const HandScene &scene, const HandState &state)
{
    constexpr float kMiddle = 50; // mm
    constexpr float kFar = -100;  // mm
    constexpr float kLikely = 0.98F;
    constexpr float kStraight = 0.3F; // mm a frame
    HandDecision decision;
    decision.state = state;
    const Leap::Frame &frame = scene.frames.current();
    const Leap::Frame &previous = scene.frames.previous();
    const Leap::Pointable pointer = PointerSelection::one(frame);
    const bool isPlaced = pointer.isValid() && std::abs(pointer.stabilizedTipPosition().x) < kMiddle
        && pointer.tipPosition().z < kFar;
    if (!isPlaced || scene.oneHandOpen || scene.twoHandsOpen || frame.hands().count() != 1)
        return decision;
    const Leap::Vector way = frame.translation(previous);
    const bool isMeant = frame.translationProbability(previous) > kLikely
        || frame.rotationProbability(previous) > kLikely;
    if (!isMeant || !(std::abs(way.x) < kStraight))
        return decision;

    decision.state.glide.pitchSpeed = -double(way.y);
    decision.state.lastAction = frame.timestamp();
    decision.acted = true;
    return decision;
}
