#include "PointerSelection.h"

namespace {

Leap::Pointable pointingFinger(const Leap::Hand &hand)
{
    const Leap::FingerList fingers = hand.fingers();
    for (const auto type :
         {Leap::Finger::TYPE_INDEX, Leap::Finger::TYPE_MIDDLE, Leap::Finger::TYPE_RING}) {
        const Leap::Finger finger = fingers.fingerType(type)[0];
        if (finger.isExtended())
            return finger;
    }
    return {};
}

} // namespace

int PointerSelection::Pointers::count() const
{
    if (first.isValid() && second.isValid())
        return first == second ? 1 : 2;
    return first.isValid() || second.isValid() ? 1 : 0;
}

PointerSelection::Pointers PointerSelection::two(const Leap::Frame &frame)
{
    Pointers pointers;
    const Leap::HandList hands = frame.hands();
    const Leap::ToolList tools = frame.tools();
    const int fingers = frame.fingers().count();
    if (tools.isEmpty()) {
        if (hands.count() >= 1)
            pointers.first = pointingFinger(hands.leftmost());
        if (hands.count() >= 2)
            pointers.second = pointingFinger(hands.rightmost());
    } else if (fingers == 0) {
        pointers.first = tools.leftmost();
        if (tools.count() >= 2)
            pointers.second = tools.rightmost();
    } else if (fingers == 5 && tools.count() == 1) {
        const Leap::Pointable finger = pointingFinger(hands[0]);
        const Leap::Pointable tool = tools[0];
        const bool isToolLeft = frame.pointables().leftmost() == tool;
        pointers.first = isToolLeft ? tool : finger;
        pointers.second = isToolLeft ? finger : tool;
    }
    return pointers;
}

Leap::Pointable PointerSelection::one(const Leap::Frame &frame)
{
    const Pointers pointers = two(frame);
    if (!pointers.first.isValid() && frame.hands().count() >= 2)
        return pointers.second;
    return pointers.first;
}
