#pragma once

#include "HandState.h"

/// What changes for the gestures of the little planet without a hand.
namespace PlanetEvents {

/// `state.view` has a new projection, by whatever means. A pull under way is not disturbed, unless
/// the projection is neither flat nor a planet.
void projectionChanged(HandState &state);

/// `state.view` has the projection that a gesture asked for; gives the view what goes with it,
/// which had to wait as the limits of the field of view are the projection's.
void projectionChangedByHands(HandState &state);

/// The bounce after a pull has ended at `state.view`: a planet seen exactly from above, pitch 0,
/// becomes flat; any other remains. Nothing if something else has decided that meanwhile. `time` is
/// of the newest moment, µs.
HandDecision animationFinished(const HandState &state, qint64 time);

} // namespace PlanetEvents
