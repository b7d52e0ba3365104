#include "HandPose.h"

#include <cmath>

namespace {

using Leap::Vector;

constexpr float kBent = 1.5707963F; // radians

/// Rotates about the axis by Rodrigues' formula.
Vector rotated(const Vector &vector, const Vector &axis, float angle)
{
    const float c = std::cos(angle);
    const float s = std::sin(angle);
    return vector * c + axis.cross(vector) * s + axis * (axis.dot(vector) * (1 - c));
}

HandPose rotatedPose(HandPose pose, const Vector &axis, float angle)
{
    pose.normal = rotated(pose.normal, axis, angle);
    pose.direction = rotated(pose.direction, axis, angle);
    return pose;
}

} // namespace

HandPose HandPose::at(const Vector &place) const
{
    HandPose pose = *this;
    pose.palm = place;
    return pose;
}

HandPose HandPose::pointing() const
{
    HandPose pose = *this;
    pose.grab = 0.6F;
    pose.extended = {false, true, false, false, false};
    return pose;
}

HandPose HandPose::pinching() const
{
    HandPose pose = *this;
    pose.pinch = 0.95F;
    pose.grab = 0.2F;
    pose.extended = {false, false, true, true, true};
    return pose;
}

HandPose HandPose::fist() const
{
    HandPose pose = *this;
    pose.grab = 1;
    pose.extended = {false, false, false, false, false};
    return pose;
}

HandPose HandPose::nodded(float angle) const
{
    return rotatedPose(*this, Vector::xAxis(), angle);
}

HandPose HandPose::rolled(float angle) const
{
    return rotatedPose(*this, Vector::zAxis(), angle);
}

HandPose HandPose::turned(float angle) const
{
    return rotatedPose(*this, Vector::yAxis(), angle);
}

void addHand(Leap::FrameData &frame, const HandPose &pose)
{
    Leap::HandData hand;
    hand.id = pose.id;
    hand.isLeft = pose.isLeft;
    hand.palmPosition = pose.palm;
    hand.palmNormal = pose.normal;
    hand.direction = pose.direction;
    hand.grabStrength = pose.grab;
    hand.pinchStrength = pose.pinch;
    hand.confidence = pose.confidence;
    hand.timeVisible = pose.timeVisible;
    frame.hands.push_back(hand);

    // To the hand's right, whichever hand it is; the thumb is on the inner side.
    const Vector right = pose.direction.cross(-pose.normal);
    const float outwards = pose.isLeft ? -1.0F : 1.0F;
    for (int type = 0; type < 5; ++type) {
        const auto place = std::size_t(type);
        const Vector root = pose.palm + right * (outwards * float(type - 2) * 20);
        Leap::PointableData finger;
        finger.id = pose.fingerId(type);
        finger.handId = pose.id;
        finger.type = type;
        const float bend = pose.extended[place] ? pose.bend[place] : kBent;
        finger.isExtended = bend < kBent / 2;
        finger.length = type == 0 ? 50 : 60;
        finger.width = 18;
        finger.timeVisible = pose.timeVisible;
        finger.direction = pose.direction * std::cos(bend) + pose.normal * std::sin(bend);
        finger.joints[0] = root - pose.direction * 50;
        finger.joints[1] = root + pose.direction * 30;
        finger.joints[2] = finger.joints[1] + finger.direction * 30;
        finger.joints[3] = finger.joints[2] + finger.direction * 18;
        finger.joints[4] = finger.joints[3] + finger.direction * 12;
        finger.joints[4] += pose.tipOffset[place];
        finger.tipPosition = finger.joints[4];
        frame.pointables.push_back(finger);
    }
}

Leap::FrameData handFrame(std::int64_t id, std::int64_t timestamp,
                          const std::vector<HandPose> &hands)
{
    Leap::FrameData frame;
    frame.id = id;
    frame.timestamp = timestamp;
    frame.currentFrameRate = 100;
    for (const HandPose &hand : hands)
        addHand(frame, hand);
    return frame;
}
