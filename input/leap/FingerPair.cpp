#include "FingerPair.h"

#include <cmath>

std::optional<FingerPair> fingerPair(const PointerSelection::Pointers &pointers)
{
    if (!pointers.first.isValid() || !pointers.second.isValid())
        return std::nullopt;
    const Leap::Vector between = pointers.first.stabilizedTipPosition()
        - pointers.second.stabilizedTipPosition();
    return FingerPair{between, std::abs(between.x + between.y), std::abs(between.z)};
}
