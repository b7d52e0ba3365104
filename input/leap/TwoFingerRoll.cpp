#include "TwoFingerRoll.h"

#include "FingerPair.h"

#include <cmath>

HandDecision TwoFingerRoll::detect(const HandScene &scene, const HandState &state)
{
    constexpr double kHalfPi = 1.5707963267948966;
    constexpr double kLevel = 0.1;     // radians
    constexpr double kJump = 0.4;      // radians
    constexpr float kDeepest = 30;     // mm
    constexpr qint64 kPause = 200'000; // µs
    HandDecision decision;
    decision.state = state;
    const Leap::Frame &frame = scene.frames.current();
    const auto pair = fingerPair(PointerSelection::two(frame));
    if (!pair || scene.twoHandsOpen || frame.timestamp() - state.lastAction <= kPause
        || !(pair->depth < kDeepest))
        return decision;

    double roll = -kHalfPi - std::atan2(double(pair->between.x), -double(pair->between.y));
    if (std::abs(roll) < kLevel) {
        if (state.view.roll == 0)
            return decision;
        roll = 0;
        decision.state.lastAction = frame.timestamp();
    }
    if (std::abs(double(state.view.roll) - roll) < kJump) {
        decision.state.view.setRoll(roll);
        decision.acted = true;
    }
    return decision;
}
