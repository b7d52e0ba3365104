#include "PlanetProjection.h"

#include "OrbShaderCodeBuilder.h"

namespace {

constexpr double kShrink = 0.2801120448179272; // 1 / 3.57
constexpr double kGrow = 3.57;
constexpr double kOffset = 5.95; // degrees

void show(HandDecision &decision, int projection, double fov, qint64 time)
{
    decision.acted = true;
    decision.projection = projection;
    decision.state.planet.planetFov = decision.state.planet.restoreFov = fov;
    decision.state.lastAction = time;
}

} // namespace

double PlanetProjection::planetFov(double flatFov)
{
    return flatFov * kShrink - kOffset;
}

double PlanetProjection::flatFov(double planetFov)
{
    return (planetFov + kOffset) * kGrow;
}

void PlanetProjection::showPlanet(HandDecision &decision, double fov, qint64 time)
{
    show(decision, OrbShaderCodeBuilder::LITTLE_PLANET, fov, time);
}

void PlanetProjection::showFlat(HandDecision &decision, double fov, qint64 time)
{
    show(decision, OrbShaderCodeBuilder::RECTILINEAR, fov, time);
    decision.state.planet.switchCounter = 0;
    decision.state.planet.state = PlanetState::MayBePulled;
}
