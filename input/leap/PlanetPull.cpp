#include "PlanetPull.h"

#include "OrbShaderCodeBuilder.h"
#include "PlanetProjection.h"
#include "ViewMotion.h"

#include <cmath>

namespace {

bool isPinching(const Leap::Frame &frame)
{
    const Leap::HandList hands = frame.hands();
    const Leap::Hand hand = hands[0];
    return hands.count() == 1 && hand.pinchStrength() > 0.85F && hand.grabStrength() < 0.4F
        && !hand.fingers().fingerType(Leap::Finger::TYPE_INDEX)[0].isExtended();
}

bool isPinchingLoosely(const Leap::Frame &frame)
{
    const Leap::HandList hands = frame.hands();
    return hands.count() == 1 && hands[0].pinchStrength() > 0.5F && hands[0].grabStrength() < 0.7F;
}

bool isPinchHeld(const FrameHistory &frames)
{
    for (int age = 0; age < 15; ++age) {
        if (!isPinching(frames[age]))
            return false;
    }
    return true;
}

bool isPinchRecent(const FrameHistory &frames)
{
    for (int age = 0; age < 20; ++age) {
        if (isPinchingLoosely(frames[age]))
            return true;
    }
    return false;
}

/// Keeps the view to come back to, unless that is done.
void begin(HandState &state, float palmX)
{
    Planet &planet = state.planet;
    if (planet.isPulled() || planet.state == PlanetState::None)
        return;
    planet.pullRoll = double(state.view.roll);
    planet.palmStartX = double(palmX);
    if (planet.state == PlanetState::MayBePulled) {
        state.view.setPitch(0);
        planet.pullPitch = 0;
    } else {
        planet.pullPitch = double(state.view.pitch);
        planet.pullFov = double(state.view.fov);
    }
}

void tilt(HandState &state, const HandScene &scene, const Leap::Vector &palm)
{
    constexpr double kHalfPi = 1.5707963267948966;
    HandView &view = state.view;
    const Leap::Vector way(palm.x - float(state.planet.palmStartX), palm.y, 0);
    const double angle = double(way.angleTo(Leap::Vector::yAxis()));
    view.setRoll(way.x > 0 ? angle : way.x < 0 ? -angle : 0.0);
    const double up = double(scene.frames.current().translation(scene.frames.previous()).y);
    ViewMotion::movePitch(view, scene.options, -up, 20);
    const double share = std::abs(double(view.pitch)) / kHalfPi;
    ViewMotion::setFovClamped(view, share * 90 + state.planet.planetFov);
}

void pull(HandDecision &decision, const HandScene &scene)
{
    const Leap::Frame &frame = scene.frames.current();
    const Leap::Vector palm = frame.hands()[0].stabilizedPalmPosition();
    HandState &state = decision.state;
    state.lastAction = frame.timestamp();
    const bool isFlat = state.view.projection == OrbShaderCodeBuilder::RECTILINEAR;
    const bool isPlanet = state.view.projection == OrbShaderCodeBuilder::LITTLE_PLANET;
    if (!isFlat && !isPlanet)
        return;
    begin(state, palm.x);
    if (isFlat && state.planet.state == PlanetState::MayBePulled) {
        const double fov = PlanetProjection::planetFov(double(state.view.fov));
        PlanetProjection::showPlanet(decision, fov, frame.timestamp());
    } else if (isPlanet) {
        tilt(state, scene, palm);
        decision.acted = true;
    }
}

void release(HandDecision &decision)
{
    Planet &planet = decision.state.planet;
    // A narrow flat view would bounce to a planet of no size.
    const double narrowest = 10; // degrees
    if (planet.state == PlanetState::MayBePulled)
        decision.bounce = HandDecision::Bounce{planet.pullPitch,
                                               std::max(narrowest, planet.planetFov),
                                               planet.pullRoll};
    else if (planet.state == PlanetState::Shown)
        decision.bounce = HandDecision::Bounce{planet.pullPitch, planet.pullFov, planet.pullRoll};
    planet.pullPitch = Planet::kNoPull;
    planet.state = PlanetState::None;
    decision.acted = true;
}

} // namespace

HandDecision PlanetPull::detect(const HandScene &scene, const HandState &state)
{
    HandDecision decision;
    decision.state = state;
    Planet &planet = decision.state.planet;
    planet.pinchHeld = isPinchHeld(scene.frames);
    if (planet.pinchHeld)
        pull(decision, scene);
    else if (planet.isPulled() && !isPinchRecent(scene.frames))
        release(decision);
    return decision;
}
