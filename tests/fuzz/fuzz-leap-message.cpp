// Any message of the hand tracking service: what is read keeps to the bounds that the gestures rely
// on.
#include "ServiceMessage.h"

#include <cmath>
#include <cstdlib>

using namespace Leap;

namespace {

void require(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

bool isPlace(const Vector &place)
{
    return std::abs(place.x) <= 1e5F && std::abs(place.y) <= 1e5F && std::abs(place.z) <= 1e5F;
}

bool isUnit(const Vector &vector)
{
    return std::abs(vector.magnitude() - 1) < 1e-4F;
}

bool isUnitOrNone(const Vector &vector)
{
    return vector == Vector() || isUnit(vector);
}

bool isShare(float share)
{
    return share >= 0 && share <= 1;
}

bool isSize(float size)
{
    return size >= 0 && size <= 1e7F;
}

bool isSound(const std::optional<MotionData> &motion)
{
    bool isFinite = true;
    if (motion) {
        for (const Vector &vector : motion->rotation)
            isFinite = isFinite && isPlace(vector);
        isFinite = isFinite && std::isfinite(motion->translation.magnitude())
            && std::isfinite(motion->scale);
    }
    return isFinite;
}

void check(const HandData &hand)
{
    require(isPlace(hand.palmPosition) && isPlace(hand.palmVelocity) && isUnit(hand.palmNormal)
            && isUnit(hand.direction) && isSize(hand.palmWidth) && isSize(hand.timeVisible)
            && isShare(hand.grabStrength) && isShare(hand.pinchStrength) && isShare(hand.confidence)
            && isPlace(hand.stabilizedPalmPosition.value_or(Vector())) && isSound(hand.motion));
}

void check(const PointableData &pointable)
{
    require(pointable.type >= 0 && pointable.type <= 4 && isSize(pointable.length)
            && isSize(pointable.width) && isSize(pointable.timeVisible)
            && isUnit(pointable.direction) && isPlace(pointable.tipPosition)
            && isPlace(pointable.tipVelocity)
            && isPlace(pointable.stabilizedTipPosition.value_or(Vector()))
            && std::abs(pointable.touchDistance.value_or(0)) <= 1);
    for (const Vector &joint : pointable.joints)
        require(isPlace(joint));
}

void check(const GestureData &gesture)
{
    require(gesture.type != GestureType::Invalid && gesture.state != GestureState::Invalid
            && gesture.duration >= 0 && gesture.handIds.size() <= 20
            && gesture.pointableIds.size() <= 120 && isPlace(gesture.center)
            && isUnitOrNone(gesture.normal) && isSize(gesture.progress) && isSize(gesture.radius)
            && isPlace(gesture.startPosition) && isPlace(gesture.position)
            && isUnitOrNone(gesture.direction) && isSize(gesture.speed));
}

void check(const FrameData &frame)
{
    require(frame.id >= 0 && frame.timestamp >= 0 && isSize(frame.currentFrameRate)
            && isSound(frame.motion) && frame.hands.size() <= 20 && frame.pointables.size() <= 120);
    for (const HandData &hand : frame.hands)
        check(hand);
    for (const PointableData &pointable : frame.pointables)
        check(pointable);
    if (frame.gestures) {
        require(frame.gestures->size() <= 100);
        for (const GestureData &gesture : *frame.gestures)
            check(gesture);
    }
    if (frame.interactionBox)
        require(isPlace(frame.interactionBox->center) && isPlace(frame.interactionBox->size)
                && frame.interactionBox->size.x > 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const ServiceMessage message = parseServiceMessage(
        QByteArray(reinterpret_cast<const char *>(data), int(size)));
    if (const auto *frame = std::get_if<FrameData>(&message))
        check(*frame);
    return 0;
}
