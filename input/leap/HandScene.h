#pragma once

#include "FrameHistory.h"

/// How the user wants hands to steer.
struct HandOptions
{
    double sensitivityYawPitch = 0.2;
    int sensitivitySeekJump = 5000; ///< milliseconds a unit of the circle
    bool pitchInv = false;
    bool yawInv = false;
    double pointerSensibility = 1.2; ///< stretch of the interaction box
    int pointerInterpolation = 2;    ///< frames
    int cameraMode = 3;
    double width = 0; ///< of the window, pixels
    double height = 0;
};

/// What the detectors see of a moment. Made once a frame; they do not change it.
struct HandScene
{
    /// Finds the hands and tells which are open.
    HandScene(const FrameHistory &framesIn, const Leap::Device &deviceIn,
              const HandOptions &optionsIn);

    const FrameHistory &frames;
    const Leap::Device device; ///< the first one
    const HandOptions &options;
    Leap::Hand left;           ///< leftmost; the same as `right` with one hand
    Leap::Hand right;          ///< rightmost
    bool oneHandOpen = false;  ///< there is one hand, and it is open
    bool twoHandsOpen = false; ///< there are two hands, and both are open
};

/// Neither pinching nor grabbing, and at least four fingers stretched.
bool isOpen(const Leap::Hand &hand);
