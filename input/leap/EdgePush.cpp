#include "EdgePush.h"

#include "ViewMotion.h"

namespace {

/// How hard a place pushes, from -1 at the window's start to 1 at its end, 0 in the middle fifth.
double push(double place, double extent)
{
    constexpr double kEdge = 0.4; // of the window, at each end
    const double edge = kEdge * extent;
    if (place < edge)
        return place / edge - 1;
    if (place > (1 - kEdge) * extent)
        return 1 - (extent - place) / edge;
    return 0;
}

/// From the middle, in half axes of the resting ellipse.
double fromMiddle(double place, double extent)
{
    constexpr double kRest = 0.6; // of the window
    return (place - extent / 2) / (kRest * extent / 2);
}

} // namespace

bool edgePush(HandView &view, const HandOptions &options, double x, double y)
{
    constexpr double kLimit = 20;
    const double aside = fromMiddle(x, options.width);
    const double along = fromMiddle(y, options.height);
    if (aside * aside + along * along < 1)
        return false;
    const double yaw = push(x, options.width);
    const double pitch = -push(y, options.height);
    if (yaw != 0)
        ViewMotion::moveYaw(view, options, yaw, kLimit);
    if (pitch != 0)
        ViewMotion::movePitch(view, options, pitch, kLimit);
    return true;
}
