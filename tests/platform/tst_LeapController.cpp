#include "Controller.h"

#include "TestTracker.h"
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

/// A controller with a tracker of the test's.
struct Tracker
{
    std::promise<TestTracker *> started;
    Controller controller{[this] { return std::make_unique<TestTracker>(&started); }};
    TestTracker *source = started.get_future().get();
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
        std::promise<TestTracker *> started;
        const Controller controller([&] { return std::make_unique<TestTracker>(&started); });
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
