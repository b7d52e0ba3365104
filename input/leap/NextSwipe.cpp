#include "NextSwipe.h"

HandDecision NextSwipe::detect(const HandScene &scene, const HandState &state)
{
    constexpr qint64 kPause = 1'000'000; // µs
    HandDecision decision;
    decision.state = state;
    const Leap::Frame &frame = scene.frames.current();
    if (frame.gestures()[0].type() != Leap::Gesture::TYPE_SWIPE
        || frame.timestamp() - state.lastAction <= kPause)
        return decision;
    decision.acted = true;
    decision.nextMedium = true;
    decision.state.lastAction = frame.timestamp();
    return decision;
}
