#pragma once

#include "Leap.h"

#include <functional>
#include <memory>
#include <vector>

class FrameSource;

namespace Leap {

class Controller;

/// What is told of the device, on the controller's own thread, one call at a time.
class Listener
{
public:
    virtual ~Listener() = default;

    virtual void onConnect(const Controller &) {}
    virtual void onDisconnect(const Controller &) {}
    virtual void onFrame(const Controller &) {}
};

/// The connection to the hand tracker: the tracking service of this machine, or the script of
/// ORBIX_SIMULATE's "hands".
///
/// Lives within that of the application object. Threads: one of its own from the constructor to the
/// destructor, which waits for it; the listener is called there. All functions may be called from
/// any thread, also from within a callback, except for `removeListener` and the destructor, which
/// wait for a running callback.
class Controller
{
public:
    /// Makes the source, never none, on the controller's thread.
    using MakeSource = std::function<std::unique_ptr<FrameSource>()>;

    /// With a source of the caller's, or the usual one.
    explicit Controller(MakeSource makeSource = {});
    ~Controller();

    Controller(const Controller &) = delete;
    Controller &operator=(const Controller &) = delete;

    /// Only one at a time; not owned. It is told of a device that is there already.
    void addListener(Listener &listener);
    /// After this the listener is called no more.
    void removeListener(Listener &listener);

    /// The moment `history` frames ago, 0 the newest; invalid beyond the 60 that are kept, or while
    /// no device is there.
    Frame frame(int history = 0) const;

    bool isConnected() const;
    /// One while it is connected, else none.
    std::vector<Device> devices() const;

    /// Which gestures the following frames hold; none at first.
    void enableGesture(Gesture::Type type, bool enable = true) const;

private:
    struct State;
    const std::unique_ptr<State> m_state;
};

} // namespace Leap
