#pragma once

/// The gestures that are tried on a frame.
enum class HandGesture {
    Inertia, ///< not a gesture: the view glides on by one frame
    OpenHand,
    HandTranslation,
    TwoHandScale,
    CircleSeek,
    CircleSeekHeadset,
    Clap,
    NextSwipe,
    TwoFingerZoom,
    TwoFingerRoll,
    PointerStep,
    PointerReset,
    EdgePush,
    Pull,
    TwoHands,
    PlanetReturn,
    TwoFingerRotation,
    OneFingerTilt,
    PlanetCloseUp,  ///< an open hand that flies over a planet near the ground
    PlanetTwoHands, ///< two hands that tilt a planet, without leaving it
};

/// What the order of gestures and the tutorial have done. On the thread of the frame's analysis.
class HandActions
{
public:
    virtual ~HandActions() = default;

    /// Tries the gesture on the frame and does what it decides. Whether it acted.
    virtual bool attempt(HandGesture gesture) = 0;

    /// Changes to the projection of OrbShaderCodeBuilder, if another is shown.
    virtual void showProjection(int projection) = 0;
};
