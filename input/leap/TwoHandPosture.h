#pragma once

#include "FrameHistory.h"

/// How the leftmost and the rightmost hand are held, radians, by the last 15 frames. Both are 0
/// with palms flat down.
struct TwoHandPosture
{
    double tilt = 0;        ///< of both palms alike, positive with the inner sides up
    double steer = 0;       ///< as on a wheel, positive clockwise
    double steerChange = 0; ///< back from the last frame's `steer`
};

TwoHandPosture twoHandPosture(const FrameHistory &frames, double previousSteer);
