#include "PlanetReturn.h"

#include "PlanetProjection.h"
#include "ViewMotion.h"

#include <cmath>

HandDecision PlanetReturn::detect(const HandScene &scene, const HandState &state)
{
    constexpr float kRestingFov = 19; // degrees
    HandDecision decision;
    decision.state = state;
    if (!scene.oneHandOpen || !ViewMotion::isMeant(scene.frames))
        return decision;

    decision.acted = true;
    HandView &view = decision.state.view;
    decision.state.glide.yawSpeed = double(ViewMotion::recentWay(scene.frames).x) / 10 * 3;
    HandOptions upright = scene.options;
    upright.pitchInv = false; // towards 0, whatever the user's hands shall do
    if (view.pitch != 0)
        ViewMotion::movePitch(view, upright, view.pitch < 0 ? -0.1 : 0.1, 20);
    if (view.fov != kRestingFov) {
        const double step = view.fov < kRestingFov ? 0.08 : -0.08;
        ViewMotion::setFovClamped(view, double(view.fov) + step);
    }
    if (std::abs(view.roll) > 0.1F)
        view.setRoll(double(view.roll) + (view.roll < 0 ? 0.01 : -0.01));

    if (std::abs(view.pitch) < 0.1F && std::abs(view.fov - kRestingFov) < 1) {
        decision.state.planet.pullRoll = 0;
        PlanetProjection::showFlat(decision, 90, scene.frames.current().timestamp());
    }
    return decision;
}
