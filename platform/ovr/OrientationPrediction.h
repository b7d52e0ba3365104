#pragma once

#include "OrientationPath.h"

#include <deque>

/// Foretells the orientation from how a headset has just turned.
class OrientationPrediction
{
public:
    /// Samples come in the order of their times.
    void add(const OrientationSample &sample);

    /// The orientation `aheadSeconds` after `nowSeconds`, by the clock of the samples: the last
    /// one, turned on as it turned in the last hundredth of a second, by a tenth of a second at
    /// most. The last one as it is for 0, where the head stands still, and where the samples are
    /// garbage.
    ovrQuatf at(double nowSeconds, double aheadSeconds) const;

private:
    /// Those that differ, back to the first that is far enough from the last to measure a turn by.
    std::deque<OrientationSample> m_samples;
};
