#include "CircleSeek.h"

#include <cmath>
#include <optional>

namespace {

/// The first circle, while there is one hand and it is not open.
std::optional<Leap::CircleGesture> circleOf(const HandScene &scene)
{
    const Leap::Frame &frame = scene.frames.current();
    if (scene.oneHandOpen || frame.hands().count() != 1)
        return std::nullopt;
    const Leap::GestureList gestures = frame.gestures();
    for (int i = 0; i < gestures.count(); ++i) {
        const Leap::CircleGesture circle(gestures[i]);
        if (circle.isValid())
            return circle;
    }
    return std::nullopt;
}

bool isInTheMiddle(const Leap::CircleGesture &circle)
{
    const Leap::Vector tip =
        circle.frame().interactionBox().normalizePoint(circle.pointable().tipPosition(), true);
    return tip.x > 0.4F && tip.x < 0.6F && tip.y > 0.4F && tip.y < 0.6F;
}

bool pointsForwards(const Leap::Hand &hand)
{
    const Leap::Vector direction = hand.direction();
    return std::abs(direction.x) <= 0.2F && direction.z <= -0.7F;
}

HandDecision seek(const Leap::CircleGesture &circle, const HandScene &scene, const HandState &state)
{
    constexpr float kQuarterPi = 0.78539819F;
    const bool isClockwise = circle.pointable().direction().angleTo(circle.normal()) <= kQuarterPi;
    float turns = 0;
    if (circle.state() != Leap::Gesture::STATE_START) {
        const Leap::CircleGesture before(scene.frames.previous().gesture(circle.id()));
        turns = circle.progress() - before.progress();
    }
    HandDecision decision;
    decision.state = state;
    decision.acted = true;
    decision.seekJump = circle.radius() * (isClockwise ? turns : -turns)
        * float(scene.options.sensitivitySeekJump);
    return decision;
}

HandDecision nothing(const HandState &state)
{
    HandDecision decision;
    decision.state = state;
    return decision;
}

} // namespace

HandDecision CircleSeek::detect(const HandScene &scene, const HandState &state)
{
    const std::optional<Leap::CircleGesture> circle = circleOf(scene);
    if (!circle || (scene.options.cameraMode == 1 && !isInTheMiddle(*circle))
        || !pointsForwards(circle->pointable().hand()))
        return nothing(state);
    return seek(*circle, scene, state);
}

HandDecision CircleSeek::detectForHeadset(const HandScene &scene, const HandState &state)
{
    const std::optional<Leap::CircleGesture> circle = circleOf(scene);
    return circle ? seek(*circle, scene, state) : nothing(state);
}
