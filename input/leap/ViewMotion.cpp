#include "ViewMotion.h"

#include "OrbShaderCodeBuilder.h"

#include <algorithm>

namespace {

// A window that has not told its size yet turns nothing.
double turn(const HandView &view, const HandOptions &options, double delta, double extent)
{
    return extent > 0 ? double(view.fov) * delta / extent * options.sensitivityYawPitch : 0.0;
}

double settled(double speed)
{
    return std::abs(speed) < 0.3 ? 0.0 : speed;
}

} // namespace

bool ViewMotion::moveYaw(HandView &view, const HandOptions &options, double delta, double limit)
{
    if (!(std::abs(delta) < limit))
        return false;
    const double by = turn(view, options, delta, options.width);
    view.setYaw(double(view.yaw) + (options.yawInv ? -by : by));
    return true;
}

bool ViewMotion::movePitch(HandView &view, const HandOptions &options, double delta, double limit)
{
    if (!(std::abs(delta) < limit))
        return false;
    const double by = turn(view, options, delta, options.height);
    view.setPitch(double(view.pitch) - (options.pitchInv ? -by : by));
    return true;
}

void ViewMotion::applyInertia(HandState &state, const HandOptions &options)
{
    constexpr double kLimit = 100;
    Glide &glide = state.glide;
    glide.yawSpeed *= glide.yawDecay;
    glide.pitchSpeed *= glide.pitchDecay;
    if (glide.yawSpeed == 0 && glide.pitchSpeed == 0)
        glide.yawDecay = glide.pitchDecay = Glide().yawDecay;
    if (glide.yawSpeed != 0)
        moveYaw(state.view, options, glide.yawSpeed, kLimit);
    if (glide.pitchSpeed != 0)
        movePitch(state.view, options, glide.pitchSpeed, kLimit);
    glide.yawSpeed = settled(glide.yawSpeed);
    glide.pitchSpeed = settled(glide.pitchSpeed);
}

void ViewMotion::setFovClamped(HandView &view, double fov)
{
    if (!std::isfinite(fov))
        return;
    if (view.projection == OrbShaderCodeBuilder::RECTILINEAR)
        view.setFov(fov > 89 && fov < 91 ? 90.0 : std::clamp(fov, 10.0, 130.0));
    else if (view.projection == OrbShaderCodeBuilder::LITTLE_PLANET)
        view.setFov(std::clamp(fov, 10.0, 360.0));
}

void ViewMotion::applyScale(HandState &state, double factor, qint64 time)
{
    HandView &view = state.view;
    const double fov = double(view.fov) / factor;
    if (!std::isfinite(fov))
        return;
    if (view.projection == OrbShaderCodeBuilder::RECTILINEAR) {
        const bool snaps = fov > 88.5 && fov < 91.5;
        view.setFov(snaps ? 90.0 : std::clamp(fov, 30.0, 130.0));
        if (snaps)
            state.lastAction = time;
    } else if (view.projection == OrbShaderCodeBuilder::LITTLE_PLANET) {
        view.setFov(std::clamp(fov, 10.0, 360.0));
    }
}

Leap::Vector ViewMotion::recentWay(const FrameHistory &frames)
{
    Leap::Vector way;
    for (int age = 0; age < 10; ++age)
        way += frames[age].translation(frames[age + 1]);
    return way;
}

bool ViewMotion::isMeant(const FrameHistory &frames)
{
    constexpr float kLikely = 0.7F;
    const Leap::Frame &current = frames.current();
    const Leap::Frame &previous = frames.previous();
    return current.translationProbability(previous) > kLikely
        || current.hands()[0].rotationProbability(previous) > kLikely;
}
