#pragma once

#include <condition_variable>
#include <mutex>

/// Holds a foreign thread until something that it needs exists. Any thread may call anything.
class StartGate
{
public:
    /// Waits until the gate is opened; false if the waiting was cancelled.
    bool wait();

    /// Lets everyone through, from now on.
    void open();

    /// Sends those who wait away, and those who come until `allowWaiting`.
    void cancelWaiting();
    void allowWaiting();

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_open = false;
    bool m_cancelled = false;
};
