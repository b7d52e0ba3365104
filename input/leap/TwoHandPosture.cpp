#include "TwoHandPosture.h"

namespace {

/// Of a hand's side, which points to the right with the palm down.
Leap::Vector side(const Leap::Hand &hand)
{
    return hand.palmNormal().cross(hand.direction());
}

/// From the horizontal, positive upwards.
double slope(const Leap::Vector &sum)
{
    const Leap::Vector flat = Leap::Vector(sum.x, sum.y, 0).normalized();
    const double angle = double(flat.angleTo(Leap::Vector::xAxis()));
    return flat.y < 0 ? -angle : angle;
}

} // namespace

TwoHandPosture twoHandPosture(const FrameHistory &frames, double previousSteer)
{
    constexpr int kMoments = 15;
    Leap::Vector left;
    Leap::Vector right;
    for (int age = 0; age < kMoments; ++age) {
        const Leap::HandList hands = frames[age].hands();
        left += side(hands.leftmost());
        right += side(hands.rightmost());
    }
    const double leftSlope = slope(left / kMoments);
    const double rightSlope = -slope(right / kMoments);
    TwoHandPosture posture;
    posture.tilt = (leftSlope + rightSlope) / 2;
    posture.steer = (rightSlope - leftSlope) / 2;
    posture.steerChange = previousSteer - posture.steer;
    return posture;
}
