#pragma once

#include "PointerSelection.h"

#include <optional>

/// How two pointing fingers or tools lie to each other.
struct FingerPair
{
    Leap::Vector between; ///< from the second tip to the first, stabilized, mm
    float spread = 0;     ///< amount of the way to the side and up together, mm
    float depth = 0;      ///< amount of the way towards the user, mm
};

/// Nothing unless both are valid.
std::optional<FingerPair> fingerPair(const PointerSelection::Pointers &pointers);
