#include "TwoHandTilt.h"

#include "ViewMotion.h"

#include <cmath>

namespace {

constexpr double kPi = 3.141592653589793;

/// Whether the hands are near the planet's pitch, be it across the point opposite.
bool takesHold(double tilt, double pitch)
{
    const double error = std::abs(tilt - pitch);
    return error < 0.5 || (error > 5 && std::abs(pitch) - kPi > -0.5);
}

/// The field of view, seen from above, a frame nearer to that of an ordinary planet.
double drifted(double planetFov)
{
    if (planetFov <= 0)
        return planetFov < -1 ? planetFov * 0.8 : 10.0;
    if (planetFov < 19.2)
        return planetFov * 1.05;
    return planetFov > 19.3 ? planetFov * 0.95 : planetFov;
}

double fovOf(double tilt, double planetFov)
{
    return std::abs(tilt) / (kPi / 2) * 90 + planetFov;
}

/// Once it turns it does so until the hands are well off the horizon.
bool isTurning(bool wasTurning, double tilt)
{
    const double amount = std::abs(tilt);
    return wasTurning ? amount >= 1.1 && amount <= 2.9 : amount > 1.4 && amount < 2.7;
}

} // namespace

HandDecision TwoHandTilt::detect(const HandScene &scene, const HandState &state,
                                 const TwoHandPosture &posture)
{
    HandDecision decision;
    decision.state = state;
    HandView &view = decision.state.view;
    Planet &planet = decision.state.planet;
    if (!scene.twoHandsOpen || !takesHold(posture.tilt, double(view.pitch))) {
        planet.switchCounter = 0;
        return decision;
    }
    const float apart = scene.right.stabilizedPalmPosition().x
        - scene.left.stabilizedPalmPosition().x;
    if (!(std::abs(apart) >= 100))
        return decision;

    decision.acted = true;
    const Leap::Frame &frame = scene.frames.current();
    // Compared in the view's own precision, as hands at rest must not count as above.
    const bool isAbove = view.fov > float(fovOf(posture.tilt, planet.planetFov));
    if ((isAbove || view.fov == 10) && std::abs(posture.tilt) < 0.7 && frame.id() % 2 != 0)
        planet.planetFov = drifted(planet.planetFov);

    planet.yawByTilt = isTurning(planet.yawByTilt, posture.tilt);
    if (planet.yawByTilt) {
        const double way = posture.steerChange * 80;
        ViewMotion::moveYaw(view, scene.options, view.pitch < 0 ? -way : way, 20);
    } else {
        view.setRoll(posture.steer);
    }
    view.setPitch(posture.tilt);
    ViewMotion::setFovClamped(view, fovOf(posture.tilt, planet.planetFov));

    const Leap::Frame &previous = scene.frames.previous();
    if (std::abs(double(view.pitch) - kPi / 2) < 0.25 && frame.scaleProbability(previous) > 0.98F) {
        const double before = double(view.fov);
        ViewMotion::applyScale(decision.state, double(frame.scaleFactor(previous)),
                               frame.timestamp());
        planet.planetFov += double(view.fov) - before;
    }
    return decision;
}
