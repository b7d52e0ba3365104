#pragma once

#include "Leap.h"

#include <array>

/// A synthetic hand at a moment, for tests: an open right hand, palm down, 200 mm above the device.
struct HandPose
{
    int id = 1;
    bool isLeft = false;
    Leap::Vector palm{0, 200, 0};
    Leap::Vector normal{0, -1, 0};    ///< out of the palm
    Leap::Vector direction{0, 0, -1}; ///< to the fingers
    float grab = 0;
    float pinch = 0;
    float confidence = 1;
    float timeVisible = 1;                                      ///< seconds
    std::array<bool, 5> extended{true, true, true, true, true}; ///< from the thumb
    /// How far extended fingers are bent towards the palm, radians. From 45 degrees on a finger
    /// counts as extended no more; others are bent by 90.
    std::array<float, 5> bend{};
    /// Of the tips from where stretched or bent fingers have them, mm.
    std::array<Leap::Vector, 5> tipOffset;

    /// Of the finger of that type.
    int fingerId(int type) const { return id * 10 + type; }

    HandPose at(const Leap::Vector &place) const;
    HandPose pointing() const; ///< with the index finger alone
    HandPose pinching() const; ///< thumb and index together
    HandPose fist() const;
    /// Turned about the x axis, so that the palm nods, the z axis, so that it rolls, or the y axis;
    /// radians, right-handed.
    HandPose nodded(float angle) const;
    HandPose rolled(float angle) const;
    HandPose turned(float angle) const;
};

/// Puts the hand with its five fingers into the moment, with all four bones of each.
void addHand(Leap::FrameData &frame, const HandPose &pose);

/// A moment with these hands; `timestamp` in µs.
Leap::FrameData handFrame(std::int64_t id, std::int64_t timestamp,
                          const std::vector<HandPose> &hands);
