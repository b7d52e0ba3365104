#include "LeapListener.h"

void LeapListener::onConnect(const Leap::Controller &controller)
{
    for (const auto type : {Leap::Gesture::TYPE_CIRCLE, Leap::Gesture::TYPE_KEY_TAP,
                            Leap::Gesture::TYPE_SCREEN_TAP, Leap::Gesture::TYPE_SWIPE})
        controller.enableGesture(type);
    emit leapConnected(true);
}

void LeapListener::onDisconnect(const Leap::Controller &)
{
    emit leapConnected(false);
}

void LeapListener::onFrame(const Leap::Controller &controller)
{
    if (isWorthALook(controller))
        emit frameArrive();
}

bool LeapListener::isWorthALook(const Leap::Controller &controller)
{
    constexpr int kNewFrames = 34;
    constexpr float kDoubtful = 0.08F;
    const Leap::Frame current = controller.frame();
    if (!current.isValid() || !controller.frame(1).isValid())
        return false;
    const Leap::HandList hands = current.hands();
    if (!hands.isEmpty() && hands[0].confidence() < kDoubtful)
        return false;
    for (int age = 1; age <= kNewFrames; ++age) {
        if (hands.count() > controller.frame(age).hands().count())
            return false;
    }
    return true;
}
