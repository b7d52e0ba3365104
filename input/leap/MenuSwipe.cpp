#include "MenuSwipe.h"

#include <cmath>

namespace {

bool isSideways(const Leap::Vector &direction, float least)
{
    constexpr float kMostUpright = 0.4F;
    return std::abs(direction.x) > least && std::abs(direction.y) < kMostUpright;
}

bool isStroke(const Leap::SwipeGesture &swipe)
{
    constexpr std::int64_t kShortest = 130'000; // µs
    constexpr float kSlowest = 150;             // mm/s
    constexpr float kOutside = 0.5F;            // of the box
    if (!swipe.isValid() || swipe.duration() < kShortest || !(swipe.speed() > kSlowest))
        return false;
    const Leap::Vector start = swipe.frame().interactionBox().normalizePoint(swipe.startPosition(),
                                                                             false);
    return std::abs(start.x) > kOutside && isSideways(swipe.direction(), 0.5F);
}

bool isFlatOnEdge(const Leap::Hand &hand)
{
    return isSideways(hand.palmNormal(), 0.4F) && hand.grabStrength() < 0.5F
        && hand.pinchStrength() < 0.5F;
}

} // namespace

MenuSwipe::Result MenuSwipe::detect(const HandScene &scene, qint64 lastAction)
{
    constexpr qint64 kPause = 1'000'000; // µs
    const Leap::Frame &frame = scene.frames.current();
    if (frame.timestamp() - lastAction <= kPause)
        return {false, lastAction};
    const Leap::GestureList gestures = frame.gestures();
    for (int i = 0; i < gestures.count(); ++i) {
        const Leap::SwipeGesture swipe(gestures[i]);
        if (isStroke(swipe) && isFlatOnEdge(swipe.hands()[0]))
            return {true, frame.timestamp()};
    }
    return {false, lastAction};
}
