#include "TwoFingerRotation.h"

#include "FingerPair.h"
#include "ViewMotion.h"

#include <cmath>

namespace {

double angleOf(const FingerPair &pair)
{
    return std::atan2(double(pair.between.x), -double(pair.between.y));
}

/// By how much the fingers have turned, the shorter way around; nothing if they are not apart
/// enough, or one was not there before.
std::optional<double> turnOf(const PointerSelection::Pointers &now, const Leap::Frame &previous)
{
    constexpr float kNarrowest = 100; // mm
    constexpr float kDeepest = 30;    // mm
    constexpr double kTurn = 6.283185307179586;
    const PointerSelection::Pointers before{previous.pointable(now.first.id()),
                                            previous.pointable(now.second.id())};
    const auto pair = fingerPair(now);
    const auto pairBefore = fingerPair(before);
    if (!pair || !pairBefore || !(pair->spread > kNarrowest) || !(pair->depth < kDeepest))
        return std::nullopt;
    return std::remainder(angleOf(*pair) - angleOf(*pairBefore), kTurn);
}

} // namespace

HandDecision TwoFingerRotation::detect(const HandScene &scene, const HandState &state)
{
    constexpr double kSpeed = 80; // mm a frame for a radian
    HandDecision decision;
    decision.state = state;
    double &speed = decision.state.glide.yawSpeed;
    const PointerSelection::Pointers pointers = PointerSelection::two(scene.frames.current());
    if (pointers.count() == 2 && !scene.twoHandsOpen) {
        if (const auto turn = turnOf(pointers, scene.frames.previous())) {
            // A planet seen exactly from above turns as one that is tipped towards the user.
            speed = *turn * (state.view.pitch < 0 ? -kSpeed : kSpeed);
            decision.acted = true;
        }
    } else if (scene.oneHandOpen && ViewMotion::isMeant(scene.frames)) {
        speed = double(ViewMotion::recentWay(scene.frames).x) / 10;
        decision.acted = true;
    }
    return decision;
}
