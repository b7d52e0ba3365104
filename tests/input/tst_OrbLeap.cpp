#include "HandPose.h"
#include "OrbGlobalObject.h"
#include "OrbLeap.h"
#include "OrbQQuickView.h"
#include "OrbSettingsManager.h"
#include "OrbShaderCodeBuilder.h"
#include "OrbVideoPlugin.h"
#include "TestTracker.h"
#include "WarningsFail.h"
#include "ZoneCheck.h"

#include <QMouseEvent>
#include <QtTest>

#include <atomic>

namespace {

using Builder = OrbShaderCodeBuilder;

/// The items of the scene that gestures reach, in one.
class SceneItems : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *mediaPlayer READ self CONSTANT)
    Q_PROPERTY(int position MEMBER position)

public:
    QObject *self() { return this; }

    Q_INVOKABLE void onShowPlayerText(const QVariant &text) { calls += text.toString(); }
    Q_INVOKABLE void playPause() { calls += QStringLiteral("playPause"); }
    Q_INVOKABLE void seekJump(const QVariant &by)
    {
        calls += QStringLiteral("seekJump %1").arg(by.toFloat());
        position += by.toInt();
    }
    Q_INVOKABLE void seek(const QVariant &to)
    {
        calls += QStringLiteral("seek %1").arg(to.toInt());
    }

    int position = 3600000;
    QStringList calls;
};

/// The places of the mouse events that arrive.
class Clicks : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::MouseButtonPress
            || event->type() == QEvent::MouseButtonRelease)
            places += static_cast<QMouseEvent *>(event)->localPos();
        return false;
    }
    QList<QPointF> places;
};

using Hands = std::vector<HandPose>;

Hands bothHands(float apart)
{
    HandPose left = HandPose().at({-apart / 2, 200, 0});
    left.id = 2;
    left.isLeft = true;
    return {HandPose().at({apart / 2, 200, 0}), left};
}

} // namespace

/// The hand tracker as the scene sees it, with a tracker of the test's.
class tst_OrbLeap : public WarningsFail
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void aDeviceThatComesSteersAtOnce();
    void onlyALaterConnectionIsShown();
    void framesOfNewOrDoubtfulHandsAreLeftOut_data();
    void framesOfNewOrDoubtfulHandsAreLeftOut();
    void theFirstGestureOpensTheGate();
    void modesAndThePointer();
    void switchesThatGoResetTheView();
    void theMenuTakesTheCirclesAway();
    void aSwipeClosesTheMenu();
    void aHeldPressIsLetGoWhenTurnedOff();
    void aHandOverTheEdgeIsTold();
    void aClapPausesAndTakesTheViewBack();
    void aCircleSeeks();
    void aPullEndsAfterTheHandHasGone();
    void theTutorialResetsTheView();
    void turnedOffItForgetsWhatWasUnderWay();
    void theMainThreadMaySetAllWhileFramesCome();

private:
    void connectDevice(bool connected)
    {
        m_tracker->connectDevice(connected);
        QCoreApplication::processEvents();
    }
    /// Frames, 10 ms apart.
    void show(const Hands &hands, int frames = 1,
              const std::optional<Leap::GestureData> &gesture = {});
    void openGate();
    /// Counts in m_count, on the test's thread.
    template <typename Signal>
    void countSignal(Signal signal)
    {
        connect(m_leap.get(), signal, this, [this] { ++m_count; });
    }
    static Leap::GestureData gesture(Leap::GestureType type, float progress = 0);

    std::unique_ptr<OrbSettingsManager> m_settings;
    std::unique_ptr<OrbVideoPlugin> m_plugin;
    std::unique_ptr<OrbGlobalObject> m_view;
    std::unique_ptr<OrbQQuickView> m_window;
    std::unique_ptr<Builder> m_builder;
    std::unique_ptr<OrbLeap> m_leap;
    std::unique_ptr<SceneItems> m_scene;
    TestTracker *m_tracker = nullptr;
    std::int64_t m_id = 0;
    int m_count = 0;
};

void tst_OrbLeap::init()
{
    WarningsFail::init();
    m_count = 0;
    m_settings = std::make_unique<OrbSettingsManager>(QStringLiteral("orbix-tests"),
                                                      QStringLiteral("leap"));
    m_plugin = std::make_unique<OrbVideoPlugin>(m_settings.get());
    m_view = std::make_unique<OrbGlobalObject>(m_settings.get(), m_plugin.get());
    m_window = std::make_unique<OrbQQuickView>(m_settings.get(), true);
    m_builder = std::make_unique<Builder>();
    m_builder->setProjection(Builder::RECTILINEAR);
    std::promise<TestTracker *> started;
    m_leap = std::make_unique<OrbLeap>(m_view.get(), m_window.get(), m_builder.get(), [&started] {
        return std::make_unique<TestTracker>(&started);
    });
    m_tracker = started.get_future().get();
    m_window->resize(1000, 500);
    m_scene = std::make_unique<SceneItems>();
    m_leap->setPlayerImage(m_scene.get());
    m_leap->setBar(m_scene.get());
    m_view->setMediaLoader(m_scene.get());
}

void tst_OrbLeap::cleanup()
{
    m_leap.reset();
    m_builder.reset();
    m_window.reset();
    m_view.reset();
    WarningsFail::cleanup();
}

void tst_OrbLeap::show(const Hands &hands, int frames,
                       const std::optional<Leap::GestureData> &gesture)
{
    for (int i = 0; i < frames; ++i) {
        ++m_id;
        Leap::FrameData frame = handFrame(m_id, m_id * 10000, hands);
        if (gesture)
            frame.gestures = {*gesture};
        m_tracker->sendFrame(frame);
    }
    QCoreApplication::processEvents();
}

Leap::GestureData tst_OrbLeap::gesture(Leap::GestureType type, float progress)
{
    Leap::GestureData gesture;
    gesture.id = 3;
    gesture.type = type;
    gesture.state = progress > 0 ? Leap::GestureState::Update : Leap::GestureState::Start;
    gesture.handIds = {1};
    gesture.pointableIds = {HandPose().fingerId(1)};
    gesture.normal = {0, 0, -1};
    gesture.progress = progress;
    gesture.radius = 20;
    return gesture;
}

/// A right hand has been there long enough, and a gesture was seen.
void tst_OrbLeap::openGate()
{
    connectDevice(true);
    show({HandPose().fist()}, 40);
    show({HandPose().fist()}, 1, gesture(Leap::GestureType::KeyTap));
    m_scene->calls.clear();
}

void tst_OrbLeap::aDeviceThatComesSteersAtOnce()
{
    const QString missing = m_leap->logMessage();
    QVERIFY(missing.startsWith(QStringLiteral("Leap Motion device not found.")));
    QVERIFY(m_leap->logLink().contains(
        QStringLiteral("/downloads/skeletal-beta\">Leap Motion SDK</a>.<br><br>")));
    m_leap->setActivated(true); // without a device
    QVERIFY(!m_leap->available() && !m_leap->activated());

    connectDevice(true);
    QVERIFY(m_leap->available() && m_leap->activated());
    QCOMPARE(m_leap->logMessage(), QStringLiteral("Leap Motion Device found.\n"));
    QCOMPARE(m_leap->logLink(), QString());
    m_leap->setActivated(false);
    QVERIFY(m_leap->available() && !m_leap->activated());
    m_leap->setActivated(true);

    connectDevice(false);
    QVERIFY(!m_leap->available() && m_leap->activated()); // as it was
    QCOMPARE(m_leap->logMessage(), missing);
}

void tst_OrbLeap::onlyALaterConnectionIsShown()
{
    const QString comes = QStringLiteral("Leap Motion Controller Connected");
    const QString goes = QStringLiteral("Leap Motion Controller Disconnected");
    connectDevice(true);
    QCOMPARE(m_scene->calls, QStringList());
    openGate();
    connectDevice(false);
    connectDevice(true);
    QCOMPARE(m_scene->calls, QStringList({goes, comes}));
}

void tst_OrbLeap::framesOfNewOrDoubtfulHandsAreLeftOut_data()
{
    QTest::addColumn<int>("before"); // hands in 40 frames
    QTest::addColumn<int>("now");
    QTest::addColumn<int>("frames");
    QTest::addColumn<double>("confidence");
    QTest::addColumn<int>("analysed");
    QTest::newRow("nothing") << 0 << 0 << 3 << 1.0 << 3;
    QTest::newRow("a new hand") << 0 << 1 << 36 << 1.0 << 2;
    QTest::newRow("a second hand") << 1 << 2 << 36 << 1.0 << 2;
    QTest::newRow("one that went") << 2 << 1 << 3 << 1.0 << 3;
    QTest::newRow("a doubtful hand") << 1 << 1 << 3 << 0.079 << 0;
    QTest::newRow("less doubtful") << 1 << 1 << 3 << 0.08 << 3;
}

void tst_OrbLeap::framesOfNewOrDoubtfulHandsAreLeftOut()
{
    QFETCH(int, before);
    QFETCH(int, now);
    QFETCH(int, frames);
    QFETCH(double, confidence);
    const auto hands = [](int count) {
        Hands two = bothHands(200);
        two.resize(std::size_t(count));
        return two;
    };
    openGate();
    show(hands(before), 40);
    countSignal(&OrbLeap::drawFingersSignal);
    m_leap->setDrawHand(false); // then an empty list is sent for each frame
    Hands seen = hands(now);
    for (HandPose &hand : seen)
        hand.confidence = float(confidence);
    show(seen, frames);
    QTEST(m_count, "analysed");
}

void tst_OrbLeap::theFirstGestureOpensTheGate()
{
    Clicks clicks;
    m_window->installEventFilter(&clicks);
    connectDevice(true);
    show({HandPose()}, 40);
    for (int i = 0; i < 20; ++i)
        show({HandPose().at({float(i) * 5, 200, 0})});
    QCOMPARE(m_view->yaw(), 0.0F);
    QVERIFY(clicks.places.isEmpty());
    show({HandPose().at({100, 200, 0})}, 1, gesture(Leap::GestureType::ScreenTap));
    QCOMPARE(clicks.places, QList<QPointF>({{500, 250}, {500, 250}}));
    for (int i = 0; i < 20; ++i)
        show({HandPose().at({100 + float(i) * 5, 200, 0})});
    QVERIFY(m_view->yaw() > 0.1F);
    // Taps are of no use any more.
    show({HandPose()}, 1, gesture(Leap::GestureType::ScreenTap));
    QCOMPARE(clicks.places.size(), 2);
}

void tst_OrbLeap::modesAndThePointer()
{
    for (const int mode : {0, 1, 2, 3, 4}) {
        m_leap->setPointer({1, 2, 0.5F, 1});
        m_leap->setCameraMode(uchar(mode));
        const bool keeps = mode == 1 || mode == 4;
        QCOMPARE(m_leap->pointer(), QVector4D(1, 2, 0.5F, keeps ? 1 : -1));
    }
    m_builder->setOculusMode(true);
    QCOMPARE(int(m_leap->cameraMode()), 2);
    m_builder->setOculusMode(false);
    QCOMPARE(int(m_leap->cameraMode()), 3);
}

void tst_OrbLeap::switchesThatGoResetTheView()
{
    m_view->setRoll(1);
    m_view->setFov(50);
    m_leap->setRollMode(true);
    m_leap->setFovMode(true);
    QCOMPARE(m_view->roll(), 1.0F);
    QCOMPARE(m_view->fov(), 50.0F);
    m_leap->setRollMode(false);
    m_leap->setFovMode(false);
    QCOMPARE(m_view->roll(), 0.0F);
    QCOMPARE(m_view->fov(), 90.0F);
}

void tst_OrbLeap::theMenuTakesTheCirclesAway()
{
    m_leap->setCameraMode(0);
    m_leap->setMenuState(true);
    QCOMPARE(m_leap->pointer().w(), 1.0F);
    m_leap->setMenuState(false);
    QCOMPARE(m_leap->pointer().w(), -1.0F);

    m_leap->setCameraMode(3);
    m_leap->setMenuState(true);
    m_leap->setMenuState(false);
    QCOMPARE(m_leap->pointer().w(), 1.0F);

    // Circles are no gestures then, not even the first.
    Clicks clicks;
    m_window->installEventFilter(&clicks);
    connectDevice(true);
    show({HandPose().fist()}, 40);
    for (const bool open : {true, false}) {
        m_leap->setMenuState(open);
        show({HandPose().fist()}, 1, gesture(Leap::GestureType::Circle));
        QCOMPARE(clicks.places.isEmpty(), open);
    }
}

void tst_OrbLeap::aSwipeClosesTheMenu()
{
    openGate();
    m_leap->setMenuState(true);
    const HandPose onEdge = HandPose().rolled(1.5707963F);
    Leap::GestureData swipe = gesture(Leap::GestureType::Swipe);
    swipe.duration = 130000;
    swipe.direction = {-1, 0, 0};
    swipe.startPosition = {100, 200, 0};
    swipe.speed = 1000;
    show({onEdge}, 70); // a second since the last action
    QVERIFY(m_leap->menuState());
    show({onEdge}, 1, swipe);
    QVERIFY(!m_leap->menuState());
}

void tst_OrbLeap::aHeldPressIsLetGoWhenTurnedOff()
{
    openGate();
    m_leap->setCameraMode(CameraMode::kFinger);
    Clicks clicks;
    m_window->installEventFilter(&clicks);
    show({HandPose().pointing().at({0, 200, 130})}, 40); // in front of the plane of touch
    QVERIFY(clicks.places.isEmpty());
    show({HandPose().pointing().at({0, 200, 60})}, 30);
    QCOMPARE(clicks.places.size(), 1);
    m_leap->setActivated(false);
    QCoreApplication::processEvents();
    QCOMPARE(clicks.places.size(), 2);
}

void tst_OrbLeap::aHandOverTheEdgeIsTold()
{
    openGate();
    countSignal(&OrbLeap::handOutZoneChanged);
    HandPose leaving = HandPose().at({-150, 50, 0});
    leaving.confidence = 0.09F;
    show({leaving});
    show({});
    QCOMPARE(int(m_leap->handOutZone()), ZoneCheck::Left | ZoneCheck::Bottom);
    QVERIFY(m_count > 0);
    show({}, 115);
    QCOMPARE(int(m_leap->handOutZone()), 0);
}

void tst_OrbLeap::aClapPausesAndTakesTheViewBack()
{
    openGate();
    show(bothHands(200), 40);
    const float before = m_view->fov();
    const int projection = m_builder->projection();
    QCOMPARE(projection, int(Builder::LITTLE_PLANET)); // flat hands
    show(bothHands(200), 60);
    QCOMPARE(m_view->fov(), before);
    m_view->setYaw(1); // within the last 50 frames
    show(bothHands(200), 5);
    show(bothHands(20), 10); // once, though they stay together
    QCOMPARE(m_scene->calls, QStringList(QStringLiteral("playPause")));
    QCOMPARE(m_view->yaw(), 0.0F);
    QCOMPARE(m_builder->projection(), projection);
}

void tst_OrbLeap::aCircleSeeks()
{
    openGate();
    const HandPose hand = HandPose().pointing();
    show({hand}, 1, gesture(Leap::GestureType::Circle));
    show({hand}, 1, gesture(Leap::GestureType::Circle, 0.125F));
    // 20 mm * 0.125 turns * 5000 ms, from one hour on.
    QCOMPARE(m_scene->calls.last(), QStringLiteral("01:00:12"));
    QVERIFY(m_scene->calls.contains(QStringLiteral("seekJump 12500")));
}

void tst_OrbLeap::aPullEndsAfterTheHandHasGone()
{
    openGate();
    countSignal(&OrbLeap::pitchBounce);
    show({HandPose().pinching()}, 20);
    QCOMPARE(m_builder->projection(), int(Builder::LITTLE_PLANET));
    show({}, 25);
    QCOMPARE(m_count, 1);
}

void tst_OrbLeap::theTutorialResetsTheView()
{
    countSignal(&OrbLeap::drawFingersSignal);
    countSignal(&OrbLeap::drawFingersSignalOculus);
    const QMap<int, int> lessons{{3, 0}, {1, 10}, {2, 4}, {0, 4}};
    for (const int mode : {3, 1, 2, 0}) {
        m_leap->setCameraMode(uchar(mode));
        m_view->setYaw(1);
        m_builder->setProjection(Builder::FISHEYE);
        m_leap->setTutoState(OrbLeap::kStartTutorial);
        QCOMPARE(m_leap->tutoState(), lessons.value(mode));
        QCOMPARE(m_view->yaw(), 0.0F);
        QCOMPARE(m_builder->projection(), int(Builder::RECTILINEAR));
        QCOMPARE(m_scene->calls.takeLast(), QStringLiteral("seek 0"));
    }
    QCOMPARE(m_count, 0);
    m_leap->setDrawHand(false);
    m_leap->setTutoState(-1);
    QCOMPARE(m_count, 2);
}

void tst_OrbLeap::turnedOffItForgetsWhatWasUnderWay()
{
    openGate();
    // A clap takes back nothing of what the mouse did meanwhile.
    m_leap->setActivated(false);
    m_view->setYaw(2);
    m_leap->setActivated(true);
    show(bothHands(200), 40);
    show(bothHands(20), 10);
    QCOMPARE(m_scene->calls, QStringList(QStringLiteral("playPause")));
    QCOMPARE(m_view->yaw(), 2.0F);
    m_builder->setProjection(Builder::RECTILINEAR);
    show({HandPose()}, 40);

    countSignal(&OrbLeap::pitchBounce);
    show({HandPose().pinching()}, 20);
    QCOMPARE(m_builder->projection(), int(Builder::LITTLE_PLANET));
    m_leap->setActivated(false);
    m_leap->setActivated(true);
    show({HandPose()}, 30);
    QCOMPARE(m_count, 0);
}

void tst_OrbLeap::theMainThreadMaySetAllWhileFramesCome()
{
    openGate();
    const auto isDone = std::make_shared<std::atomic<bool>>(false);
    m_tracker->tell(
        [this, isDone] {
            for (int i = 0; i < 2000; ++i) {
                const float way = float(i % 100);
                const Hands hands = i % 400 < 200 ? Hands{HandPose().at({way, 200, way})}
                                                  : bothHands(20 + way * 2);
                emit m_tracker->frameArrived(
                    handFrame(m_id + i + 1, (m_id + i + 1) * 10000, hands));
            }
            *isDone = true;
        },
        Qt::QueuedConnection);
    int round = 0;
    do {
        ++round;
        m_leap->setCameraMode(uchar(round % 5));
        m_leap->setMenuState(round % 7 == 0);
        m_leap->setSensitivityYawPitch(0.1 + 0.01 * (round % 10));
        m_leap->setDrawHand(round % 2 == 0);
        m_leap->setTutoState(round % 11 == 0 ? OrbLeap::kStartTutorial : HandTutorial::None);
        m_leap->setActivated(round % 13 != 0);
        m_leap->animationFinished();
        QVERIFY(std::isfinite(m_leap->pointer().x()));
        QCoreApplication::processEvents();
    } while (!*isDone);
    QVERIFY(std::isfinite(m_view->yaw()) && std::isfinite(m_view->pitch()));
    QVERIFY(std::isfinite(m_view->fov()) && m_view->fov() >= 10);
}

QTEST_MAIN(tst_OrbLeap)

#include "tst_OrbLeap.moc"
