#pragma once

#include <chrono>

/// Seconds of the clock that the headset layer counts by; it starts above 0 and never goes back.
inline double steadySeconds()
{
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(sinceStart).count();
}
