#include "PlanetSwitch.h"

#include "PlanetProjection.h"

#include <cmath>

namespace {

bool isHeld(const HandScene &scene, const TwoHandPosture &posture, double flattest)
{
    constexpr double kStraight = 0.2; // radians
    return scene.twoHandsOpen && std::abs(posture.tilt) < flattest
        && std::abs(posture.steer) < kStraight;
}

} // namespace

HandDecision PlanetSwitch::enter(const HandScene &scene, const HandState &state,
                                 const TwoHandPosture &posture)
{
    constexpr double kFlattest = 0.2;    // radians
    constexpr qint64 kPause = 1'500'000; // µs
    HandDecision decision;
    decision.state = state;
    Planet &planet = decision.state.planet;
    planet.switchCounter = 0;
    const qint64 time = scene.frames.current().timestamp();
    if (!isHeld(scene, posture, kFlattest) || time - state.lastAction <= kPause)
        return decision;

    planet.pullRoll = 0;
    const double fov = PlanetProjection::planetFov(double(state.view.fov));
    PlanetProjection::showPlanet(decision, fov, time);
    planet.state = PlanetState::Shown;
    return decision;
}

HandDecision PlanetSwitch::leave(const HandScene &scene, const HandState &state,
                                 const TwoHandPosture &posture)
{
    constexpr double kFlattest = 0.3;    // radians
    constexpr qint64 kPause = 3'000'000; // µs
    constexpr int kHold = 17;            // frames
    HandDecision decision;
    decision.state = state;
    Planet &planet = decision.state.planet;
    const qint64 time = scene.frames.current().timestamp();
    if (!isHeld(scene, posture, kFlattest) || time - state.lastAction <= kPause) {
        planet.switchCounter = 0;
        return decision;
    }

    decision.acted = true;
    if (++planet.switchCounter < kHold)
        return decision;
    planet.pullRoll = 0;
    PlanetProjection::showFlat(decision, PlanetProjection::flatFov(planet.planetFov), time);
    return decision;
}
