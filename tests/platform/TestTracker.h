#pragma once

#include "FrameSource.h"

#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>

/// A hand tracker that tells what a test wants. It lives on a controller's thread, and its
/// functions are for the test's.
class TestTracker : public FrameSource
{
    Q_OBJECT

public:
    explicit TestTracker(std::promise<TestTracker *> *started)
        : m_started(started)
    {}

    void start() override { m_started->set_value(this); }

    /// These return when the controller is through with it.
    void connectDevice(bool isThere)
    {
        tell([=] { emit connectedChanged(isThere); });
    }
    void sendFrame(const Leap::FrameData &frame,
                   Qt::ConnectionType how = Qt::BlockingQueuedConnection)
    {
        tell([=] { emit frameArrived(frame); }, how);
    }

    /// Frames of these numbers without hands.
    void sendFrames(int first, int last)
    {
        Leap::FrameData frame;
        for (int id = first; id <= last; ++id) {
            frame.id = id;
            sendFrame(frame);
        }
    }

    /// Runs on the controller's thread. Handed over by a list of its own, since the thread
    /// sanitizer does not see the locks of Qt's.
    void tell(std::function<void()> what, Qt::ConnectionType how = Qt::BlockingQueuedConnection)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_toTell.push_back(std::move(what));
        }
        QMetaObject::invokeMethod(this, "tellNext", how);
    }

private:
    Q_INVOKABLE void tellNext()
    {
        std::function<void()> what;
        {
            const std::lock_guard lock(m_mutex);
            what = std::move(m_toTell.front());
            m_toTell.pop_front();
        }
        what();
    }

    std::promise<TestTracker *> *m_started;
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_toTell; ///< guarded by m_mutex
};
