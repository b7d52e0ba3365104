#include "TwoHandAnalysis.h"

#include "OrbShaderCodeBuilder.h"
#include "PlanetSwitch.h"
#include "TwoHandTilt.h"

#include <cmath>

HandDecision TwoHandAnalysis::detect(const HandScene &scene, const HandState &state)
{
    constexpr double kUpright = 1.5707963267948966;
    constexpr double kNear = 0.08;
    constexpr qint64 kPause = 1'500'000; // µs
    TwoHandPosture posture = twoHandPosture(scene.frames, state.planet.previousDifference);
    HandDecision decision;
    decision.state = state;
    decision.state.planet.previousDifference = posture.steer;
    const qint64 time = scene.frames.current().timestamp();
    if (std::abs(std::abs(posture.tilt) - kUpright) < kNear && time - state.lastAction > kPause) {
        posture.tilt = kUpright;
        decision.state.lastAction = time;
    }

    if (state.view.projection == OrbShaderCodeBuilder::RECTILINEAR)
        return PlanetSwitch::enter(scene, decision.state, posture);
    if (state.view.projection != OrbShaderCodeBuilder::LITTLE_PLANET)
        return decision;
    decision = TwoHandTilt::detect(scene, decision.state, posture);
    if (decision.acted) {
        decision = PlanetSwitch::leave(scene, decision.state, posture);
        decision.acted = true;
    }
    return decision;
}
