#pragma once

#include "FrameData.h"

namespace Leap {

/// Which of the four types of gestures, as a set.
class GestureTypes
{
public:
    static GestureTypes all()
    {
        GestureTypes types;
        types.m_bits = ~0U;
        return types;
    }

    void set(GestureType type, bool isIn)
    {
        if (isIn)
            m_bits |= bit(type);
        else
            m_bits &= ~bit(type);
    }

    bool contains(GestureType type) const { return (m_bits & bit(type)) != 0; }

private:
    static unsigned bit(GestureType type)
    {
        return type == GestureType::Invalid ? 0U : 1U << unsigned(type);
    }

    unsigned m_bits = 0;
};

} // namespace Leap
