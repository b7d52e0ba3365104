#pragma once

#include "HandScene.h"
#include "HandState.h"

/// How motion of hands changes the view.
namespace ViewMotion {

/// Turns by a hand's way in mm, unless it is `limit` or more: such jumps are no hand. Whether it
/// turned.
bool moveYaw(HandView &view, const HandOptions &options, double delta, double limit);
bool movePitch(HandView &view, const HandOptions &options, double delta, double limit);

/// Lets the speeds fade and turns the view by them; speeds below 0.3 mm a frame end. To be called
/// once a frame.
void applyInertia(HandState &state, const HandOptions &options);

/// Sets the field of view within what the projection bears, snapping to 90 degrees. Nothing in
/// projections that hands do not zoom.
void setFovClamped(HandView &view, double fov);

/// Divides the field of view by the factor, within what the projection bears; snaps to 90 degrees,
/// which counts as an action at `time`, so that the snap is not overrun.
void applyScale(HandState &state, double factor, qint64 time);

/// The way of all hands over the last ten frames, mm, summed from frame to frame.
Leap::Vector recentWay(const FrameHistory &frames);

/// Whether the hands are likely meant to move or turn something.
bool isMeant(const FrameHistory &frames);

} // namespace ViewMotion
