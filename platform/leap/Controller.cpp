#include "Controller.h"

#include "FileSource.h"
#include "FrameDeriver.h"
#include "ServiceSource.h"
#include "Simulation.h"

#include <QEventLoop>

#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace {

using namespace Leap;

constexpr std::size_t kHistory = 60; // frames

std::unique_ptr<FrameSource> makeUsualSource()
{
    if (const auto script = Simulation::script(QStringLiteral("hands")))
        return std::make_unique<FileSource>(*script);
    return std::make_unique<ServiceSource>();
}

} // namespace

/// Two locks: `calling` is held while the listener is called, `mutex` for a moment by whoever reads
/// or writes what stands under it. Who holds `mutex` takes no other.
struct Leap::Controller::State
{
    explicit State(const Controller &itsOwner)
        : owner(itsOwner)
    {}

    void run(const MakeSource &makeSource);
    void quit();

    void setConnected(bool connected);
    void keep(FrameData frame);
    void tell(bool ofFrame);

    const Controller &owner;
    std::thread thread;
    std::mutex calling;
    FrameDeriver deriver; ///< on the controller's thread

    mutable std::mutex mutex;
    Listener *listener = nullptr;
    QEventLoop *loop = nullptr; ///< while it may be told to quit
    bool isQuitting = false;
    bool isConnected = false;
    bool isTold = false;             ///< what the listener knows of isConnected
    bool isToldSoon = false;         ///< is that on its way?
    std::deque<FrameDataPtr> frames; ///< from the newest
    GestureTypes enabledGestures;
};

void Leap::Controller::State::run(const MakeSource &makeSource)
{
    QEventLoop events;
    {
        const std::lock_guard lock(mutex);
        if (isQuitting)
            return;
        loop = &events;
    }
    const std::unique_ptr<FrameSource> source = makeSource();
    QObject::connect(source.get(), &FrameSource::connectedChanged, source.get(),
                     [this](bool connected) { setConnected(connected); });
    QObject::connect(source.get(), &FrameSource::frameArrived, source.get(),
                     [this](const FrameData &frame) { keep(frame); });
    source->start();
    events.exec();
    const std::lock_guard lock(mutex);
    loop = nullptr;
}

void Leap::Controller::State::quit()
{
    const std::lock_guard lock(mutex);
    isQuitting = true;
    // Posted, so that it also ends a loop that is still to begin.
    if (loop)
        QMetaObject::invokeMethod(loop, &QEventLoop::quit, Qt::QueuedConnection);
}

void Leap::Controller::State::setConnected(bool connected)
{
    deriver = FrameDeriver();
    {
        const std::lock_guard lock(mutex);
        isConnected = connected;
        frames.clear();
    }
    tell(false);
}

void Leap::Controller::State::keep(FrameData frame)
{
    GestureTypes wanted;
    {
        const std::lock_guard lock(mutex);
        wanted = enabledGestures;
    }
    deriver.complete(frame, wanted);
    {
        const std::lock_guard lock(mutex);
        if (!isConnected)
            return;
        if (frames.size() == kHistory)
            frames.pop_back();
        frames.push_front(std::make_shared<const FrameData>(std::move(frame)));
    }
    tell(true);
}

/// Tells the listener what it does not know of the device yet, then of the newest frame.
void Leap::Controller::State::tell(bool ofFrame)
{
    const std::lock_guard callLock(calling);
    Listener *its = nullptr;
    bool connected = false;
    bool isNews = false;
    {
        const std::lock_guard lock(mutex);
        its = listener;
        connected = isConnected;
        isNews = std::exchange(isTold, connected) != connected;
    }
    if (!its)
        return;
    if (isNews && connected)
        its->onConnect(owner);
    else if (isNews)
        its->onDisconnect(owner);
    if (ofFrame)
        its->onFrame(owner);
}

Leap::Controller::Controller(MakeSource makeSource)
    : m_state(std::make_unique<State>(*this))
{
    if (!makeSource)
        makeSource = &makeUsualSource;
    m_state->thread = std::thread(
        [state = m_state.get(), make = std::move(makeSource)] { state->run(make); });
}

Leap::Controller::~Controller()
{
    m_state->quit();
    m_state->thread.join();
}

void Leap::Controller::addListener(Listener &listener)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->listener = &listener;
    m_state->isTold = false;
    if (!m_state->loop || std::exchange(m_state->isToldSoon, true))
        return;
    const auto tell = [state = m_state.get()] {
        {
            const std::lock_guard stateLock(state->mutex);
            state->isToldSoon = false;
        }
        state->tell(false);
    };
    QMetaObject::invokeMethod(m_state->loop, tell, Qt::QueuedConnection);
}

void Leap::Controller::removeListener(Listener &listener)
{
    {
        const std::lock_guard lock(m_state->mutex);
        if (m_state->listener != &listener)
            return;
        m_state->listener = nullptr;
    }
    const std::lock_guard untilItReturned(m_state->calling);
}

Leap::Frame Leap::Controller::frame(int history) const
{
    const std::lock_guard lock(m_state->mutex);
    const auto &frames = m_state->frames;
    if (history < 0 || static_cast<std::size_t>(history) >= frames.size())
        return {};
    return Frame(frames[static_cast<std::size_t>(history)]);
}

bool Leap::Controller::isConnected() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->isConnected;
}

std::vector<Leap::Device> Leap::Controller::devices() const
{
    return std::vector<Device>(isConnected() ? 1 : 0);
}

void Leap::Controller::enableGesture(Gesture::Type type, bool enable) const
{
    const std::lock_guard lock(m_state->mutex);
    m_state->enabledGestures.set(type, enable);
}
