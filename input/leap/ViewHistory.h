#pragma once

#include "HandState.h"

#include <array>

/// The view and its glide at the last hundred frames, so that what a gesture's own movement did to
/// the view can be taken back.
class ViewHistory
{
public:
    static constexpr int kLength = 100;

    struct Entry
    {
        HandView view;
        double yawSpeed = 0;
        double pitchSpeed = 0;
    };

    void record(const HandState &state, int times = 1)
    {
        for (int i = 0; i < times; ++i) {
            m_newest = (m_newest + kLength - 1) % kLength;
            m_entries[std::size_t(m_newest)] = {state.view, state.glide.yawSpeed,
                                                state.glide.pitchSpeed};
        }
    }

    /// By age in frames, 0 (the newest) to kLength - 1.
    const Entry &operator[](int age) const
    {
        return m_entries[std::size_t((m_newest + age) % kLength)];
    }

private:
    std::array<Entry, kLength> m_entries{};
    int m_newest = 0;
};
