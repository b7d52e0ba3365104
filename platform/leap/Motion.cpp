#include "Motion.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace Leap;

/// Axes at right angles of a hand: to the side, up from the back of the hand, back to the arm.
std::array<Vector, 3> basis(const HandData &hand)
{
    const Vector back = -hand.direction.normalized();
    const Vector side = (-hand.palmNormal).cross(back).normalized();
    return {side, back.cross(side), back};
}

/// Of the rotation from one set of axes to the other, radians: its trace is 1 + 2 cos(angle).
float angleBetween(const std::array<Vector, 3> &before, const std::array<Vector, 3> &now)
{
    float trace = 0;
    for (std::size_t i = 0; i < 3; ++i)
        trace += before[i].dot(now[i]);
    return std::acos(std::clamp((trace - 1) / 2, -1.0F, 1.0F));
}

float fourthPower(float value)
{
    return value * value * value * value;
}

/// Ways of the surface by each part of the motion, mm.
void weigh(Motion &motion, float byTranslation, float byRotation, float byScale)
{
    constexpr float kRest = 0.02F; // mm a frame; less is the sensor's noise
    const float most = std::max({byTranslation, byRotation, byScale});
    if (!(most > kRest) || !std::isfinite(most))
        return;
    const float translation = fourthPower(byTranslation / most);
    const float rotation = fourthPower(byRotation / most);
    const float scale = fourthPower(byScale / most);
    const float all = translation + rotation + scale;
    motion.translationProbability = translation / all;
    motion.rotationProbability = rotation / all;
    motion.scaleProbability = scale / all;
}

Motion weighed(const Vector &translation, float angle, float logScale, float radius)
{
    Motion motion;
    motion.translation = translation;
    motion.angle = angle;
    motion.scale = std::exp(std::clamp(logScale, -10.0F, 10.0F));
    weigh(motion, translation.magnitude(), angle * radius, std::abs(logScale) * radius);
    return motion;
}

Motion counted(const MotionData &before, const MotionData &now, float radius)
{
    return weighed(now.translation - before.translation,
                   angleBetween(before.rotation, now.rotation), now.scale - before.scale, radius);
}

const HandData *find(const FrameData &frame, int id)
{
    const auto found = std::find_if(frame.hands.begin(), frame.hands.end(),
                                    [id](const HandData &hand) { return hand.id == id; });
    return found == frame.hands.end() ? nullptr : &*found;
}

constexpr float kHandRadius = 50; // mm, from the palm to the middle of the fingers

/// How far the hand is spread: the mean distance of its finger tips from their middle; 0 for none.
float spread(const FrameData &frame, int handId)
{
    Vector middle;
    int count = 0;
    for (const PointableData &pointable : frame.pointables) {
        if (pointable.handId == handId && !pointable.isTool) {
            middle += pointable.tipPosition;
            ++count;
        }
    }
    if (count < 2)
        return 0;
    middle /= float(count);
    float sum = 0;
    for (const PointableData &pointable : frame.pointables) {
        if (pointable.handId == handId && !pointable.isTool)
            sum += pointable.tipPosition.distanceTo(middle);
    }
    return sum / float(count);
}

float logRatio(float now, float before)
{
    return now > 0 && before > 0 ? std::log(now / before) : 0.0F;
}

} // namespace

Leap::Motion Leap::motionBetween(const HandData &before, const HandData &now)
{
    if (before.motion && now.motion)
        return counted(*before.motion, *now.motion, kHandRadius);
    return weighed(now.palmPosition - before.palmPosition, angleBetween(basis(before), basis(now)),
                   0, kHandRadius);
}

Leap::Motion Leap::motionBetween(const FrameData &before, const FrameData &now)
{
    Vector middleBefore;
    Vector middleNow;
    float angles = 0;
    int count = 0;
    const HandData *firstBefore = nullptr;
    const HandData *firstNow = nullptr;
    const HandData *lastBefore = nullptr;
    const HandData *lastNow = nullptr;
    for (const HandData &hand : now.hands) {
        const HandData *then = find(before, hand.id);
        if (!then)
            continue;
        middleBefore += then->palmPosition;
        middleNow += hand.palmPosition;
        angles += angleBetween(basis(*then), basis(hand));
        if (!firstNow) {
            firstBefore = then;
            firstNow = &hand;
        }
        lastBefore = then;
        lastNow = &hand;
        ++count;
    }
    if (count == 0)
        return {};
    if (before.motion && now.motion)
        return counted(*before.motion, *now.motion, kHandRadius);

    const Vector translation = (middleNow - middleBefore) / float(count);
    if (count == 1) {
        const float ratio = logRatio(spread(now, firstNow->id), spread(before, firstNow->id));
        return weighed(translation, angles, ratio, kHandRadius);
    }
    const Vector apartBefore = lastBefore->palmPosition - firstBefore->palmPosition;
    const Vector apartNow = lastNow->palmPosition - firstNow->palmPosition;
    return weighed(translation, apartBefore.angleTo(apartNow),
                   logRatio(apartNow.magnitude(), apartBefore.magnitude()),
                   apartNow.magnitude() / 2);
}
