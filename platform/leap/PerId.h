#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Leap {

/// What is kept of each hand or finger from one moment to the next. Those that a moment lacks are
/// forgotten.
template <class State>
class PerId
{
public:
    /// No more of them than `limit` at a time.
    explicit PerId(std::size_t limit)
        : m_limit(limit)
    {}

    /// Null beyond the limit. A new one is as by default.
    State *find(int id)
    {
        const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                        [id](const Entry &entry) { return entry.id == id; });
        if (found != m_entries.end()) {
            found->isSeen = true;
            return &found->state;
        }
        if (m_entries.size() >= m_limit)
            return nullptr;
        m_entries.push_back({id, true, {}});
        return &m_entries.back().state;
    }

    /// At the end of a moment; `forget` is called with each state that goes.
    template <class Function>
    void endMoment(const Function &forget)
    {
        for (Entry &entry : m_entries) {
            if (!entry.isSeen)
                forget(entry.state);
        }
        const auto isGone = [](const Entry &entry) { return !entry.isSeen; };
        m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(), isGone),
                        m_entries.end());
        for (Entry &entry : m_entries)
            entry.isSeen = false;
    }
    void endMoment()
    {
        endMoment([](const State &) {});
    }

    void clear() { m_entries.clear(); }

private:
    struct Entry
    {
        int id = 0;
        bool isSeen = false;
        State state;
    };

    std::size_t m_limit;
    std::vector<Entry> m_entries;
};

} // namespace Leap
