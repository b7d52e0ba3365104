#include "ZoneCheck.h"

namespace {

bool isFading(const Leap::Hand &hand, const Leap::Device &device)
{
    return hand.confidence() < 0.1F
        || (hand.confidence() < 0.2F
            && device.distanceToBoundary(hand.stabilizedPalmPosition()) < 50);
}

/// Edges at which the hand fades; none for a hand that is not there, which is at the origin.
quint8 edgesOf(const Leap::Hand &hand, const Leap::Device &device)
{
    if (!isFading(hand, device))
        return 0;
    const Leap::Vector place = hand.stabilizedPalmPosition();
    unsigned edges = 0;
    if (place.x < -100)
        edges |= ZoneCheck::Left;
    if (place.x > 100)
        edges |= ZoneCheck::Right;
    if (place.y < 100 && place.y != 0)
        edges |= ZoneCheck::Bottom;
    if (place.y > 300)
        edges |= ZoneCheck::Top;
    return quint8(edges);
}

} // namespace

ZoneCheck::Result ZoneCheck::check(const HandScene &scene, qint64 zoneTime)
{
    constexpr int kMoments = 10;
    constexpr qint64 kShown = 1'000'000; // µs
    Result result;
    result.zoneTime = zoneTime;
    for (int age = 0; age < kMoments && result.outZone == 0; ++age) {
        const Leap::HandList hands = scene.frames[age].hands();
        result.outZone = quint8(edgesOf(hands.leftmost(), scene.device)
                                | edgesOf(hands.rightmost(), scene.device));
    }
    result.emitsChange = result.outZone != 0;

    const Leap::Frame &now = scene.frames.current();
    if (!now.hands().isEmpty())
        return result;
    if (result.outZone != 0) {
        result.zoneTime = now.timestamp();
        result.handLost = true;
    } else if (now.timestamp() - zoneTime > kShown) {
        result.emitsChange = true;
    }
    return result;
}
