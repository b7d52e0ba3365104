#pragma once

#include "HandState.h"

/// How hands change between the flat picture and the little planet.
namespace PlanetProjection {

/// Field of view of the planet, seen from above, that a flat picture becomes, and the way back;
/// degrees.
double planetFov(double flatFov);
double flatFov(double planetFov);

/// Asks for the projection with that field of view in degrees: a discrete gesture at `time`.
void showPlanet(HandDecision &decision, double fov, qint64 time);
/// As above; the flat picture may then be pulled again.
void showFlat(HandDecision &decision, double fov, qint64 time);

} // namespace PlanetProjection
