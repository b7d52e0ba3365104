#include "HandScene.h"

bool isOpen(const Leap::Hand &hand)
{
    return hand.grabStrength() < 0.2F && hand.pinchStrength() < 0.2F
        && hand.fingers().extended().count() > 3;
}

HandScene::HandScene(const FrameHistory &framesIn, const Leap::Device &deviceIn,
                     const HandOptions &optionsIn)
    : frames(framesIn)
    , device(deviceIn)
    , options(optionsIn)
{
    const Leap::HandList hands = frames.current().hands();
    left = hands.leftmost();
    right = hands.rightmost();
    oneHandOpen = hands.count() == 1 && isOpen(hands[0]);
    twoHandsOpen = hands.count() == 2 && isOpen(hands[0]) && isOpen(hands[1]);
}
