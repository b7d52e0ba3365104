#include "PlanetEvents.h"

#include "OrbShaderCodeBuilder.h"
#include "PlanetProjection.h"
#include "ViewMotion.h"

void PlanetEvents::projectionChanged(HandState &state)
{
    Planet &planet = state.planet;
    if (state.view.projection == OrbShaderCodeBuilder::RECTILINEAR)
        planet.state = planet.isPulled() ? planet.state : PlanetState::MayBePulled;
    else if (state.view.projection == OrbShaderCodeBuilder::LITTLE_PLANET)
        planet.state = planet.isPulled() ? planet.state : PlanetState::Shown;
    else
        planet.state = PlanetState::None;
}

void PlanetEvents::projectionChangedByHands(HandState &state)
{
    ViewMotion::setFovClamped(state.view, state.planet.restoreFov);
    state.view.setPitch(0);
    state.view.setRoll(state.planet.pullRoll);
}

HandDecision PlanetEvents::animationFinished(const HandState &state, qint64 time)
{
    HandDecision decision;
    decision.state = state;
    if (state.planet.state != PlanetState::None
        || state.view.projection != OrbShaderCodeBuilder::LITTLE_PLANET)
        return decision;
    decision.acted = true;
    HandView &view = decision.state.view;
    if (view.pitch != 0) {
        decision.state.planet.state = PlanetState::Shown;
        return decision;
    }
    ViewMotion::setFovClamped(view, state.planet.planetFov);
    PlanetProjection::showFlat(decision, PlanetProjection::flatFov(double(view.fov)), time);
    return decision;
}
