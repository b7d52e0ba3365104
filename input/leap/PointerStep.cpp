#include "PointerStep.h"

#include "PointerSelection.h"

#include <algorithm>

namespace {

using PointerStep::MouseEvent;
using Zone = Leap::Pointable::Zone;

/// The mean tip of the moments from that age on.
Leap::Vector meanTip(const HandScene &scene, int age, const Leap::Pointable &pointable)
{
    Leap::Vector tip = pointable.stabilizedTipPosition();
    int count = 1;
    for (int more = 1; more < scene.options.pointerInterpolation; ++more) {
        const Leap::Pointable older = PointerSelection::one(scene.frames[age + more]);
        if (!older.isValid())
            continue;
        tip += older.stabilizedTipPosition();
        ++count;
    }
    return tip / float(count);
}

/// Where on the window the tip points, and how deep.
QVector4D pointed(const HandOptions &options, const Leap::Pointable &pointable,
                  const Leap::Vector &tip)
{
    constexpr float kDeepest = 0.9F;
    const Leap::InteractionBox box = pointable.frame().interactionBox();
    const Leap::Vector share = box.normalizePoint(tip, false);
    const double stretch = options.pointerSensibility;
    const auto stretched = [stretch](float value) {
        return double(value) * stretch - (stretch - 1) / 2;
    };
    const double x = stretched(share.x) * options.width;
    const double y = options.height - stretched(share.y) * options.height;
    const float depth = box.normalizePoint(pointable.tipPosition(), true).z;
    return {float(std::clamp(x, 0.0, options.width)), float(std::clamp(y, 0.0, options.height)),
            std::min(depth, kDeepest), 1};
}

std::optional<MouseEvent::Kind> mouseFor(Zone before, Zone now, bool isPressed)
{
    if (now == Zone::Touching && before == Zone::Hovering && !isPressed)
        return MouseEvent::Press;
    if (now == Zone::Hovering)
        return before == Zone::Touching && isPressed ? MouseEvent::Release : MouseEvent::Move;
    return std::nullopt;
}

} // namespace

PointerStep::Result PointerStep::step(const HandScene &scene, const State &state, bool isMenuOpen)
{
    constexpr int kMoments = 20;
    int age = 0;
    Leap::Pointable pointable = PointerSelection::one(scene.frames.current());
    while (!pointable.isValid() && ++age < kMoments)
        pointable = PointerSelection::one(scene.frames[age]);
    if (!pointable.isValid())
        return reset(scene.options, state, isMenuOpen);

    Result result;
    result.state.pointer = pointed(scene.options, pointable, meanTip(scene, age, pointable));
    result.state.isPressed = state.isPressed;
    const Zone before = scene.frames[age + 1].pointable(pointable.id()).touchZone();
    if (const auto kind = mouseFor(before, pointable.touchZone(), state.isPressed)) {
        result.mouse = MouseEvent{*kind, result.state.pointer.toPointF()};
        if (*kind != MouseEvent::Move)
            result.state.isPressed = *kind == MouseEvent::Press;
    }
    return result;
}

PointerStep::Result PointerStep::reset(const HandOptions &options, const State &state,
                                       bool isMenuOpen)
{
    constexpr double kAside = 0.1; // pixels
    Result result;
    result.state = state;
    QVector4D &pointer = result.state.pointer;
    pointer.setX(float(options.width / 2 + kAside));
    pointer.setY(float(options.height / 2 + kAside));
    pointer.setW(-1);
    if (isMenuOpen)
        result.mouse = MouseEvent{MouseEvent::Move, pointer.toPointF()};
    return result;
}
