#include "Motion.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace Leap;

Vector palmOf(const HandData &hand)
{
    return hand.stabilizedPalmPosition.value_or(hand.palmPosition);
}

/// Axes at right angles of a hand: to the side, up from the back of the hand, back to the arm.
std::array<Vector, 3> basis(const HandData &hand)
{
    const Vector back = -hand.stabilizedDirection.value_or(hand.direction).normalized();
    const Vector normal = hand.stabilizedNormal.value_or(hand.palmNormal);
    const Vector side = (-normal).cross(back).normalized();
    return {side, back.cross(side), back};
}

/// Of the rotation from one set of axes to the other, radians: its trace is 1 + 2 cos(angle).
float angleBetween(const std::array<Vector, 3> &before, const std::array<Vector, 3> &now)
{
    if (before[0] == Vector() || now[0] == Vector())
        return 0; // palm and fingers point the same way: no hand does
    float trace = 0;
    for (std::size_t i = 0; i < 3; ++i)
        trace += before[i].dot(now[i]);
    return std::acos(std::clamp((trace - 1) / 2, -1.0F, 1.0F));
}

float sharpened(float share)
{
    return share * share * share * share * share * share;
}

/// Ways of the surface by each part of the motion, mm.
void weigh(Motion &motion, float byTranslation, float byRotation, float byScale)
{
    constexpr float kRest = 0.1F; // mm a frame; less is the sensor's noise, or a hand held still
    const float most = std::max({byTranslation, byRotation, byScale});
    if (!(most > kRest) || !std::isfinite(most))
        return;
    const float translation = sharpened(byTranslation / most);
    const float rotation = sharpened(byRotation / most);
    const float scale = sharpened(byScale / most);
    const float all = translation + rotation + scale;
    motion.translationProbability = translation / all;
    motion.rotationProbability = rotation / all;
    motion.scaleProbability = scale / all;
}

/// `way` is that of the palms, `steadied` the same by what is stabilised.
Motion weighed(const Vector &way, const Vector &steadied, float angle, float logScale, float radius)
{
    Motion motion;
    motion.translation = way;
    motion.angle = angle;
    motion.scale = std::exp(std::clamp(logScale, -10.0F, 10.0F));
    weigh(motion, steadied.magnitude(), angle * radius, std::abs(logScale) * radius);
    return motion;
}

Motion counted(const MotionData &before, const MotionData &now, float radius)
{
    const Vector way = now.translation - before.translation;
    return weighed(way, way, angleBetween(before.rotation, now.rotation), now.scale - before.scale,
                   radius);
}

const HandData *find(const FrameData &frame, int id)
{
    const auto found = std::find_if(frame.hands.begin(), frame.hands.end(),
                                    [id](const HandData &hand) { return hand.id == id; });
    return found == frame.hands.end() ? nullptr : &*found;
}

constexpr float kHandRadius = 50; // mm, from the palm to the middle of the fingers

Vector tipOf(const PointableData &pointable)
{
    return pointable.stabilizedTipPosition.value_or(pointable.tipPosition);
}

/// How far the hand is spread: the mean distance of its finger tips from their middle; 0 for none.
float spread(const FrameData &frame, int handId)
{
    Vector middle;
    int count = 0;
    for (const PointableData &pointable : frame.pointables) {
        if (pointable.handId == handId && !pointable.isTool) {
            middle += tipOf(pointable);
            ++count;
        }
    }
    if (count < 2)
        return 0;
    middle /= float(count);
    float sum = 0;
    for (const PointableData &pointable : frame.pointables) {
        if (pointable.handId == handId && !pointable.isTool)
            sum += tipOf(pointable).distanceTo(middle);
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
    const Vector way = now.palmPosition - before.palmPosition;
    return weighed(way, way, angleBetween(basis(before), basis(now)), 0, kHandRadius);
}

Leap::Motion Leap::motionBetween(const FrameData &before, const FrameData &now)
{
    Vector way;
    Vector steadied;
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
        way += hand.palmPosition - then->palmPosition;
        steadied += palmOf(hand) - palmOf(*then);
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

    way /= float(count);
    steadied /= float(count);
    if (count == 1) {
        const float ratio = logRatio(spread(now, firstNow->id), spread(before, firstNow->id));
        return weighed(way, way, angles, ratio, kHandRadius);
    }
    const Vector apartBefore = palmOf(*lastBefore) - palmOf(*firstBefore);
    const Vector apartNow = palmOf(*lastNow) - palmOf(*firstNow);
    return weighed(way, steadied, apartBefore.angleTo(apartNow),
                   logRatio(apartNow.magnitude(), apartBefore.magnitude()),
                   apartNow.magnitude() / 2);
}
