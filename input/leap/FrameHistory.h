#pragma once

#include "Leap.h"

#include <vector>

/// The last moments by their age, 0 the newest. A frame beyond the end is invalid.
class FrameHistory
{
public:
    FrameHistory() = default;
    explicit FrameHistory(std::vector<Leap::Frame> frames)
        : m_frames(std::move(frames))
    {}

    const Leap::Frame &operator[](int age) const
    {
        static const Leap::Frame kNone;
        return age >= 0 && age < int(m_frames.size()) ? m_frames[std::size_t(age)] : kNone;
    }
    const Leap::Frame &current() const { return (*this)[0]; }
    const Leap::Frame &previous() const { return (*this)[1]; }

private:
    std::vector<Leap::Frame> m_frames;
};
