#pragma once

#include <QtGlobal>

#include <algorithm>

/// So many times, for a whole soak; the environment variable SOAK_SHARE takes a part of it, a tenth
/// if it is not set.
inline int soakTimes(int whole)
{
    bool isNumber = false;
    const double share = qEnvironmentVariable("SOAK_SHARE").toDouble(&isNumber);
    return std::max(1, qRound(whole * (isNumber ? share : 0.1)));
}
