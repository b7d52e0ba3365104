#include "CircleSeek.h"
#include "Clap.h"
#include "HandStage.h"
#include "MenuSwipe.h"
#include "NextSwipe.h"
#include "WarningsFail.h"

#include <QtTest>

#include <cmath>

using Change = HandStage::Change;
using Leap::GestureData;
using Leap::Vector;

namespace {

constexpr qint64 kNow = HandStage::kNow;

/// Applied to the gesture and its hand at the newest moment.
using Vary = std::function<void(GestureData &, Leap::HandData &)>;

void asItIs(GestureData &, Leap::HandData &) {}

/// A hand with its index finger in the middle of the interaction box.
HandStage::Hands pointing(int)
{
    return {HandPose().at(Vector(20, 200, 90)).pointing()};
}

/// A quarter turn of 20 mm radius since the last moment, clockwise for who looks forwards.
GestureData circle(float progress)
{
    GestureData gesture;
    gesture.id = 7;
    gesture.type = Leap::GestureType::Circle;
    gesture.state = Leap::GestureState::Update;
    gesture.handIds = {1};
    gesture.pointableIds = {HandPose().fingerId(1)};
    gesture.normal = {0, 0, -1};
    gesture.progress = progress;
    gesture.radius = 20;
    return gesture;
}

/// To the left by a right hand on edge.
GestureData swipe()
{
    GestureData gesture;
    gesture.id = 8;
    gesture.type = Leap::GestureType::Swipe;
    gesture.state = Leap::GestureState::Update;
    gesture.duration = 130'000;
    gesture.handIds = {1};
    gesture.startPosition = {30, 200, 0};
    gesture.direction = {-1, 0, 0};
    gesture.speed = 1000;
    return gesture;
}

} // namespace

Q_DECLARE_METATYPE(Vary)

class tst_HandGestures : public WarningsFail
{
    Q_OBJECT

private slots:
    void circlesSeek_data();
    void circlesSeek();
    void clapsToggleOnce_data();
    void clapsToggleOnce();
    void aSwipeGoesToTheNextMedium_data();
    void aSwipeGoesToTheNextMedium();
    void swipesFlipTheMenu_data();
    void swipesFlipTheMenu();
    void oneSwipeFlipsTheMenuOnce();
};

void tst_HandGestures::circlesSeek_data()
{
    QTest::addColumn<int>("cameraMode");
    QTest::addColumn<Change>("change");
    QTest::addColumn<double>("jump"); // ms; 0 for none on the screen
    QTest::addColumn<double>("inHeadset");
    // 20 mm · 0.25 turns · 5000 ms
    const double kJump = 25'000;
    const auto vary = [](const Vary &change) -> Change {
        return
            [change](HandStage &s) { change(s.moment(0).gestures->at(0), s.moment(0).hands[0]); };
    };
    const auto row = [](const char *name, const Change &change, double jump, double inHeadset,
                        int mode = 3) {
        QTest::newRow(name) << mode << change << jump << inHeadset;
    };
    const auto tilted = [vary](float degrees) {
        return vary([degrees](GestureData &g, Leap::HandData &) {
            const float angle = degrees * 0.017453293F;
            g.normal = {std::sin(angle), 0, -std::cos(angle)};
        });
    };
    const auto direction = [vary](const Vector &to) {
        return vary([to](GestureData &, Leap::HandData &hand) { hand.direction = to; });
    };
    row("clockwise", vary(asItIs), kJump, kJump);
    row("tilted by 44 degrees", tilted(44), kJump, kJump);
    row("tilted by 46 degrees", tilted(46), -kJump, -kJump);
    row("against the clock", tilted(180), -kJump, -kJump);
    row("its beginning",
        vary([](GestureData &g, Leap::HandData &) { g.state = Leap::GestureState::Start; }), 0, 0);
    row("unknown before", vary([](GestureData &g, Leap::HandData &) { g.id = 9; }), 5 * kJump,
        5 * kJump);
    row(
        "behind another gesture",
        [](HandStage &s) {
            s.moment(0).gestures = {{swipe(), circle(1.25F)}};
        },
        kJump, kJump);
    row(
        "no circle", [](HandStage &s) { s.moment(0).gestures = {{swipe()}}; }, std::nan(""),
        std::nan(""));
    row(
        "no gesture", [](HandStage &s) { s.moment(0).gestures.reset(); }, std::nan(""),
        std::nan(""));
    row(
        "two hands",
        [](HandStage &s) {
            HandPose other = HandPose().at({200, 200, 0});
            other.id = 2;
            addHand(s.moment(0), other);
        },
        std::nan(""), std::nan(""));
    row(
        "an open hand",
        [](HandStage &s) {
            s.moment(0).hands[0].grabStrength = 0;
            for (Leap::PointableData &finger : s.moment(0).pointables)
                finger.isExtended = true;
        },
        std::nan(""), std::nan(""));
    row("aside by 0.2", direction({-0.2F, 0, -0.7F}), kJump, kJump);
    row("aside by 0.21", direction({-0.21F, 0, -0.97F}), std::nan(""), kJump);
    row("forwards by 0.69", direction({0, 0.72F, -0.69F}), std::nan(""), kJump);

    // The box is 235.247 mm wide about (0, 200, 0), so 0.1 of it is 23.52 mm.
    const auto tipAt = [](const Vector &tip) {
        return [tip](HandStage &s) { s.moment(0).pointables[1].tipPosition = tip; };
    };
    row("pointer in the middle", tipAt({23.4F, 176.6F, 300}), kJump, kJump, 1);
    row("pointer too far right", tipAt({23.6F, 200, 0}), std::nan(""), kJump, 1);
    row("pointer too far left", tipAt({-23.6F, 200, 0}), std::nan(""), kJump, 1);
    row("pointer too high", tipAt({0, 223.6F, 0}), std::nan(""), kJump, 1);
    row("pointer too low", tipAt({0, 176.4F, 0}), std::nan(""), kJump, 1);
    row("no pointer", tipAt({100, 300, 0}), kJump, kJump, 3);
}

void tst_HandGestures::circlesSeek()
{
    QFETCH(int, cameraMode);
    QFETCH(Change, change);
    HandStage stage(pointing);
    stage.options.cameraMode = cameraMode;
    stage.addGesture(circle(1.25F));
    stage.addGesture(circle(1.0F), 1);
    change(stage);
    const auto check = [](const HandDecision &decision, double jump) {
        QCOMPARE(decision.acted, !std::isnan(jump));
        QCOMPARE(decision.seekJump.has_value(), decision.acted);
        QCOMPARE(decision.seekJump.value_or(0), std::isnan(jump) ? 0.0F : float(jump));
    };
    QFETCH(double, jump);
    check(CircleSeek::detect(stage.scene(), HandState()), jump);
    QFETCH(double, inHeadset);
    check(CircleSeek::detectForHeadset(stage.scene(), HandState()), inHeadset);
}

void tst_HandGestures::clapsToggleOnce_data()
{
    QTest::addColumn<float>("apart"); // mm
    QTest::addColumn<int>("hands");
    QTest::addColumn<bool>("armed");
    QTest::addColumn<int>("cameraMode");
    QTest::addColumn<bool>("acts");
    QTest::newRow("together") << 49.9F << 2 << true << 3 << true;
    QTest::newRow("apart") << 50.1F << 2 << true << 3 << false;
    QTest::newRow("again") << 10.0F << 2 << false << 3 << false;
    QTest::newRow("one hand") << 10.0F << 1 << true << 3 << false;
    QTest::newRow("three hands") << 10.0F << 3 << true << 3 << false;
    QTest::newRow("in a headset") << 10.0F << 2 << true << 2 << true;
}

void tst_HandGestures::clapsToggleOnce()
{
    QFETCH(float, apart);
    QFETCH(int, hands);
    QFETCH(bool, armed);
    QFETCH(int, cameraMode);
    QFETCH(bool, acts);
    HandStage stage([apart, hands](int) {
        HandStage::Hands poses;
        for (int i = 0; i < hands; ++i) {
            poses.push_back(HandPose().at({float(i) * apart, 200, 0}));
            poses.back().id = i;
        }
        return poses;
    });
    stage.options.cameraMode = cameraMode;
    HandState state;
    state.clapArmed = armed;
    const HandDecision decision = Clap::detect(stage.scene(), state);
    QCOMPARE(decision.acted, acts);
    QCOMPARE(decision.togglesPlay, acts);
    QCOMPARE(decision.takesBack, acts && cameraMode != 2);
    QCOMPARE(decision.state.clapArmed, armed && !acts);
}

void tst_HandGestures::aSwipeGoesToTheNextMedium_data()
{
    QTest::addColumn<bool>("isFirst");
    QTest::addColumn<qint64>("since"); // µs
    QTest::addColumn<bool>("acts");
    QTest::newRow("late enough") << true << qint64(1'000'001) << true;
    QTest::newRow("too soon") << true << qint64(1'000'000) << false;
    QTest::newRow("behind a circle") << false << qint64(2'000'000) << false;
}

void tst_HandGestures::aSwipeGoesToTheNextMedium()
{
    QFETCH(bool, isFirst);
    QFETCH(qint64, since);
    QFETCH(bool, acts);
    HandStage stage(pointing);
    if (!isFirst)
        stage.addGesture(circle(1));
    stage.addGesture(swipe());
    HandState state;
    state.lastAction = kNow - since;
    const HandDecision decision = NextSwipe::detect(stage.scene(), state);
    QCOMPARE(decision.acted, acts);
    QCOMPARE(decision.nextMedium, acts);
    QCOMPARE(decision.state.lastAction, acts ? kNow : kNow - since);
}

void tst_HandGestures::swipesFlipTheMenu_data()
{
    QTest::addColumn<Vary>("vary");
    QTest::addColumn<qint64>("since"); // µs
    QTest::addColumn<bool>("flips");
    const auto row = [](const char *name, bool flips, const Vary &vary, qint64 since = 1'000'001) {
        QTest::newRow(name) << vary << since << flips;
    };
    const auto gesture = [row](const char *name, bool flips, auto GestureData::*field,
                               const auto &value) {
        row(name, flips, [field, value](GestureData &g, Leap::HandData &) { g.*field = value; });
    };
    const auto hand = [row](const char *name, bool flips, auto Leap::HandData::*field,
                            const auto &value) {
        row(name, flips, [field, value](GestureData &, Leap::HandData &h) { h.*field = value; });
    };
    row("a swipe", true, asItIs);
    row("too soon", false, asItIs, 1'000'000);
    row("not a swipe", false,
        [](GestureData &g, Leap::HandData &) { g.type = Leap::GestureType::ScreenTap; });
    row("of no hand", false, [](GestureData &g, Leap::HandData &) { g.handIds.clear(); });
    gesture("short", false, &GestureData::duration, 129'999);
    gesture("slow", false, &GestureData::speed, 150.0F);
    gesture("fast enough", true, &GestureData::speed, 150.1F);
    gesture("aside", true, &GestureData::direction, Vector(0.51F, 0.39F, 0.77F));
    gesture("hardly aside", false, &GestureData::direction, Vector(0.5F, 0.3F, 0.81F));
    gesture("upwards", false, &GestureData::direction, Vector(-0.9F, -0.4F, 0));
    gesture("from right of the middle", true, &GestureData::startPosition, Vector(0.1F, 0, 0));
    gesture("from left of the middle", false, &GestureData::startPosition, Vector(-0.1F, 0, 0));
    // Half the box's width left of the box.
    gesture("from the far left", true, &GestureData::startPosition, Vector(-235.3F, 0, 0));
    gesture("from the left", false, &GestureData::startPosition, Vector(-235.2F, 0, 0));
    hand("grabs hardly", true, &Leap::HandData::grabStrength, 0.49F);
    hand("grabs", false, &Leap::HandData::grabStrength, 0.5F);
    hand("pinches hardly", true, &Leap::HandData::pinchStrength, 0.49F);
    hand("pinches", false, &Leap::HandData::pinchStrength, 0.5F);
    hand("on edge", true, &Leap::HandData::palmNormal, Vector(0.41F, -0.39F, 0.82F));
    hand("hardly on edge", false, &Leap::HandData::palmNormal, Vector(-0.4F, 0, 0.92F));
    hand("palm down", false, &Leap::HandData::palmNormal, Vector(-0.9F, -0.4F, 0));
}

void tst_HandGestures::swipesFlipTheMenu()
{
    QFETCH(Vary, vary);
    QFETCH(qint64, since);
    QFETCH(bool, flips);
    HandStage stage([](int) { return HandStage::Hands{HandPose().rolled(-1.5707964F)}; });
    GestureData gesture = swipe();
    vary(gesture, stage.moment(0).hands[0]);
    stage.addGesture(gesture);
    const MenuSwipe::Result result = MenuSwipe::detect(stage.scene(), kNow - since);
    QCOMPARE(result.flipsMenu, flips);
    QCOMPARE(result.lastAction, flips ? kNow : kNow - since);
}

void tst_HandGestures::oneSwipeFlipsTheMenuOnce()
{
    HandStage stage([](int) { return HandStage::Hands{HandPose().rolled(1.5707964F)}; });
    GestureData slow = swipe();
    slow.speed = 100;
    for (const GestureData &gesture : {slow, swipe(), swipe()})
        stage.addGesture(gesture);
    QVERIFY(MenuSwipe::detect(stage.scene(), 0).flipsMenu);
}

QTEST_GUILESS_MAIN(tst_HandGestures)
#include "tst_HandGestures.moc"
