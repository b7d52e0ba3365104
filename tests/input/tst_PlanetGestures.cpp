#include "HandStage.h"
#include "OneFingerTilt.h"
#include "OrbShaderCodeBuilder.h"
#include "PlanetPull.h"
#include "PlanetReturn.h"
#include "PlanetSwitch.h"
#include "TwoFingerRotation.h"
#include "TwoHandAnalysis.h"
#include "TwoHandTilt.h"
#include "WarningsFail.h"

#include <QtTest>

#include <cmath>

using Detect = std::function<HandDecision(const HandScene &, const HandState &)>;
using Hands = HandStage::Hands;
using HandsAt = std::function<Hands(int age)>;
using Setting = std::function<void(HandStage &, HandState &)>;
using Leap::HandData;
using Leap::Vector;

Q_DECLARE_METATYPE(Detect)
Q_DECLARE_METATYPE(HandsAt)
Q_DECLARE_METATYPE(HandState)
Q_DECLARE_METATYPE(Setting)

namespace {

constexpr qint64 kNow = HandStage::kNow;
constexpr int kFlat = OrbShaderCodeBuilder::RECTILINEAR;
constexpr int kPlanet = OrbShaderCodeBuilder::LITTLE_PLANET;

void plain(HandStage &, HandState &) {}

HandPose left(const Vector &palm)
{
    HandPose pose = HandPose().at(palm);
    pose.id = 2;
    pose.isLeft = true;
    return pose;
}

/// Two open hands whose palms are so far apart.
HandsAt openHands(float apart)
{
    return [apart](int) {
        return Hands{HandPose().at({apart / 2, 200, 0}), left({-apart / 2, 200, 0})};
    };
}

/// Two pointing hands with these tips.
Hands pointing(const Vector &first, const Vector &second)
{
    return {HandPose().at(second - Vector(-20, 0, -90)).pointing(),
            left(first - Vector(20, 0, -90)).pointing()};
}

/// One whose tip is at `tip` and goes up by 2 mm a frame.
HandsAt pointingUp(const Vector &tip)
{
    return [tip](int age) {
        return Hands{HandPose().at(tip - Vector(-20, 2 * float(age), -90)).pointing()};
    };
}

HandsAt openHand(const Vector &way)
{
    return [way](int age) { return Hands{HandPose().at(Vector(0, 200, 0) - way * float(age))}; };
}

/// Changes a moment's first hand.
template <class Value>
Setting hand(int age, Value HandData::*field, Value value)
{
    return [=](HandStage &stage, HandState &) { stage.moment(age).hands[0].*field = value; };
}

/// The way is so likely meant, beside a turn.
Setting translates(const Vector &way, float share)
{
    const float turn = way.magnitude() / 50 * std::pow((1 - share) / share, 1.0F / 6);
    return [=](HandStage &stage, HandState &) { stage.setMotion(turn, way, 0); };
}

Setting secondHand(int age)
{
    return [age](HandStage &stage, HandState &) {
        addHand(stage.moment(age), left({-200, 200, 0}));
    };
}

Setting lastActionAgo(qint64 time)
{
    return [time](HandStage &, HandState &state) { state.lastAction = kNow - time; };
}

HandState planet(double pitch, double fov)
{
    HandState state;
    state.view.projection = kPlanet;
    state.view.setPitch(pitch);
    state.view.setFov(fov);
    state.planet.state = PlanetState::Shown;
    state.planet.planetFov = 20;
    return state;
}

} // namespace

class tst_PlanetGestures : public WarningsFail
{
    Q_OBJECT

private slots:
    void eachActsWithinItsLimits_data();
    void eachActsWithinItsLimits();
    void aPullTiltsRollsAndGrows_data();
    void aPullTiltsRollsAndGrows();
    void handsHaveTiltAndSteer_data();
    void handsHaveTiltAndSteer();
    void theMeanOfFifteenFramesCounts();
    void uprightHandsSnap_data();
    void uprightHandsSnap();
    void handsRollOrTurnThePlanet_data();
    void handsRollOrTurnThePlanet();
    void thePlanetDriftsToItsOrdinarySize_data();
    void thePlanetDriftsToItsOrdinarySize();
    void uprightHandsZoom_data();
    void uprightHandsZoom();
    void thePlanetReturns_data();
    void thePlanetReturns();
    void fingersSpinThePlanet_data();
    void fingersSpinThePlanet();
};

void tst_PlanetGestures::eachActsWithinItsLimits_data()
{
    QTest::addColumn<Detect>("detect");
    QTest::addColumn<HandsAt>("hands");
    QTest::addColumn<HandState>("state");
    QTest::addColumn<Setting>("setting");
    QTest::addColumn<bool>("acts");
    const auto row = [](const char *name, const Detect &detect, const HandsAt &hands,
                        const HandState &state, const Setting &setting, bool acts) {
        QTest::newRow(name) << detect << hands << state << setting << acts;
    };

    const auto pull = [row](const char *name, const Setting &setting, bool acts) {
        const HandsAt hands = [](int) { return Hands{HandPose().pinching()}; };
        row(name, PlanetPull::detect, hands, HandState(), setting, acts);
    };
    pull("pull", plain, true);
    pull("pull: pinches enough", hand(14, &HandData::pinchStrength, 0.851F), true);
    pull("pull: pinches hardly", hand(14, &HandData::pinchStrength, 0.85F), false);
    pull("pull: did not pinch before", hand(15, &HandData::pinchStrength, 0.0F), true);
    pull("pull: grabs hardly", hand(14, &HandData::grabStrength, 0.399F), true);
    pull("pull: grabs", hand(14, &HandData::grabStrength, 0.4F), false);
    pull("pull: two hands", secondHand(14), false);
    const auto stretch = [](HandStage &s, HandState &) {
        s.moment(14).pointables[1].isExtended = true;
    };
    pull("pull: points", stretch, false);

    const auto release = [row](const char *name, const Setting &setting, bool acts) {
        // Half a pinch, long ago.
        const HandsAt hands = [](int age) {
            HandPose pose;
            pose.pinch = age < 20 ? 0.5F : 0.9F;
            return Hands{pose};
        };
        HandState state = planet(0.5, 60);
        state.planet.pullPitch = 0.1;
        row(name, PlanetPull::detect, hands, state, setting, acts);
    };
    release("release", plain, true);
    release("release: pinched just now", hand(19, &HandData::pinchStrength, 0.501F), false);
    const auto grabs = [](float strength) {
        return [strength](HandStage &stage, HandState &) {
            stage.moment(19).hands[0].pinchStrength = 1;
            stage.moment(19).hands[0].grabStrength = strength;
        };
    };
    release("release: hardly a fist", grabs(0.699F), false);
    release("release: a fist", grabs(0.7F), true);
    const auto second = [grabs](HandStage &stage, HandState &state) {
        grabs(0)(stage, state);
        secondHand(19)(stage, state);
    };
    release("release: two hands", second, true);
    const auto idle = [](HandStage &, HandState &state) {
        state.planet.pullPitch = Planet::kNoPull;
    };
    release("release: nothing pulled", idle, false);

    const auto flatHands = [row](const char *name, bool enters, const TwoHandPosture &posture,
                                 const Setting &setting, bool acts) {
        const auto change = enters ? PlanetSwitch::enter : PlanetSwitch::leave;
        const Detect detect = [change, posture](const HandScene &scene, const HandState &state) {
            return change(scene, state, posture);
        };
        row(name, detect, openHands(300), enters ? HandState() : planet(0, 20), setting, acts);
    };
    flatHands("enter", true, {}, plain, true);
    flatHands("enter: hardly tilted", true, {-0.199, 0.199, 1}, plain, true);
    flatHands("enter: tilted", true, {-0.2, 0, 0}, plain, false);
    flatHands("enter: steering", true, {0, -0.2, 0}, plain, false);
    flatHands("enter: too soon", true, {}, lastActionAgo(1'500'000), false);
    flatHands("enter: soon", true, {}, lastActionAgo(1'500'001), true);
    flatHands("enter: a hand closed", true, {}, hand(0, &HandData::grabStrength, 0.2F), false);
    flatHands("leave", false, {}, plain, true);
    flatHands("leave: hardly tilted", false, {-0.299, 0.199, 1}, plain, true);
    flatHands("leave: tilted", false, {0.3, 0, 0}, plain, false);
    flatHands("leave: steering", false, {0, 0.2, 0}, plain, false);
    flatHands("leave: too soon", false, {}, lastActionAgo(3'000'000), false);
    flatHands("leave: soon", false, {}, lastActionAgo(3'000'001), true);
    flatHands("leave: a hand closed", false, {}, hand(0, &HandData::grabStrength, 0.2F), false);

    const auto tilt = [row](const char *name, double by, double pitch, float apart, bool acts,
                            const Setting &setting = plain) {
        const Detect detect = [by](const HandScene &scene, const HandState &state) {
            return TwoHandTilt::detect(scene, state, {by, 0, 0});
        };
        row(name, detect, openHands(apart), planet(pitch, 60), setting, acts);
    };
    tilt("tilt", 0.25, 0.5, 300, true);
    tilt("tilt: near the planet", 0.749, 0.25, 300, true);
    tilt("tilt: off the planet", -0.25, 0.25, 300, false);
    tilt("tilt: beyond the point opposite", -2.4, 2.65, 300, true);
    tilt("tilt: off the point opposite", -2.4, 2.63, 300, false);
    tilt("tilt: not beyond it", -2.34, 2.65, 300, false);
    tilt("tilt: hands near each other", 0.25, 0.5, 100, true);
    tilt("tilt: hands at each other", 0.25, 0.5, 99.9F, false);
    tilt("tilt: a hand closed", 0.25, 0.5, 300, false, hand(0, &HandData::grabStrength, 0.2F));

    const auto back = [row](const char *name, const Setting &setting, bool acts) {
        row(name, PlanetReturn::detect, openHand({1, 0, 0}), planet(0.5, 60), setting, acts);
    };
    back("return", plain, true);
    back("return: likely", translates({1, 0, 0}, 0.71F), true);
    back("return: hardly likely", translates({1, 0, 0}, 0.69F), false);
    back("return: likely a turn", translates({1, 0, 0}, 0.29F), true);
    back("return: closed", hand(0, &HandData::grabStrength, 0.2F), false);

    const auto spin = [row](const char *name, const Vector &first, const Setting &setting,
                            bool acts) {
        const HandsAt hands = [first](int age) {
            return pointing(first - Vector(0, float(age), 0), {100, 200, 0});
        };
        row(name, TwoFingerRotation::detect, hands, planet(0.5, 60), setting, acts);
    };
    spin("spin", {-100, 200, 0}, plain, true);
    spin("spin: just wide", {-0.1F, 200, 0}, plain, true);
    spin("spin: narrow", {0, 200, 0}, plain, false);
    spin("spin: wide by the height", {0, 199.9F, 0}, plain, true);
    spin("spin: hardly deep", {-100, 200, 29.9F}, plain, true);
    spin("spin: deep", {-100, 200, -30.1F}, plain, false);
    const auto forget = [](HandStage &stage, HandState &) { stage.moment(1).pointables.clear(); };
    spin("spin: fingers appear", {-100, 200, 0}, forget, false);
    const auto open = [row](const char *name, const HandsAt &hands, const Setting &setting,
                            bool acts) {
        row(name, TwoFingerRotation::detect, hands, planet(0.5, 60), setting, acts);
    };
    open("spin: one open hand", openHand({1, 0, 0}), plain, true);
    open("spin: one hand, hardly likely", openHand({1, 0, 0}), translates({1, 0, 0}, 0.69F), false);
    open("spin: one hand, closed", openHand({1, 0, 0}), hand(0, &HandData::grabStrength, 0.2F),
         false);
    open("spin: two open hands", openHands(300), translates({1, 0, 0}, 1), false);

    const auto finger = [row](const char *name, const Vector &tip, const Setting &setting,
                              bool acts) {
        row(name, OneFingerTilt::detect, pointingUp(tip), planet(0.5, 60), setting, acts);
    };
    const Vector far(0, 200, -150);
    finger("finger", far, plain, true);
    finger("finger: just in the middle", {-49.9F, 200, -150}, plain, true);
    finger("finger: off the middle", {50, 200, -150}, plain, false);
    finger("finger: just far", {0, 200, -100.1F}, plain, true);
    finger("finger: near", {0, 200, -100}, plain, false);
    finger("finger: likely", far, translates({0, 2, 0}, 0.981F), true);
    finger("finger: hardly likely", far, translates({0, 2, 0}, 0.979F), false);
    finger("finger: likely a turn", far, translates({0, 2, 0}, 0.019F), true);
    finger("finger: straight", far, translates({-0.299F, 2, 0}, 1), true);
    finger("finger: not straight", far, translates({0.3F, 2, 0}, 1), false);
    const auto secondToTheRight = [](HandStage &stage, HandState &) {
        addHand(stage.moment(0), left({200, 200, 0}));
    };
    finger("finger: two hands", far, secondToTheRight, false);
    const auto openUp = [](HandStage &stage, HandState &) {
        for (Leap::PointableData &pointable : stage.moment(0).pointables)
            pointable.isExtended = true;
        stage.moment(0).hands[0].grabStrength = 0;
    };
    finger("finger: open hand", far, openUp, false);
}

void tst_PlanetGestures::eachActsWithinItsLimits()
{
    QFETCH(Detect, detect);
    QFETCH(HandsAt, hands);
    QFETCH(HandState, state);
    QFETCH(Setting, setting);
    HandStage stage(hands);
    setting(stage, state);
    const HandDecision decision = detect(stage.scene(), state);
    QTEST(decision.acted, "acts");
    if (!decision.acted) {
        const HandView &view = decision.state.view;
        QCOMPARE(view.yaw, state.view.yaw);
        QCOMPARE(view.pitch, state.view.pitch);
        QCOMPARE(view.roll, state.view.roll);
        QCOMPARE(view.fov, state.view.fov);
        QCOMPARE(decision.state.glide.yawSpeed, state.glide.yawSpeed);
        QCOMPARE(decision.state.glide.pitchSpeed, state.glide.pitchSpeed);
        QCOMPARE(decision.state.lastAction, state.lastAction);
        QVERIFY(!decision.projection && !decision.bounce);
    }
}

void tst_PlanetGestures::aPullTiltsRollsAndGrows_data()
{
    QTest::addColumn<Vector>("palm");
    QTest::addColumn<double>("up"); // mm a frame
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("pitch");
    QTest::addColumn<double>("roll");
    // By 60 degrees · mm / 500 pixels · 0.2.
    QTest::newRow("straight up") << Vector(10, 150, 0) << 5.0 << 0.5 << 0.62 << 0.0;
    QTest::newRow("up and right") << Vector(110, 100, 0) << 5.0 << -0.5 << -0.38 << M_PI / 4;
    QTest::newRow("left") << Vector(-90, 100, 0) << 0.0 << -0.5 << -0.5 << -M_PI / 4;
    QTest::newRow("below the limit") << Vector(10, 100, 0) << -19.5 << 0.5 << 0.032 << 0.0;
    QTest::newRow("at the limit") << Vector(10, 100, 0) << 20.0 << 0.5 << 0.5 << 0.0;
}

void tst_PlanetGestures::aPullTiltsRollsAndGrows()
{
    QFETCH(Vector, palm);
    QFETCH(double, up);
    QFETCH(double, from);
    QFETCH(double, pitch);
    QFETCH(double, roll);
    HandStage stage([palm, up](int age) {
        return Hands{HandPose().pinching().at(palm - Vector(0, float(up) * float(age), 0))};
    });
    HandState state = planet(from, 60);
    state.planet.pullPitch = 0.1;
    state.planet.palmStartX = 10;
    const HandDecision decision = PlanetPull::detect(stage.scene(), state);
    QVERIFY(decision.acted);
    QCOMPARE(decision.state.view.pitch, float(pitch));
    QCOMPARE(decision.state.view.roll, float(roll));
    QCOMPARE(decision.state.view.fov, float(std::abs(pitch) / M_PI * 180 + 20));
    QCOMPARE(decision.state.lastAction, kNow);
}

void tst_PlanetGestures::handsHaveTiltAndSteer_data()
{
    QTest::addColumn<float>("leftRoll");
    QTest::addColumn<float>("rightRoll");
    QTest::addColumn<float>("tilt");
    QTest::addColumn<float>("steer");
    QTest::newRow("flat") << 0.0F << 0.0F << 0.0F << 0.0F;
    QTest::newRow("inner sides up") << 0.3F << -0.3F << 0.3F << 0.0F;
    QTest::newRow("outer sides up") << -0.3F << 0.3F << -0.3F << 0.0F;
    QTest::newRow("steering to the left") << 0.3F << 0.3F << 0.0F << -0.3F;
    QTest::newRow("both") << 0.5F << -0.1F << 0.3F << -0.2F;
    QTest::newRow("palms up") << 2.8F << -2.6F << 2.7F << -0.1F;
}

void tst_PlanetGestures::handsHaveTiltAndSteer()
{
    QFETCH(float, leftRoll);
    QFETCH(float, rightRoll);
    QFETCH(float, steer);
    // Hands were upright before the frames that count.
    HandStage stage([=](int age) {
        return Hands{HandPose().at({150, 200, 0}).rolled(age < 15 ? rightRoll : 1.57F),
                     left({-150, 200, 0}).rolled(age < 15 ? leftRoll : 1.57F)};
    });
    const TwoHandPosture posture = twoHandPosture(stage.scene().frames, 0.75);
    QTEST(float(posture.tilt), "tilt");
    QCOMPARE(float(posture.steer), steer);
    QCOMPARE(float(posture.steerChange), 0.75F - steer);
}

void tst_PlanetGestures::theMeanOfFifteenFramesCounts()
{
    HandStage stage([](int age) {
        return Hands{HandPose().at({150, 200, 0}),
                     left({-150, 200, 0}).rolled(age == 14 ? float(M_PI / 2) : 0.0F)};
    });
    const TwoHandPosture posture = twoHandPosture(stage.scene().frames, 0);
    QCOMPARE(float(posture.tilt), float(std::atan(1 / 14.0) / 2));
}

void tst_PlanetGestures::uprightHandsSnap_data()
{
    QTest::addColumn<float>("tilt");
    QTest::addColumn<qint64>("pause");
    QTest::addColumn<bool>("snaps");
    QTest::newRow("below") << 1.490F << 1'500'001LL << false;
    QTest::newRow("just below") << 1.492F << 1'500'001LL << true;
    QTest::newRow("just above") << 1.650F << 1'500'001LL << true;
    QTest::newRow("above") << 1.652F << 1'500'001LL << false;
    QTest::newRow("too soon") << 1.5F << 1'500'000LL << false;
}

void tst_PlanetGestures::uprightHandsSnap()
{
    QFETCH(float, tilt);
    QFETCH(qint64, pause);
    QFETCH(bool, snaps);
    HandStage stage([tilt](int) {
        return Hands{HandPose().at({150, 200, 0}).rolled(0.02F - tilt),
                     left({-150, 200, 0}).rolled(tilt + 0.02F)};
    });
    HandState state = planet(1.4, 100);
    state.lastAction = kNow - pause;
    const HandDecision decision = TwoHandAnalysis::detect(stage.scene(), state);
    QCOMPARE(decision.state.view.pitch, snaps ? float(M_PI / 2) : tilt);
    QCOMPARE(decision.state.lastAction, snaps ? kNow : state.lastAction);
    QCOMPARE(float(decision.state.planet.previousDifference), -0.02F);
}

void tst_PlanetGestures::handsRollOrTurnThePlanet_data()
{
    QTest::addColumn<bool>("wasTurning");
    QTest::addColumn<double>("tilt");
    QTest::addColumn<double>("steerChange");
    QTest::addColumn<bool>("turns");
    QTest::addColumn<double>("yaw"); // 100 degrees · 80 mm a radian / 1000 pixels · 0.2
    QTest::newRow("rolls") << false << 1.4 << 0.1 << false << 0.0;
    QTest::newRow("begins to turn") << false << 1.401 << 0.1 << true << 0.16;
    QTest::newRow("begins to turn, tipped back") << false << -1.401 << 0.1 << true << -0.16;
    QTest::newRow("begins behind") << false << -2.699 << 0.1 << true << -0.16;
    QTest::newRow("rolls behind") << false << 2.7 << 0.1 << false << 0.0;
    QTest::newRow("still turns") << true << 1.1 << -0.1 << true << -0.16;
    QTest::newRow("turns no more") << true << 1.099 << -0.1 << false << 0.0;
    QTest::newRow("still turns behind") << true << 2.9 << -0.1 << true << -0.16;
    QTest::newRow("turns no more behind") << true << 2.901 << -0.1 << false << 0.0;
    QTest::newRow("turns fast") << true << 1.5 << 0.249 << true << 0.3984;
    QTest::newRow("turns too fast") << true << 1.5 << 0.25 << true << 0.0;
}

void tst_PlanetGestures::handsRollOrTurnThePlanet()
{
    QFETCH(bool, wasTurning);
    QFETCH(double, tilt);
    QFETCH(double, steerChange);
    QFETCH(bool, turns);
    HandStage stage(openHands(300));
    HandState state = planet(tilt * 0.9, 100);
    state.view.setRoll(0.5);
    state.planet.yawByTilt = wasTurning;
    const TwoHandPosture posture{tilt, 0.1, steerChange};
    const HandDecision decision = TwoHandTilt::detect(stage.scene(), state, posture);
    const HandView &view = decision.state.view;
    QCOMPARE(decision.state.planet.yawByTilt, turns);
    QCOMPARE(view.roll, turns ? 0.5F : 0.1F);
    QCOMPARE(view.pitch, float(tilt));
    QCOMPARE(view.fov, float(std::abs(tilt) / M_PI * 180 + 20));
    QFETCH(double, yaw);
    QCOMPARE(view.yaw, float(yaw));
}

void tst_PlanetGestures::thePlanetDriftsToItsOrdinarySize_data()
{
    QTest::addColumn<double>("fov");
    QTest::addColumn<double>("tilt");
    QTest::addColumn<qint64>("id");
    QTest::addColumn<double>("before");
    QTest::addColumn<double>("after");
    const auto row = [](const char *name, double fov, double tilt, qint64 id, double before,
                        double after) {
        QTest::newRow(name) << fov << tilt << id << before << after;
    };
    row("grows", 300, 0, 1, 19.19, 20.1495);
    row("stays small", 300, 0, 1, 19.2, 19.2);
    row("stays large", 300, 0, 1, 19.3, 19.3);
    row("shrinks", 300, 0, 1, 19.31, 18.3445);
    row("from below", 300, 0, 1, -2, -1.6);
    row("from just below", 300, 0, 1, -1, 10);
    row("from nothing", 300, 0, 1, 0, 10);
    row("every other frame", 300, 0, 2, 30, 30);
    row("hands near flat", 300, -0.699, 1, 30, 28.5);
    row("hands tilted", 300, 0.7, 1, 30, 30);
    // The field of view that goes with the hands is 0.45 / pi · 180 + 30.
    row("just above", 55.8, 0.45, 1, 30, 28.5);
    row("just below", 55.7, 0.45, 1, 30, 30);
    row("at rest", 0.44 / M_PI * 180 + 30, 0.44, 1, 30, 30); // stored, it is rounded up
    row("at the least", 10, 0.45, 1, 30, 28.5);
}

void tst_PlanetGestures::thePlanetDriftsToItsOrdinarySize()
{
    QFETCH(double, fov);
    QFETCH(double, tilt);
    QFETCH(qint64, id);
    QFETCH(double, before);
    QFETCH(double, after);
    HandStage stage(openHands(300));
    stage.moment(0).id = id;
    HandState state = planet(tilt, fov);
    state.planet.planetFov = before;
    const HandDecision decision = TwoHandTilt::detect(stage.scene(), state, {tilt, 0, 0});
    QCOMPARE(decision.state.planet.planetFov, after);
    const double shown = std::max(10.0, std::abs(tilt) / M_PI * 180 + after);
    QCOMPARE(decision.state.view.fov, float(shown));
}

void tst_PlanetGestures::uprightHandsZoom_data()
{
    QTest::addColumn<double>("tilt");
    QTest::addColumn<float>("share");
    QTest::addColumn<bool>("zooms");
    QTest::newRow("just upright") << M_PI / 2 - 0.249 << 0.981F << true;
    QTest::newRow("not upright") << M_PI / 2 - 0.251 << 0.981F << false;
    QTest::newRow("just upright, behind") << M_PI / 2 + 0.249 << 0.981F << true;
    QTest::newRow("not upright, behind") << M_PI / 2 + 0.251 << 0.981F << false;
    QTest::newRow("hardly likely") << M_PI / 2 << 0.979F << false;
}

void tst_PlanetGestures::uprightHandsZoom()
{
    QFETCH(double, tilt);
    QFETCH(float, share);
    QFETCH(bool, zooms);
    HandStage stage(openHands(300));
    stage.setMotion(0, {50 * 0.1F * std::pow((1 - share) / share, 1.0F / 6), 0, 0}, 0.1F);
    const HandDecision decision = TwoHandTilt::detect(stage.scene(), planet(tilt, 100),
                                                      {tilt, 0, 0});
    const double held = tilt / M_PI * 180 + 20;
    const double zoomed = held / std::exp(0.1);
    QCOMPARE(decision.state.view.fov, float(zooms ? zoomed : held));
    QCOMPARE(float(decision.state.planet.planetFov), float(zooms ? 20 + zoomed - held : 20));
}

void tst_PlanetGestures::thePlanetReturns_data()
{
    QTest::addColumn<Vector>("from"); // pitch, roll, field of view
    QTest::addColumn<Vector>("to");
    QTest::addColumn<bool>("flat");
    const auto row = [](const char *name, const Vector &from, const Vector &to, bool flat) {
        QTest::newRow(name) << from << to << flat;
    };
    // Pitch by the field of view · 0.1 mm / 500 pixels · 0.2.
    row("from above", {0.5F, 0.3F, 25}, {0.499F, 0.29F, 24.92F}, false);
    row("from below", {-0.5F, -0.3F, 15}, {-0.4994F, -0.29F, 15.08F}, false);
    row("rests", {0, 0.1F, 19}, {0, 0.1F, 19}, true);
    row("hardly tilted", {0.10075F, -0.1F, 19}, {0.09999F, -0.1F, 19}, true);
    row("tilted", {-0.10077F, 0, 19}, {-0.10001F, 0, 19}, false);
    row("hardly small", {0, 0, 17.93F}, {0, 0, 18.01F}, true);
    row("small", {0, 0, 17.91F}, {0, 0, 17.99F}, false);
    row("hardly large", {0, 0, 20.07F}, {0, 0, 19.99F}, true);
    row("large", {0, 0, 20.09F}, {0, 0, 20.01F}, false);
}

void tst_PlanetGestures::thePlanetReturns()
{
    QFETCH(Vector, from);
    QFETCH(Vector, to);
    QFETCH(bool, flat);
    HandStage stage(openHand({2, 0, 0}));
    stage.options.pitchInv = true; // which it does not heed
    HandState state = planet(double(from.x), double(from.z));
    state.view.setRoll(double(from.y));
    state.planet.switchCounter = 3;
    state.planet.pullRoll = 0.25;
    const HandDecision decision = PlanetReturn::detect(stage.scene(), state);
    QCOMPARE(decision.state.glide.yawSpeed, 6.0);
    QCOMPARE(decision.state.view.pitch, to.x);
    QCOMPARE(decision.state.view.roll, to.y);
    QCOMPARE(decision.state.view.fov, to.z);
    QCOMPARE(decision.projection.value_or(kPlanet), flat ? kFlat : kPlanet);
    QCOMPARE(decision.state.planet.restoreFov, flat ? 90.0 : 0.0);
    QCOMPARE(decision.state.planet.pullRoll, flat ? 0.0 : 0.25);
    QCOMPARE(decision.state.planet.switchCounter, flat ? 0 : 3);
}

void tst_PlanetGestures::fingersSpinThePlanet_data()
{
    QTest::addColumn<Detect>("detect");
    QTest::addColumn<HandsAt>("hands");
    QTest::addColumn<double>("pitch");
    QTest::addColumn<double>("yawSpeed");
    QTest::addColumn<double>("pitchSpeed");
    const HandsAt lowers = [](int age) {
        const Vector way(0, age == 0 ? 80 * std::tan(0.1F) : 0.0F, 0);
        return pointing(Vector(-80, 200, 0) - way, Vector(80, 200, 0) + way);
    };
    const auto pair = [](const char *name, const HandsAt &hands, double pitch, double yawSpeed) {
        QTest::newRow(name) << Detect(TwoFingerRotation::detect) << hands << pitch << yawSpeed
                            << 2.0;
    };
    pair("two fingers", lowers, 0.5, 8);
    pair("tipped back", lowers, -0.5, -8);
    pair("seen exactly from above", lowers, 0, 8);
    const HandsAt crosses = [](int age) {
        const float x = age == 0 ? 5.0F : -5.0F;
        return pointing({x, 400, 0}, {-x, 200, 0});
    };
    pair("past the vertical", crosses, 0.5, -160 * std::atan(0.05));
    pair("one open hand", openHand({3, 1, 0}), -0.5, 3);
    QTest::newRow("one finger") << Detect(OneFingerTilt::detect) << pointingUp({0, 200, -150})
                                << 0.5 << 1.0 << -2.0;
}

void tst_PlanetGestures::fingersSpinThePlanet()
{
    QFETCH(Detect, detect);
    QFETCH(HandsAt, hands);
    QFETCH(double, pitch);
    HandStage stage(hands);
    HandState state = planet(pitch, 60);
    state.glide.yawSpeed = 1;
    state.glide.pitchSpeed = 2;
    const HandDecision decision = detect(stage.scene(), state);
    QVERIFY(decision.acted);
    QFETCH(double, yawSpeed);
    QCOMPARE(float(decision.state.glide.yawSpeed), float(yawSpeed));
    QTEST(decision.state.glide.pitchSpeed, "pitchSpeed");
    const bool isFinger = yawSpeed == 1;
    QCOMPARE(decision.state.lastAction, isFinger ? kNow : 0);
}

QTEST_GUILESS_MAIN(tst_PlanetGestures)
#include "tst_PlanetGestures.moc"
