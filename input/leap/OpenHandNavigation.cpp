#include "OpenHandNavigation.h"

#include "ViewMotion.h"

namespace {

bool isOnItsSide(const Leap::Hand &hand)
{
    constexpr float kDegrees = 57.295780F; // a radian
    constexpr float kNear = 45;
    const Leap::Vector normal = hand.palmNormal();
    return normal.angleTo(Leap::Vector::xAxis()) * kDegrees < kNear
        || normal.angleTo(-Leap::Vector::xAxis()) * kDegrees < kNear;
}

bool isHardlySeen(const Leap::Hand &hand, const Leap::Device &device)
{
    return hand.confidence() < 0.95F
        || device.distanceToBoundary(hand.stabilizedPalmPosition()) < 80;
}

} // namespace

HandDecision OpenHandNavigation::detect(const HandScene &scene, const HandState &state)
{
    HandDecision decision;
    decision.state = state;
    if (!scene.oneHandOpen || !ViewMotion::isMeant(scene.frames))
        return decision;

    const Leap::Hand hand = scene.frames.current().hands()[0];
    const Leap::Vector speed = ViewMotion::recentWay(scene.frames) / 10;
    Glide &glide = decision.state.glide;
    glide.yawSpeed = double(speed.x);
    glide.pitchSpeed = double(speed.y);
    if (isOnItsSide(hand))
        glide.pitchSpeed /= 5;
    if (isHardlySeen(hand, scene.device))
        glide.pitchSpeed *= 0.7;
    decision.acted = true;
    return decision;
}
