#pragma once

#include "ovr.h"

#include <vector>

/// Where the headset looks at a time, in seconds of whatever clock the samples share.
struct OrientationSample
{
    double seconds = 0;
    ovrQuatf orientation;
};

/// Whether the orientation is one at all: of unit length, but for rounding.
bool isUnit(const ovrQuatf &orientation);

/// A steady turn, the shorter way, that passes through both samples; `seconds` may lie beyond them.
/// The earlier orientation where the two do not tell: where one is not of unit length, or if
/// `later` is not later.
ovrQuatf turned(const OrientationSample &earlier, const OrientationSample &later, double seconds);

/// A turn by `yawDeg` to the left, then from there by `pitchDeg` up and by `rollDeg` to the left.
ovrQuatf orientationOf(double yawDeg, double pitchDeg, double rollDeg);

/// The orientations of a headset that moves by a plan: steady turns between the samples, whose
/// times rise from 0 or later. Before the first sample the first holds, after the last the last;
/// or, repeating, all begins anew at the time of the last.
class OrientationPath
{
public:
    OrientationPath() = default;
    OrientationPath(std::vector<OrientationSample> samples, bool repeats);

    /// Level and straight ahead without samples.
    ovrQuatf at(double seconds) const;

private:
    std::vector<OrientationSample> m_samples;
    bool m_repeats = false;
};
