#pragma once

#include "Leap.h"

/// Which fingers or tools of a moment point.
namespace PointerSelection {

/// Either may be invalid.
struct Pointers
{
    Leap::Pointable first;
    Leap::Pointable second;

    /// How many different ones there are.
    int count() const;
};

/// By both hands: the first stretched finger of index, middle and ring of the leftmost and of the
/// rightmost hand, or tools in their place.
Pointers two(const Leap::Frame &frame);

/// The one that points; invalid if none does.
Leap::Pointable one(const Leap::Frame &frame);

} // namespace PointerSelection
