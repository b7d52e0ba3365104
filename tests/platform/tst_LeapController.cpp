#include "Controller.h"

#include "FrameSource.h"

#include "WarningsFail.h"

#include <QTcpServer>
#include <QtTest>

#include <atomic>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

using namespace Leap;

namespace {

/// A source that tells what the test wants.
class TestSource : public FrameSource
{
    Q_OBJECT

public:
    explicit TestSource(std::promise<TestSource *> *started)
        : m_started(started)
    {}

    void start() override { m_started->set_value(this); }

    /// These return when the controller is through with it.
    void connectDevice(bool isThere)
    {
        tell([=] { emit connectedChanged(isThere); });
    }
    void sendFrame(const FrameData &frame, Qt::ConnectionType how = Qt::BlockingQueuedConnection)
    {
        tell([=] { emit frameArrived(frame); }, how);
    }
    void sendFrames(int first, int last)
    {
        FrameData frame;
        for (int id = first; id <= last; ++id) {
            frame.id = id;
            sendFrame(frame);
        }
    }

private:
    /// By a list of its own, since the thread sanitizer does not see the locks of Qt's.
    void tell(std::function<void()> what, Qt::ConnectionType how = Qt::BlockingQueuedConnection)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_toTell.push_back(std::move(what));
        }
        QMetaObject::invokeMethod(this, "tellNext", how);
    }
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

    std::promise<TestSource *> *m_started;
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_toTell;
};

/// A controller with such a source, which lives on the controller's thread.
struct Tracker
{
    std::promise<TestSource *> started;
    Controller controller{[this] { return std::make_unique<TestSource>(&started); }};
    TestSource *source = started.get_future().get();
};

/// Notes what it is told: + and - for the device, and the newest frame's number.
class NotingListener : public Listener
{
public:
    void onConnect(const Controller &controller) override
    {
        controller.enableGesture(Gesture::TYPE_CIRCLE);
        note(controller.isConnected() ? QStringLiteral("+") : QStringLiteral("+?"));
    }
    void onDisconnect(const Controller &controller) override
    {
        note(controller.frame().isValid() ? QStringLiteral("-?") : QStringLiteral("-"));
    }
    void onFrame(const Controller &controller) override
    {
        note(QString::number(controller.frame().id()));
    }

    QString noted() const
    {
        const std::lock_guard lock(m_mutex);
        return m_noted.join(QLatin1Char(' '));
    }

private:
    void note(const QString &what)
    {
        const std::lock_guard lock(m_mutex);
        m_noted.append(what);
    }

    mutable std::mutex m_mutex;
    QStringList m_noted;
};

QVector<int> typesOf(const GestureList &gestures)
{
    QVector<int> types;
    for (int i = 0; i < gestures.count(); ++i)
        types.append(int(gestures[i].type()));
    return types;
}

} // namespace

class tst_LeapController : public WarningsFail
{
    Q_OBJECT

private slots:
    void keepsSixtyFramesWhileADeviceIsThere();
    void tellsTheListener();
    void keepsTheGesturesThatAreEnabled();
    void waitsForTheListenerThatIsRemoved();
    void isReadFromOtherThreads();
    void endsAtOnce();
    void endsWhileConnecting();
};

void tst_LeapController::keepsSixtyFramesWhileADeviceIsThere()
{
    Tracker tracker;
    const Controller &controller = tracker.controller;
    QVERIFY(!controller.isConnected());
    QVERIFY(controller.devices().empty());
    tracker.source->sendFrames(1, 1);
    QVERIFY(!controller.frame().isValid());

    tracker.source->connectDevice(true);
    QCOMPARE(controller.devices().size(), 1U);
    QVERIFY(!controller.frame().isValid());
    tracker.source->sendFrames(1, 65);
    QCOMPARE(controller.frame().id(), 65);
    QCOMPARE(controller.frame(59).id(), 6);
    QVERIFY(!controller.frame(60).isValid());
    QVERIFY(!controller.frame(-1).isValid());

    const Frame kept = controller.frame(1);
    tracker.source->connectDevice(false);
    QVERIFY(!controller.isConnected() && controller.devices().empty());
    QVERIFY(!controller.frame().isValid());
    QCOMPARE(kept.id(), 64);
    tracker.source->connectDevice(true);
    tracker.source->sendFrames(7, 7);
    QVERIFY(!controller.frame(1).isValid());
}

void tst_LeapController::tellsTheListener()
{
    NotingListener listener;
    NotingListener late;
    Tracker tracker;
    tracker.controller.addListener(listener);
    tracker.source->connectDevice(true);
    tracker.source->sendFrames(1, 2);
    tracker.source->connectDevice(false);
    tracker.source->connectDevice(true);
    tracker.source->sendFrames(3, 3);
    QCOMPARE(listener.noted(), QStringLiteral("+ 1 2 - + 3"));

    tracker.controller.removeListener(late); // which is none
    tracker.controller.removeListener(listener);
    tracker.source->sendFrames(4, 4);
    QCOMPARE(listener.noted(), QStringLiteral("+ 1 2 - + 3"));

    tracker.controller.addListener(late);
    QTRY_COMPARE(late.noted(), QStringLiteral("+"));
    tracker.source->sendFrames(5, 5);
    QCOMPARE(late.noted(), QStringLiteral("+ 5"));
}

void tst_LeapController::keepsTheGesturesThatAreEnabled()
{
    FrameData frame;
    frame.gestures.emplace();
    for (const GestureType type : {GestureType::Swipe, GestureType::Circle, GestureType::ScreenTap,
                                   GestureType::KeyTap, GestureType::Circle}) {
        GestureData gesture;
        gesture.type = type;
        frame.gestures->push_back(gesture);
    }
    Tracker tracker;
    const auto kept = [&] {
        tracker.source->sendFrame(frame);
        return typesOf(tracker.controller.frame().gestures());
    };
    tracker.source->connectDevice(true);
    QCOMPARE(kept(), QVector<int>());
    tracker.controller.enableGesture(Gesture::TYPE_CIRCLE);
    tracker.controller.enableGesture(Gesture::TYPE_KEY_TAP);
    tracker.controller.enableGesture(GestureType::Invalid);
    QCOMPARE(kept(), (QVector<int>{4, 6, 4}));
    tracker.controller.enableGesture(Gesture::TYPE_CIRCLE, false);
    QCOMPARE(kept(), QVector<int>{6});
}

void tst_LeapController::waitsForTheListenerThatIsRemoved()
{
    struct SlowListener : Listener
    {
        void onFrame(const Controller &) override
        {
            entered.set_value();
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            hasReturned = true;
        }
        std::promise<void> entered;
        std::atomic<bool> hasReturned{false};
    };
    SlowListener removed;
    SlowListener last;
    {
        Tracker tracker;
        tracker.controller.addListener(removed);
        tracker.source->connectDevice(true);
        std::thread sender([&] { tracker.source->sendFrames(1, 2); });
        removed.entered.get_future().wait();
        tracker.controller.removeListener(removed);
        QVERIFY(removed.hasReturned);
        sender.join(); // the second frame would have broken the promise

        tracker.controller.addListener(last);
        tracker.source->sendFrame(FrameData(), Qt::QueuedConnection);
        last.entered.get_future().wait();
    }
    QVERIFY(last.hasReturned);
}

void tst_LeapController::isReadFromOtherThreads()
{
    NotingListener listener;
    Tracker tracker;
    std::atomic<bool> isDone{false};
    std::atomic<int> wrong{0};
    std::thread reader([&] {
        while (!isDone) {
            const Frame older = tracker.controller.frame(1);
            const Frame newer = tracker.controller.frame();
            if (older.isValid() && newer.isValid() && newer.id() < older.id())
                ++wrong;
            tracker.controller.enableGesture(Gesture::TYPE_SWIPE);
            tracker.controller.addListener(listener);
            tracker.controller.removeListener(listener);
        }
    });
    tracker.source->connectDevice(true);
    tracker.source->sendFrames(1, 1000);
    isDone = true;
    reader.join();
    QCOMPARE(wrong.load(), 0);
    QCOMPARE(tracker.controller.frame().id(), 1000);
}

void tst_LeapController::endsAtOnce()
{
    for (int i = 0; i < 100; ++i) {
        std::promise<TestSource *> started;
        const Controller controller([&] { return std::make_unique<TestSource>(&started); });
        if (i % 2 != 0)
            started.get_future().wait();
    }
}

/// Whoever listens there says nothing.
void tst_LeapController::endsWhileConnecting()
{
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    qputenv("ORBIX_HANDS_SERVICE",
            QStringLiteral("ws://localhost:%1/").arg(silent.serverPort()).toLatin1());
    for (int i = 0; i < 20; ++i) {
        const Controller controller;
        if (i % 2 != 0)
            QTRY_VERIFY(silent.hasPendingConnections());
        while (silent.hasPendingConnections())
            silent.nextPendingConnection()->deleteLater();
        QVERIFY(!controller.isConnected());
    }
}

QTEST_GUILESS_MAIN(tst_LeapController)
#include "tst_LeapController.moc"
