#include "HandStage.h"
#include "HandTranslation.h"
#include "OpenHandNavigation.h"
#include "OrbShaderCodeBuilder.h"
#include "TwoFingerRoll.h"
#include "TwoFingerZoom.h"
#include "TwoHandScale.h"
#include "ViewMotion.h"
#include "WarningsFail.h"
#include "ZoneCheck.h"

#include <QtTest>

#include <cmath>

using Change = HandStage::Change;
using Detect = HandDecision (*)(const HandScene &, const HandState &);
using Leap::Vector;

Q_DECLARE_METATYPE(Detect)

namespace {

constexpr qint64 kNow = HandStage::kNow;
constexpr int kFlat = OrbShaderCodeBuilder::RECTILINEAR;
constexpr int kPlanet = OrbShaderCodeBuilder::LITTLE_PLANET;
constexpr int kBall = OrbShaderCodeBuilder::MIRROR_BALL;
constexpr float kDegree = 0.017453293F; // radians

const Vector kWay(2, 1, 0); // mm a frame

/// The way at a surface whose share of all motion, by the sixth power, is `share` beside `other`.
float wayOfShare(float share, float other)
{
    return other * std::pow(share / (1 - share), 1.0F / 6);
}

/// Makes the newest motion so likely a translation, beside a scale.
Change translates(float share)
{
    return [share](HandStage &stage) {
        stage.setMotion(0, kWay, wayOfShare(1 - share, kWay.magnitude()) / 50);
    };
}

/// So likely a turn, beside the way.
Change turns(float share)
{
    return [share](HandStage &stage) {
        stage.setMotion(wayOfShare(share, kWay.magnitude()) / 50, kWay, 0);
    };
}

/// So likely a scale by e^0.01, beside a way to the side.
Change scales(float share)
{
    return [share](HandStage &stage) {
        stage.setMotion(0, {wayOfShare(1 - share, 0.5F), 0, 0}, 0.01F);
    };
}

/// Changes the newest moment's first hand.
template <class Field, class Value>
Change firstHand(Field Leap::HandData::*field, const Value &value)
{
    return [field, value](HandStage &stage) { stage.moment(0).hands[0].*field = value; };
}

void none(HandStage &) {}

/// An open hand that goes `kWay` a frame.
HandStage::Hands panning(int age)
{
    return {HandPose().at(Vector(0, 200, 0) - kWay * float(age))};
}

HandPose leftHand(const Vector &palm)
{
    HandPose pose = HandPose().at(palm);
    pose.id = 2;
    pose.isLeft = true;
    return pose;
}

/// Two pointing hands; the index tips are `first` and `second`.
HandStage::Hands pointingAt(const Vector &first, const Vector &second)
{
    return {HandPose().at(second - Vector(-20, 0, -90)).pointing(),
            leftHand(first - Vector(20, 0, -90)).pointing()};
}

} // namespace

class tst_HandSteering : public WarningsFail
{
    Q_OBJECT

private slots:
    void handsTurnTheViewByTheWindow_data();
    void handsTurnTheViewByTheWindow();
    void theGlideFades_data();
    void theGlideFades();
    void bothDecaysComeBackWhenTheViewRests();
    void theFieldOfViewStaysWithinTheProjection_data();
    void theFieldOfViewStaysWithinTheProjection();
    void oneOpenHandSetsTheGlide_data();
    void oneOpenHandSetsTheGlide();
    void oneOpenHandHoldsTheView_data();
    void oneOpenHandHoldsTheView();
    void theViewRollsWithThePalm();
    void handsAndFingersZoom_data();
    void handsAndFingersZoom();
    void fingersRoll_data();
    void fingersRoll();
    void handsAreLostAtEdges_data();
    void handsAreLostAtEdges();
};

void tst_HandSteering::handsTurnTheViewByTheWindow_data()
{
    QTest::addColumn<double>("delta");
    QTest::addColumn<bool>("inverted");
    QTest::addColumn<double>("yaw");
    QTest::addColumn<double>("pitch");
    // 90 degrees · 10 mm / 1000 pixels · 0.2, and half the pixels up and down.
    QTest::newRow("forth") << 10.0 << false << 0.18 << -0.36;
    QTest::newRow("inverted") << 10.0 << true << -0.18 << 0.36;
    QTest::newRow("back, below the limit") << -19.9 << false << -0.3582 << 0.7164;
    QTest::newRow("the limit") << -20.0 << false << 0.0 << 0.0;
    QTest::newRow("no number") << std::nan("") << false << 0.0 << 0.0;
}

void tst_HandSteering::handsTurnTheViewByTheWindow()
{
    QFETCH(double, delta);
    QFETCH(bool, inverted);
    QFETCH(double, yaw);
    HandOptions options;
    options.width = 1000;
    options.height = 500;
    options.yawInv = options.pitchInv = inverted;
    HandView view;
    QCOMPARE(ViewMotion::moveYaw(view, options, delta, 20), yaw != 0);
    QCOMPARE(ViewMotion::movePitch(view, options, delta, 20), yaw != 0);
    QCOMPARE(view.yaw, float(yaw));
    QFETCH(double, pitch);
    QCOMPARE(view.pitch, float(pitch));
}

void tst_HandSteering::theGlideFades_data()
{
    QTest::addColumn<double>("speed");
    QTest::addColumn<double>("after");
    QTest::addColumn<bool>("turns");
    QTest::newRow("0.97 a frame") << -10.0 << -9.7 << true;
    QTest::newRow("turns a last time") << 0.3092 << 0.0 << true;
    QTest::newRow("goes on") << 0.31 << 0.3007 << true;
    QTest::newRow("99.9 mm") << 103.0 << 99.91 << true;
    QTest::newRow("over 100 mm") << 104.0 << 100.88 << false;
    QTest::newRow("rest") << 0.0 << 0.0 << false;
}

void tst_HandSteering::theGlideFades()
{
    QFETCH(double, speed);
    QFETCH(bool, turns);
    HandStage stage(panning);
    HandState state;
    state.glide.yawSpeed = state.glide.pitchSpeed = speed;
    ViewMotion::applyInertia(state, stage.options);
    QTEST(state.glide.yawSpeed, "after");
    QTEST(state.glide.pitchSpeed, "after");
    // 90 degrees · 0.2 / 1000 pixels, and wrapped to a turn.
    const double yaw = turns ? 0.018 * 0.97 * speed : 0.0;
    QCOMPARE(state.view.yaw, float(yaw));
    QCOMPARE(state.view.pitch, float(std::remainder(-2 * yaw, 2 * M_PI)));
}

void tst_HandSteering::bothDecaysComeBackWhenTheViewRests()
{
    HandState state;
    state.glide.yawSpeed = 1;
    state.glide.yawDecay = state.glide.pitchDecay = 0.5;
    ViewMotion::applyInertia(state, HandOptions());
    QCOMPARE(state.glide.yawDecay, 0.5);
    QCOMPARE(state.glide.pitchDecay, 0.5);
    state.glide.yawSpeed = 0;
    ViewMotion::applyInertia(state, HandOptions());
    QCOMPARE(state.glide.yawDecay, 0.97);
    QCOMPARE(state.glide.pitchDecay, 0.97);
}

void tst_HandSteering::theFieldOfViewStaysWithinTheProjection_data()
{
    QTest::addColumn<int>("projection");
    QTest::addColumn<double>("fov");
    QTest::addColumn<double>("scaled");
    QTest::addColumn<double>("clamped");
    const auto row = [](const char *name, int projection, double fov, double scaled,
                        double clamped) {
        QTest::newRow(name) << projection << fov << scaled << clamped;
    };
    row("free", kFlat, 70, 70, 70);
    row("wide", kFlat, 130.5, 130, 130);
    row("narrow", kFlat, 29.5, 30, 29.5);
    row("narrower", kFlat, 9.5, 30, 10);
    row("before the wide snap", kFlat, 88.5, 88.5, 88.5);
    row("in the wide snap", kFlat, 88.75, 90, 88.75);
    row("before the close snap", kFlat, 89, 90, 89);
    row("in the close snap", kFlat, 89.25, 90, 90);
    row("after the close snap", kFlat, 91, 90, 91);
    row("after the wide snap", kFlat, 91.5, 91.5, 91.5);
    row("a planet does not snap", kPlanet, 90.5, 90.5, 90.5);
    row("a wide planet", kPlanet, 361, 360, 360);
    row("a narrow planet", kPlanet, 9, 10, 10);
    row("another projection", kBall, 100, 60, 60);
    row("no number", kFlat, std::nan(""), 60, 60);
}

void tst_HandSteering::theFieldOfViewStaysWithinTheProjection()
{
    QFETCH(int, projection);
    QFETCH(double, fov);
    QFETCH(double, scaled);
    QFETCH(double, clamped);
    HandState state;
    state.view.projection = projection;
    state.view.fov = 60;
    HandView view = state.view;
    ViewMotion::applyScale(state, 60 / fov, kNow);
    QCOMPARE(state.view.fov, float(scaled));
    QCOMPARE(state.lastAction, projection == kFlat && scaled == 90 ? kNow : 0);
    ViewMotion::setFovClamped(view, fov);
    QCOMPARE(view.fov, float(clamped));
}

void tst_HandSteering::oneOpenHandSetsTheGlide_data()
{
    using Leap::HandData;
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("acts");
    QTest::addColumn<double>("pitchSpeed");
    const auto row = [](const char *name, const Change &change, bool acts, double pitchSpeed) {
        QTest::newRow(name) << change << acts << pitchSpeed;
    };
    row("pans", none, true, 1);
    row("translates hardly", translates(0.69F), false, 0);
    row("translates", translates(0.71F), true, 1);
    row("turns hardly", turns(0.69F), false, 0);
    row("turns", turns(0.71F), true, 1);
    row("grabs hardly", firstHand(&HandData::grabStrength, 0.19F), true, 1);
    row("grabs", firstHand(&HandData::grabStrength, 0.2F), false, 0);
    row("pinches hardly", firstHand(&HandData::pinchStrength, 0.19F), true, 1);
    row("pinches", firstHand(&HandData::pinchStrength, 0.2F), false, 0);
    row(
        "four fingers", [](HandStage &s) { s.moment(0).pointables[0].isExtended = false; }, true,
        1);
    row(
        "three fingers",
        [](HandStage &s) {
            s.moment(0).pointables[0].isExtended = s.moment(0).pointables[4].isExtended = false;
        },
        false, 0);
    row(
        "a second hand",
        [](HandStage &s) {
            addHand(s.moment(0), leftHand({-200, 200, 0}));
        },
        false, 0);
    row("hardly seen", firstHand(&HandData::confidence, 0.94F), true, 0.7);
    row("seen", firstHand(&HandData::confidence, 0.96F), true, 1);
    // Above the middle the nearest boundary is 25 mm over the device.
    row("near the boundary", firstHand(&HandData::stabilizedPalmPosition, Vector(0, 104.9F, 0)),
        true, 0.7);
    row("off the boundary", firstHand(&HandData::stabilizedPalmPosition, Vector(0, 105.1F, 0)),
        true, 1);

    const auto palm = [](float degrees) {
        return [degrees](HandStage &s) {
            for (int age : {0, 1})
                s.moment(age).hands[0].palmNormal = HandPose().rolled(degrees * kDegree).normal;
        };
    };
    row("palm to the left", palm(-46), true, 0.2);
    row("palm to the right", palm(46), true, 0.2);
    row("palm hardly to the left", palm(-44), true, 1);
    row("palm hardly to the right", palm(44), true, 1);
    row(
        "on its side and hardly seen",
        [palm](HandStage &s) {
            palm(60)(s);
            s.moment(0).hands[0].confidence = 0.5F;
        },
        true, 0.14);
}

void tst_HandSteering::oneOpenHandSetsTheGlide()
{
    QFETCH(Change, change);
    QFETCH(bool, acts);
    QFETCH(double, pitchSpeed);
    HandStage stage(panning);
    change(stage);
    HandState state;
    state.glide.yawSpeed = state.glide.pitchSpeed = 5;
    const HandDecision decision = OpenHandNavigation::detect(stage.scene(), state);
    QCOMPARE(decision.acted, acts);
    QCOMPARE(float(decision.state.glide.yawSpeed), acts ? 2.0F : 5.0F);
    QCOMPARE(float(decision.state.glide.pitchSpeed), acts ? float(pitchSpeed) : 5.0F);
    QCOMPARE(decision.state.view.yaw, 0.0F);
}

void tst_HandSteering::oneOpenHandHoldsTheView_data()
{
    QTest::addColumn<Vector>("way");
    QTest::addColumn<Change>("change");
    QTest::addColumn<Vector>("turned"); // yaw, pitch
    QTest::newRow("holds") << kWay << Change(none) << Vector(0.036F, -0.036F, 0);
    QTest::newRow("likely") << kWay << translates(0.71F) << Vector(0.036F, -0.036F, 0);
    QTest::newRow("unlikely") << kWay << translates(0.69F) << Vector();
    QTest::newRow("likely a turn") << kWay << turns(0.71F) << Vector(0.036F, -0.036F, 0);
    QTest::newRow("unlikely a turn") << kWay << turns(0.69F) << Vector();
    QTest::newRow("a fist") << kWay << firstHand(&Leap::HandData::grabStrength, 1.0F) << Vector();
    QTest::newRow("each way below 20 mm")
        << Vector(19, 20, 0) << Change(none) << Vector(0.342F, 0, 0);
    QTest::newRow("each way above 20 mm")
        << Vector(-20, -19, 0) << Change(none) << Vector(0, 0.684F, 0);
}

void tst_HandSteering::oneOpenHandHoldsTheView()
{
    QFETCH(Vector, way);
    QFETCH(Change, change);
    QFETCH(Vector, turned);
    HandStage stage([way](int age) {
        return HandStage::Hands{HandPose().at(Vector(0, 200, 0) - way * float(age))};
    });
    change(stage);
    const HandDecision decision = HandTranslation::detect(stage.scene(), HandState());
    QCOMPARE(decision.acted, turned != Vector());
    QCOMPARE(decision.state.view.yaw, turned.x);
    QCOMPARE(decision.state.view.pitch, turned.y);
    QCOMPARE(decision.state.glide.yawSpeed, 0.0);
}

void tst_HandSteering::theViewRollsWithThePalm()
{
    const auto rollOf = [](const HandPose &pose) {
        HandStage stage([pose](int) { return HandStage::Hands{pose}; });
        return HandTranslation::detectRoll(stage.scene(), HandState()).state.view.roll;
    };
    QCOMPARE(rollOf(HandPose().rolled(0.3F)), 0.3F);
    QCOMPARE(rollOf(HandPose().rolled(-2.5F)), -2.5F);
    QCOMPARE(rollOf(HandPose().rolled(0.3F).fist()), 0.0F);
}

void tst_HandSteering::handsAndFingersZoom_data()
{
    QTest::addColumn<Detect>("detect");
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("acts");
    QTest::addColumn<double>("factor");
    const auto hands = [](const char *name, const Change &change, bool acts, double factor) {
        QTest::newRow(name) << &TwoHandScale::detect << change << acts << factor;
    };
    // By default drawn apart by 2 mm from 398 mm.
    hands("hands draw apart", none, true, 400.0 / 398.0);
    hands("hands scale", scales(0.991F), true, std::exp(0.01));
    hands("hands scale hardly", scales(0.989F), false, 1);
    const auto apart = [](float way) {
        return [way](HandStage &s) {
            scales(0.999F)(s);
            s.moment(1).hands[0].stabilizedPalmPosition = Vector(200 - way, 200, 0);
            s.moment(1).hands[1].stabilizedPalmPosition = Vector(-200, 200, 0);
        };
    };
    hands("hands apart by 0.31 mm", apart(0.31F), true, std::exp(0.01));
    hands("hands apart by 0.29 mm", apart(0.29F), false, 1);
    hands("hands together by 0.31 mm", apart(-0.31F), true, std::exp(0.01));
    hands("one hand pinches", firstHand(&Leap::HandData::pinchStrength, 0.2F), false, 1);
    hands(
        "one hand appears", [](HandStage &s) { s.moment(1).hands.pop_back(); }, false, 1);

    const auto fingers = [](const char *name, const Vector &first, const Vector &second,
                            float share, bool acts) {
        const Change change = [first, second, share](HandStage &stage) {
            for (int age : {0, 1}) {
                Leap::FrameData &moment = stage.moment(age);
                moment = handFrame(moment.id, moment.timestamp, pointingAt(first, second));
            }
            scales(share)(stage);
        };
        QTest::newRow(name) << &TwoFingerZoom::detect << change << acts << std::exp(0.01);
    };
    const Vector left(-80, 200, 0);
    const Vector right(80, 200, 0);
    fingers("fingers draw apart", left, right, 0.981F, true);
    fingers("fingers draw hardly apart", left, right, 0.979F, false);
    fingers("fingers 29.9 mm deep", left, right + Vector(0, 0, 29.9F), 1, true);
    fingers("fingers 30.1 mm deep", left, right - Vector(0, 0, 30.1F), 1, false);
    fingers("fingers 15.1 mm across", left, right + Vector(0, -144.9F, 0), 1, true);
    fingers("fingers 14.9 mm across", left, right + Vector(0, -145.1F, 0), 1, false);

    QTest::newRow("open hands' fingers") << &TwoFingerZoom::detect << scales(1) << false << 1.0;
    QTest::newRow("an open hand and a tool") << &TwoFingerZoom::detect << Change([](HandStage &s) {
        for (int age : {0, 1})
            s.moment(age) = handFrame(0, kNow, {HandPose()});
        Leap::PointableData tool;
        tool.isTool = true;
        tool.tipPosition = {100, 200, -90};
        s.moment(0).pointables.push_back(tool);
        scales(1)(s);
    }) << false << 1.0;
    QTest::newRow("one hand not open") << &TwoFingerZoom::detect << Change([](HandStage &s) {
        scales(1)(s);
        s.moment(0).hands[0].grabStrength = 0.3F;
    }) << true << std::exp(0.01);
}

void tst_HandSteering::handsAndFingersZoom()
{
    QFETCH(Detect, detect);
    QFETCH(Change, change);
    QFETCH(bool, acts);
    QFETCH(double, factor);
    HandStage stage([](int age) {
        const float apart = 200 - float(age);
        return HandStage::Hands{HandPose().at({apart, 200, 0}), leftHand({-apart, 200, 0})};
    });
    change(stage);
    HandState state;
    state.view.fov = 60;
    state.planet.planetFov = 100;
    const HandDecision decision = detect(stage.scene(), state);
    QCOMPARE(decision.acted, acts);
    const double fov = acts ? 60 / factor : 60;
    QCOMPARE(decision.state.view.fov, float(fov));
    const bool ofPlanet = detect == &TwoFingerZoom::detect;
    QCOMPARE(float(decision.state.planet.planetFov), float(ofPlanet ? 40 + fov : 100));
}

void tst_HandSteering::fingersRoll_data()
{
    QTest::addColumn<double>("angle"); // of the fingers against the clock, radians
    QTest::addColumn<double>("before");
    QTest::addColumn<qint64>("since"); // the last action, µs
    QTest::addColumn<float>("depth");  // mm
    QTest::addColumn<double>("roll");
    QTest::addColumn<bool>("rests");
    const qint64 late = 200'001;
    const auto row = [](const char *name, double angle, double before, qint64 since, float depth,
                        double roll, bool rests = false) {
        QTest::newRow(name) << angle << before << since << depth << roll << rests;
    };
    row("follows", -0.5, 0.2, late, 0, 0.5);
    row("follows the other way", 0.5, -0.2, late, 0, -0.5);
    row("almost a jump", -0.5, 0.11, late, 0, 0.5);
    row("a jump", -0.5, 0.09, late, 0, 0.09);
    row("snaps", 0.09, 0.2, late, 0, 0, true);
    row("does not snap yet", 0.11, 0.2, late, 0, -0.11);
    row("level already", 0.09, 0, late, 0, 0);
    row("rests, but too far to snap", 0.09, 0.41, late, 0, 0.41, true);
    row("too soon", -0.5, 0.2, late - 1, 0, 0.2);
    row("shallow", -0.5, 0.2, late, 29.9F, 0.5);
    row("deep", -0.5, 0.2, late, -30.1F, 0.2);
}

void tst_HandSteering::fingersRoll()
{
    QFETCH(double, angle);
    QFETCH(double, before);
    QFETCH(qint64, since);
    QFETCH(float, depth);
    QFETCH(double, roll);
    QFETCH(bool, rests);
    const Vector arm(float(80 * std::cos(angle)), float(80 * std::sin(angle)), depth / 2);
    HandStage stage(
        [arm](int) { return pointingAt(Vector(0, 200, 0) - arm, Vector(0, 200, 0) + arm); });
    HandState state;
    state.view.roll = float(before);
    state.lastAction = kNow - since;
    const HandDecision decision = TwoFingerRoll::detect(stage.scene(), state);
    QVERIFY2(std::abs(double(decision.state.view.roll) - roll) < 1e-6,
             qPrintable(QString::number(decision.state.view.roll)));
    QCOMPARE(decision.state.lastAction, rests ? kNow : kNow - since);

    // Open hands do not roll, whatever their fingers do.
    for (Leap::HandData &hand : stage.moment(0).hands)
        hand.grabStrength = 0;
    for (Leap::PointableData &finger : stage.moment(0).pointables)
        finger.isExtended = true;
    QCOMPARE(TwoFingerRoll::detect(stage.scene(), state).state.view.roll, float(before));
}

void tst_HandSteering::handsAreLostAtEdges_data()
{
    QTest::addColumn<Vector>("palm");
    QTest::addColumn<double>("confidence");
    QTest::addColumn<int>("goneFor");  // frames
    QTest::addColumn<qint64>("since"); // the last hand left, µs
    QTest::addColumn<int>("zone");
    QTest::addColumn<bool>("tells");
    const auto row = [](const char *name, const Vector &palm, double confidence, int zone,
                        int goneFor = 1, qint64 since = 1'000'000) {
        QTest::newRow(name) << palm << confidence << goneFor << since << zone << (zone != 0);
    };
    using namespace ZoneCheck;
    row("left", {-100.1F, 200, 0}, 0.09, Left);
    row("not left", {-99.9F, 200, 0}, 0.09, 0);
    row("right", {100.1F, 200, 0}, 0.09, Right);
    row("not right", {99.9F, 200, 0}, 0.09, 0);
    row("bottom", {0, 99.9F, 0}, 0.09, Bottom);
    row("not bottom", {0, 100.1F, 0}, 0.09, 0);
    row("top", {0, 300.1F, 0}, 0.09, Top);
    row("not top", {0, 299.9F, 0}, 0.09, 0);
    row("a corner", {-150, 50, 0}, 0.09, Left | Bottom);
    row("at the origin's height", {0, 0, 0}, 0.09, 0);
    row("seen too well", {-150, 200, 0}, 0.11, 0);
    // 600 mm above the device the field ends.
    row("in doubt at the boundary", {0, 550.1F, 0}, 0.19, Top);
    row("in doubt inside", {0, 549.9F, 0}, 0.19, 0);
    row("too sure at the boundary", {0, 590, 0}, 0.21, 0);
    row("just told", {-150, 200, 0}, 0.09, Left, 1, 10);
    row("nine frames ago", {-150, 200, 0}, 0.09, Left, 9);
    row("ten frames ago", {-150, 200, 0}, 0.09, 0, 10);
    row("still there", {-150, 200, 0}, 0.09, Left, 0);
    row("still there, elsewhere", {0, 200, 0}, 0.09, 0, 0, 5'000'000);
    QTest::newRow("the end is told")
        << Vector(0, 200, 0) << 0.5 << 20 << qint64(1'000'001) << 0 << true;
}

void tst_HandSteering::handsAreLostAtEdges()
{
    QFETCH(Vector, palm);
    QFETCH(double, confidence);
    QFETCH(int, goneFor);
    QFETCH(qint64, since);
    QFETCH(int, zone);
    HandPose pose = HandPose().at(palm);
    pose.confidence = float(confidence);
    HandStage stage([pose, goneFor](int age) {
        return age < goneFor ? HandStage::Hands() : HandStage::Hands{pose};
    });
    const ZoneCheck::Result result = ZoneCheck::check(stage.scene(), kNow - since);
    const bool isLost = goneFor > 0 && zone != 0;
    QCOMPARE(int(result.outZone), zone);
    QTEST(result.emitsChange, "tells");
    QCOMPARE(result.handLost, isLost);
    QCOMPARE(result.zoneTime, isLost ? kNow : kNow - since);
}

QTEST_GUILESS_MAIN(tst_HandSteering)
#include "tst_HandSteering.moc"
