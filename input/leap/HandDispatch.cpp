#include "HandDispatch.h"

#include "OrbShaderCodeBuilder.h"
#include "PointerSelection.h"

namespace {

using Gesture = HandGesture;

/// One frame on its way through the gestures.
class Dispatch
{
public:
    Dispatch(const HandScene &scene, const HandState &state, const HandSwitches &switches,
             HandActions &actions)
        : m_scene(scene)
        , m_state(state)
        , m_switches(switches)
        , m_actions(actions)
    {}

    void handTranslation() const;
    void finger(bool hasPointables) const;
    void headset() const;
    void hands() const;
    void planet() const;

private:
    bool attempt(Gesture gesture) const { return m_actions.attempt(gesture); }
    bool seeks(Gesture gesture) const { return m_switches.seekGesture && attempt(gesture); }
    bool claps() const { return m_switches.playPauseGesture && attempt(Gesture::Clap); }
    bool seeksAfterRest() const;
    bool seeksPullsOrZooms() const;
    bool byProjection() const;

    const HandScene &m_scene;
    const HandState &m_state;
    const HandSwitches &m_switches;
    HandActions &m_actions;
};

void Dispatch::handTranslation() const
{
    if (seeks(Gesture::CircleSeek) || claps())
        return;
    if (m_scene.oneHandOpen)
        attempt(Gesture::HandTranslation);
    else if (m_scene.twoHandsOpen && m_switches.fovMode)
        attempt(Gesture::TwoHandScale);
}

void Dispatch::finger(bool hasPointables) const
{
    if (!hasPointables) {
        attempt(Gesture::PointerReset);
        return;
    }
    if (claps())
        return;
    const int pointers = PointerSelection::two(m_scene.frames.current()).count();
    if (pointers == 1) {
        if (seeks(Gesture::CircleSeek))
            return;
        attempt(Gesture::PointerStep);
        attempt(Gesture::EdgePush);
    } else if (pointers == 2) {
        attempt(Gesture::PointerReset);
        if (m_switches.fovMode)
            attempt(Gesture::TwoFingerZoom);
        if (m_switches.rollMode)
            attempt(Gesture::TwoFingerRoll);
    }
}

void Dispatch::headset() const
{
    if (seeks(Gesture::CircleSeekHeadset) || claps())
        return;
    attempt(Gesture::NextSwipe);
}

bool Dispatch::seeksAfterRest() const
{
    constexpr qint64 kRest = 1500000; // µs
    return m_scene.frames.current().timestamp() - m_state.lastAction > kRest
        && seeks(Gesture::CircleSeek);
}

bool Dispatch::seeksPullsOrZooms() const
{
    if (seeksAfterRest() || attempt(Gesture::Pull))
        return true;
    if (m_switches.fovMode && !m_scene.twoHandsOpen)
        attempt(Gesture::TwoFingerZoom);
    return false;
}

bool Dispatch::byProjection() const
{
    constexpr float kNearlyFlat = 0.75F; // radians
    switch (m_state.view.projection) {
    case OrbShaderCodeBuilder::RECTILINEAR:
        if (m_switches.rollMode && !m_scene.twoHandsOpen)
            attempt(Gesture::TwoFingerRoll);
        return attempt(Gesture::OpenHand);
    case OrbShaderCodeBuilder::LITTLE_PLANET:
        return (m_state.view.pitch < kNearlyFlat && m_state.planet.state != PlanetState::None
                && attempt(Gesture::PlanetReturn))
            || attempt(Gesture::TwoFingerRotation) || attempt(Gesture::OneFingerTilt);
    case OrbShaderCodeBuilder::MIRROR_BALL:
    case OrbShaderCodeBuilder::FISHEYE:
        return attempt(Gesture::OpenHand);
    default:
        return false;
    }
}

void Dispatch::hands() const
{
    attempt(Gesture::Inertia);
    if (seeksPullsOrZooms() || attempt(Gesture::TwoHands) || byProjection())
        return;
    claps();
}

void Dispatch::planet() const
{
    constexpr float kNearGround = 15; // degrees
    m_actions.showProjection(OrbShaderCodeBuilder::LITTLE_PLANET);
    if (seeksPullsOrZooms())
        return;
    attempt(Gesture::Inertia);
    const int count = m_scene.frames.current().hands().count();
    bool acted = false;
    if (count == 1 && m_state.view.fov < kNearGround)
        acted = attempt(Gesture::PlanetCloseUp);
    else if (count == 2)
        acted = attempt(Gesture::TwoFingerRotation) || attempt(Gesture::PlanetTwoHands)
            || attempt(Gesture::OneFingerTilt);
    if (!acted)
        claps();
}

} // namespace

void dispatchHands(const HandScene &scene, const HandState &state, const HandSwitches &switches,
                   bool hasPointables, HandActions &actions)
{
    const Dispatch dispatch(scene, state, switches, actions);
    const bool rests = state.glide.yawSpeed == 0 && state.glide.pitchSpeed == 0;
    switch (scene.options.cameraMode) {
    case CameraMode::kHandTranslation:
        if (hasPointables)
            dispatch.handTranslation();
        break;
    case CameraMode::kFinger:
        dispatch.finger(hasPointables);
        break;
    case CameraMode::kHeadset:
        dispatch.headset();
        break;
    case CameraMode::kHands:
        // A pull ends after the hand has gone, too.
        if (hasPointables || !rests || state.planet.pinchHeld || state.planet.isPulled())
            dispatch.hands();
        break;
    case CameraMode::kPlanet:
        if (hasPointables || !rests || state.planet.isPulled())
            dispatch.planet();
        break;
    default:
        break;
    }
}
