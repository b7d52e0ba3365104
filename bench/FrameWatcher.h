#pragma once

#include "FrameCode.h"

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>
#include <vector>

class Screen;

/// Notes when which numbered frame appears on a screen, on a thread of its own, which is the only
/// one that may look there meanwhile.
class FrameWatcher
{
public:
    using Clock = std::chrono::steady_clock;

    explicit FrameWatcher(Screen *screen)
        : m_thread([this, screen] { watch(screen); })
    {}
    ~FrameWatcher() { stop(); }
    FrameWatcher(const FrameWatcher &) = delete;
    FrameWatcher &operator=(const FrameWatcher &) = delete;

    void stop();

    /// The number that is on the screen, -1 before the first.
    int newest() const { return m_newest; }

    /// How often it has looked.
    int looks() const { return m_looks; }

    /// When a number was seen first, none if it was not. Once stopped.
    std::optional<Clock::time_point> seen(int number) const { return m_seen[size_t(number)]; }

private:
    void watch(Screen *screen);

    std::vector<std::optional<Clock::time_point>> m_seen{FrameCode::kLargestNumber + 1};
    std::atomic<int> m_newest{-1};
    std::atomic<int> m_looks{0};
    std::atomic<bool> m_stop{false};
    std::thread m_thread; // last, since it uses the others
};
