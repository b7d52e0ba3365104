#pragma once

#include "Orientation.h"

#include <QtGlobal>

#include <cmath>
#include <optional>

/// The view as hands see and change it, a value: angles in radians, the field of view in degrees,
/// with the rules of the view for what is stored.
struct HandView
{
    float yaw = 0;
    float pitch = 0;
    float roll = 0;
    float fov = 90;
    int projection = 1; ///< OrbShaderCodeBuilder's

    void setYaw(double value) { yaw = std::isfinite(value) ? Orientation::wrapAngle(value) : yaw; }
    void setPitch(double value)
    {
        pitch = std::isfinite(value) ? Orientation::wrapAngle(value) : pitch;
    }
    void setRoll(double value) { roll = float(value); }
    void setFov(double value) { fov = float(value); }
};

/// How the view glides on after a hand: speeds in mm a frame, and the factor that each keeps from
/// frame to frame.
struct Glide
{
    double yawSpeed = 0;
    double pitchSpeed = 0;
    double yawDecay = 0.97;
    double pitchDecay = 0.97;
};

/// Which of the gestures between flat picture and little planet are open.
enum class PlanetState : quint8 {
    None = 0,    ///< the bounce after a pull decides
    MayBePulled, ///< a rectilinear picture
    Shown        ///< a little planet
};

/// What the gestures of the little planet remember.
struct Planet
{
    static constexpr double kNoPull = 5.0; ///< `pullPitch` while no pull is under way

    PlanetState state = PlanetState::MayBePulled;
    double pullPitch = kNoPull; ///< the view's before the pull
    double pullFov = 0;
    double pullRoll = 0;
    double palmStartX = 0;         ///< mm
    double planetFov = 0;          ///< field of view of a planet seen from above, degrees
    double restoreFov = 0;         ///< field of view after the next change of projection, degrees
    double previousDifference = 0; ///< of the two hands' tilts, radians
    bool yawByTilt = false;        ///< tilting both hands turns, in place of rolling
    bool pinchHeld = false;
    int switchCounter = 0; ///< frames in the posture that leaves the planet

    bool isPulled() const { return pullPitch != kNoPull; }
};

/// All that the gestures remember from frame to frame, with the view as it is.
struct HandState
{
    HandView view;
    Glide glide;
    Planet planet;
    qint64 lastAction = 0; ///< frame time of the last discrete gesture, µs
    qint64 zoneTime = 0;   ///< frame time at which a hand left the field, µs
    bool clapArmed = true; ///< the hands have been apart since the last clap
};

/// What a detector makes of a frame.
struct HandDecision
{
    /// The scene's animation back to a resting view, values at its end.
    struct Bounce
    {
        double pitch = 0;
        double fov = 0;
        double roll = 0;
    };

    bool acted = false;
    HandState state; ///< after the gesture, with the view that it asks for

    /// A projection to change to; field of view, pitch and roll then go to what `state.planet`
    /// says.
    std::optional<int> projection;
    std::optional<Bounce> bounce;
    std::optional<float> seekJump; ///< milliseconds
    bool togglesPlay = false;
    bool takesBack = false; ///< what the movement of the gesture did to the view
    bool nextMedium = false;
};
