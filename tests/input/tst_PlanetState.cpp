#include "HandStage.h"
#include "OrbShaderCodeBuilder.h"
#include "PlanetEvents.h"
#include "PlanetPull.h"
#include "PlanetReturn.h"
#include "TwoHandAnalysis.h"
#include "WarningsFail.h"

#include <QtTest>

using Hands = HandStage::Hands;

namespace {

constexpr qint64 kNow = HandStage::kNow;
constexpr int kFlat = OrbShaderCodeBuilder::RECTILINEAR;
constexpr int kPlanet = OrbShaderCodeBuilder::LITTLE_PLANET;
constexpr int kBall = OrbShaderCodeBuilder::MIRROR_BALL;

/// A view that does as gestures decide.
class Session
{
public:
    HandState state;
    HandDecision last;

    void project(int projection)
    {
        state.view.projection = projection;
        PlanetEvents::projectionChanged(state);
    }

    bool act(const HandDecision &decision)
    {
        last = decision;
        state = decision.state;
        if (decision.projection) {
            project(*decision.projection);
            PlanetEvents::projectionChangedByHands(state);
        }
        return decision.acted;
    }

    bool pinch(float up = 0)
    {
        HandStage stage([up](int age) {
            return Hands{HandPose().pinching().at({0, 200 - up * float(age), 0})};
        });
        return act(PlanetPull::detect(stage.scene(), state));
    }

    bool letGo()
    {
        HandStage stage([](int) { return Hands{HandPose()}; });
        return act(PlanetPull::detect(stage.scene(), state));
    }

    void bounceTo(float pitch)
    {
        state.view.setPitch(double(pitch));
        act(PlanetEvents::animationFinished(state, kNow));
    }

    bool holdFlat(float tilt = 0, float apart = 300)
    {
        HandPose other = HandPose().at({-apart / 2, 200, 0}).rolled(tilt);
        other.id = 2;
        HandStage stage([other, tilt, apart](int) {
            return Hands{HandPose().at({apart / 2, 200, 0}).rolled(-tilt), other};
        });
        return act(TwoHandAnalysis::detect(stage.scene(), state));
    }

    void leave()
    {
        state.lastAction = 0;
        for (int frame = 0; frame < 17; ++frame)
            holdFlat();
    }

    bool goBack()
    {
        HandStage stage([](int age) { return Hands{HandPose().at({float(age), 200, 0})}; });
        return act(PlanetReturn::detect(stage.scene(), state));
    }
};

using Event = std::function<void(Session &)>;

} // namespace

Q_DECLARE_METATYPE(PlanetState)
Q_DECLARE_METATYPE(Event)

class tst_PlanetState : public WarningsFail
{
    Q_OBJECT

private slots:
    void eventsMoveTheState_data();
    void eventsMoveTheState();
    void leavingTakesSeventeenFlatFrames_data();
    void leavingTakesSeventeenFlatFrames();
    void aFlatPictureAndItsPlanetFitEachOther();
    void aPullEndsByWhereThePlanetComesToRest_data();
    void aPullEndsByWhereThePlanetComesToRest();
    void aNarrowPictureBouncesToThePlanetsLeast();
    void aPulledPlanetBouncesToWhereItWas();
    void aPullInAnotherProjectionChangesNothing();
};

void tst_PlanetState::eventsMoveTheState_data()
{
    using S = PlanetState;
    QTest::addColumn<PlanetState>("from");
    QTest::addColumn<int>("projection");
    QTest::addColumn<bool>("pulled");
    QTest::addColumn<Event>("event");
    QTest::addColumn<PlanetState>("to");
    QTest::addColumn<int>("shown");
    const auto row = [](const char *name, S from, int projection, bool pulled, const Event &event,
                        S to, int shown) {
        QTest::newRow(name) << from << projection << pulled << event << to << shown;
    };
    const Event pinch = [](Session &s) { s.pinch(); };
    const Event letGo = [](Session &s) { s.letGo(); };
    const Event leave = [](Session &s) { s.leave(); };
    const Event goBack = [](Session &s) { s.goBack(); };
    const auto bounceTo = [](float pitch) { return [=](Session &s) { s.bounceTo(pitch); }; };
    const auto project = [](int to) { return [=](Session &s) { s.project(to); }; };
    row(
        "flat hands enter", S::MayBePulled, kFlat, false, [](Session &s) { s.holdFlat(); },
        S::Shown, kPlanet);
    row("a pull of a flat picture", S::MayBePulled, kFlat, false, pinch, S::MayBePulled, kPlanet);
    row("a pull of a planet", S::Shown, kPlanet, false, pinch, S::Shown, kPlanet);
    row("flat hands leave", S::Shown, kPlanet, false, leave, S::MayBePulled, kFlat);
    row("a hand returns", S::Shown, kPlanet, false, goBack, S::MayBePulled, kFlat);
    row("release of a flat picture", S::MayBePulled, kPlanet, true, letGo, S::None, kPlanet);
    row("release of a planet", S::Shown, kPlanet, true, letGo, S::None, kPlanet);
    row("release in another projection", S::None, kBall, true, letGo, S::None, kBall);
    row("a bounce to the top", S::None, kPlanet, false, bounceTo(0), S::MayBePulled, kFlat);
    row("a bounce below it", S::None, kPlanet, false, bounceTo(1e-6F), S::Shown, kPlanet);
    row("a bounce outrun by others", S::MayBePulled, kFlat, false, bounceTo(1), S::MayBePulled,
        kFlat);
    row("a bounce in another projection", S::None, kBall, false, bounceTo(0), S::None, kBall);
    row("others show a planet", S::MayBePulled, kFlat, false, project(kPlanet), S::Shown, kPlanet);
    row("others show it flat", S::Shown, kPlanet, false, project(kFlat), S::MayBePulled, kFlat);
    row("others show a ball", S::Shown, kPlanet, false, project(kBall), S::None, kBall);
    row("others show it flat after a ball", S::None, kBall, false, project(kFlat), S::MayBePulled,
        kFlat);
    row("others show a planet while pulled", S::MayBePulled, kPlanet, true, project(kPlanet),
        S::MayBePulled, kPlanet);
    row("others show it flat while pulled", S::Shown, kPlanet, true, project(kFlat), S::Shown,
        kFlat);
    row("others show a ball while pulled", S::Shown, kPlanet, true, project(kBall), S::None, kBall);
}

void tst_PlanetState::eventsMoveTheState()
{
    QFETCH(int, projection);
    QFETCH(bool, pulled);
    QFETCH(PlanetState, from);
    QFETCH(Event, event);
    Session session;
    session.state.view.projection = projection;
    session.state.view.setFov(19);
    session.state.planet.state = from;
    session.state.planet.pullPitch = pulled ? 0.25 : Planet::kNoPull;
    event(session);
    QTEST(session.state.planet.state, "to");
    QTEST(session.state.view.projection, "shown");
}

void tst_PlanetState::leavingTakesSeventeenFlatFrames_data()
{
    QTest::addColumn<float>("tilt");
    QTest::newRow("too tilted to leave") << 0.4F;
    QTest::newRow("too tilted to hold the planet") << 0.6F;
}

void tst_PlanetState::leavingTakesSeventeenFlatFrames()
{
    QFETCH(float, tilt);
    Session session;
    session.project(kPlanet);
    session.state.planet.planetFov = 19.26;
    session.state.view.setFov(19.26);
    for (int frame = 0; frame < 16; ++frame)
        QVERIFY(session.holdFlat());
    QCOMPARE(session.state.view.projection, kPlanet);
    QCOMPARE(session.holdFlat(tilt), tilt < 0.5F); // out of the posture
    for (int frame = 0; frame < 8; ++frame)
        session.holdFlat();
    QVERIFY(!session.holdFlat(0, 99)); // too near each other: neither counts nor resets
    for (int frame = 0; frame < 8; ++frame)
        session.holdFlat();
    QCOMPARE(session.state.view.projection, kPlanet);
    session.holdFlat();
    QCOMPARE(session.state.view.projection, kFlat);
    QCOMPARE(session.state.lastAction, kNow);
    QCOMPARE(session.state.planet.switchCounter, 0);
}

void tst_PlanetState::aFlatPictureAndItsPlanetFitEachOther()
{
    Session session;
    session.state.view.setFov(70);
    session.state.view.setPitch(0.5);
    session.state.view.setRoll(0.5);
    session.state.planet.pullRoll = 0.3;
    session.state.planet.switchCounter = 7;
    QVERIFY(session.holdFlat());
    QCOMPARE(session.state.view.fov, float(70 / 3.57 - 5.95));
    QCOMPARE(session.state.view.pitch, 0.0F);
    QCOMPARE(session.state.view.roll, 0.0F);
    QCOMPARE(session.state.lastAction, kNow);
    QCOMPARE(session.state.planet.switchCounter, 0);
    // Even frames, as the test's are, do not let the planet drift.
    session.leave();
    QCOMPARE(session.state.view.projection, kFlat);
    QCOMPARE(session.state.view.fov, 70.0F);
}

void tst_PlanetState::aPullEndsByWhereThePlanetComesToRest_data()
{
    QTest::addColumn<float>("pitch");
    QTest::addColumn<int>("projection");
    QTest::addColumn<PlanetState>("state");
    QTest::addColumn<float>("fov");
    QTest::addColumn<float>("roll");
    QTest::newRow("at the top") << 0.0F << kFlat << PlanetState::MayBePulled << 70.0F << 0.5F;
    QTest::newRow("below it") << -0.01F << kPlanet << PlanetState::Shown << 40.0F << 0.1F;
}

void tst_PlanetState::aPullEndsByWhereThePlanetComesToRest()
{
    QFETCH(float, pitch);
    Session session;
    session.state.view.setFov(70);
    session.state.view.setPitch(0.3);
    session.state.view.setRoll(0.5);
    QVERIFY(session.pinch());
    const double planetFov = 70 / 3.57 - 5.95;
    QCOMPARE(session.state.view.projection, kPlanet);
    QCOMPARE(session.state.view.fov, float(planetFov));
    QCOMPARE(session.state.view.pitch, 0.0F);
    QCOMPARE(session.state.view.roll, 0.5F);
    QVERIFY(session.pinch(5));
    QVERIFY(session.state.view.pitch > 0);
    QVERIFY(session.letGo());
    QVERIFY(session.last.bounce.has_value());
    QCOMPARE(session.last.bounce->pitch, 0.0);
    QCOMPARE(session.last.bounce->fov, planetFov);
    QCOMPARE(session.last.bounce->roll, 0.5);
    QVERIFY(!session.state.planet.isPulled() && !session.state.planet.pinchHeld);
    QVERIFY(!session.letGo());

    session.state.view.setFov(40);
    session.state.view.setRoll(0.1);
    session.bounceTo(pitch);
    QTEST(session.state.view.projection, "projection");
    QTEST(session.state.planet.state, "state");
    QTEST(session.state.view.fov, "fov");
    QTEST(session.state.view.roll, "roll");
}

void tst_PlanetState::aNarrowPictureBouncesToThePlanetsLeast()
{
    Session session;
    session.state.view.setFov(15); // of a planet it would be -1.7
    QVERIFY(session.pinch());
    QVERIFY(session.letGo());
    QCOMPARE(session.last.bounce->fov, 10.0);
}

void tst_PlanetState::aPulledPlanetBouncesToWhereItWas()
{
    Session session;
    session.project(kPlanet);
    session.state.view.setPitch(0.7);
    session.state.view.setFov(120);
    session.state.view.setRoll(-0.2);
    for (const float up : {0.0F, 3.0F, 3.0F})
        QVERIFY(session.pinch(up));
    QVERIFY(session.letGo());
    QVERIFY(session.last.bounce.has_value());
    QCOMPARE(session.last.bounce->pitch, double(0.7F));
    QCOMPARE(session.last.bounce->fov, 120.0);
    QCOMPARE(session.last.bounce->roll, double(-0.2F));
}

void tst_PlanetState::aPullInAnotherProjectionChangesNothing()
{
    for (const auto state : {PlanetState::None, PlanetState::MayBePulled, PlanetState::Shown}) {
        Session session;
        session.project(kBall);
        session.state.planet.state = state;
        session.state.view.setPitch(0.7);
        session.state.view.setRoll(0.2);
        QVERIFY(!session.pinch(3));
        QVERIFY(!session.pinch(3));
        QVERIFY(!session.letGo());
        QVERIFY(!session.last.bounce && !session.last.projection);
        QCOMPARE(session.state.view.pitch, 0.7F);
        QCOMPARE(session.state.view.roll, 0.2F);
        QCOMPARE(session.state.view.fov, 90.0F);
        QCOMPARE(session.state.planet.state, state);
    }
}

QTEST_GUILESS_MAIN(tst_PlanetState)
#include "tst_PlanetState.moc"
