#include "FrameDeriver.h"
#include "HandMotion.h"
#include "WarningsFail.h"

#include <QtTest>

#include <limits>

/// What the layer adds to the moments of a service that sends little.
class tst_LeapFrameDeriver : public WarningsFail
{
    Q_OBJECT

private slots:
    void placesRestWithTheHand();
    void placesFollowTheHand();
    void zonesAreInFrontOfThePlane();
    void whatTheServiceTellsStays();
    void gesturesAreThoseWanted_data();
    void gesturesAreThoseWanted();
    void aCircleThatWasUnderWayStartsWhereItIsSeen_data();
    void aCircleThatWasUnderWayStartsWhereItIsSeen();
    void whatVanishesIsForgotten_data();
    void whatVanishesIsForgotten();
    void noMomentHarms();
};

namespace {

using namespace Leap;

void complete(std::vector<FrameData> &frames)
{
    FrameDeriver deriver;
    for (FrameData &frame : frames)
        deriver.complete(frame, GestureTypes::all());
}

} // namespace

void tst_LeapFrameDeriver::placesRestWithTheHand()
{
    std::mt19937 random(1);
    auto frames = HandMotion("at 10 200 30 | hold 9").frames(100, 2, random);
    complete(frames);
    double squares = 0;
    int count = 0;
    for (const FrameData &frame : frames) {
        if (frame.timestamp < 2'000'000)
            continue;
        const Vector off = *frame.hands[0].stabilizedPalmPosition - Vector(10, 200, 30);
        squares += double(off.magnitudeSquared()) / 3;
        ++count;
    }
    // At the least cutoff, 1.5 Hz, the filter's share is a = 0.0861 at 100 Hz, and a low-pass
    // leaves a / (2 - a) of the variance; with what the jitter seems to move, a little more.
    const double deviation = std::sqrt(squares / count);
    QVERIFY2(deviation > 0.3 && deviation < 0.6, qPrintable(QString::number(deviation)));
}

void tst_LeapFrameDeriver::placesFollowTheHand()
{
    for (const float speed : {50.0F, 500.0F, 1000.0F}) {
        const QString text = QStringLiteral("hold 0.1 | move %1 0 0 in 1.5 steady");
        auto frames = HandMotion(text.arg(double(1.5F * speed))).frames(100);
        complete(frames);
        const FrameData &last = frames[frames.size() - 2];
        // A low-pass of the cutoff f lags by the way of 1 / (2 pi f) seconds.
        const float lag = speed / (6.2831853F * (1.5F + 0.03F * speed));
        const HandData &hand = last.hands.front();
        const float palm = hand.palmPosition.x - hand.stabilizedPalmPosition->x;
        QVERIFY2(std::abs(palm - lag) < 0.03F * lag, qPrintable(QString::number(double(palm))));
        const PointableData &finger = last.pointables[1];
        const float tip = finger.tipPosition.x - finger.stabilizedTipPosition->x;
        QVERIFY2(std::abs(tip - lag) < 0.03F * lag, qPrintable(QString::number(double(tip))));
    }
}

void tst_LeapFrameDeriver::zonesAreInFrontOfThePlane()
{
    struct Place
    {
        float z;
        TouchZone zone;
        float distance;
    };
    // One after the other, since borders give way by 5 mm once they are crossed, and a plane that
    // has come forward is what the distance is measured from.
    constexpr std::array<Place, 11> kPlaces{{{300, TouchZone::None, 1},
                                             {81, TouchZone::None, 1},
                                             {79, TouchZone::Hovering, 0.9875F},
                                             {84, TouchZone::Hovering, 1},
                                             {86, TouchZone::None, 1},
                                             {84, TouchZone::None, 1},
                                             {20, TouchZone::Hovering, 0.25F},
                                             {-1, TouchZone::Touching, -0.0125F},
                                             {3, TouchZone::Touching, -0.025F},
                                             {6, TouchZone::Hovering, 0.0125F},
                                             {-200, TouchZone::Touching, -1}}};
    for (const float plane : {0.0F, 50.0F}) {
        FrameDeriver deriver;
        std::int64_t time = 0;
        for (const Place &place : kPlaces) {
            FrameData frame = handFrame(1, time += 10000, {HandPose()});
            if (plane > 0)
                frame.interactionBox = BoxData{{0, 200, plane}, {200, 200, 150}};
            frame.pointables[1].stabilizedTipPosition = Vector(0, 200, plane + place.z);
            deriver.complete(frame, {});
            QCOMPARE(*frame.pointables[1].touchZone, place.zone);
            const float distance = *frame.pointables[1].touchDistance;
            QVERIFY2(std::abs(distance - place.distance) < 1e-5F,
                     qPrintable(QString::number(double(distance))));
        }
    }
}

void tst_LeapFrameDeriver::whatTheServiceTellsStays()
{
    FrameData frame = handFrame(1, 1000, {HandPose()});
    frame.hands[0].stabilizedPalmPosition = Vector(1, 2, 3);
    frame.pointables[0].stabilizedTipPosition = Vector(4, 5, 6);
    frame.pointables[0].touchZone = TouchZone::Touching;
    frame.pointables[0].touchDistance = 0.75F;
    frame.interactionBox = BoxData{{1, 1, 1}, {2, 2, 2}};
    GestureData swipe;
    swipe.id = 7;
    swipe.type = GestureType::Swipe;
    GestureData tap;
    tap.type = GestureType::KeyTap;
    frame.gestures = std::vector<GestureData>{tap, swipe};
    GestureTypes wanted;
    wanted.set(GestureType::Swipe, true);
    FrameDeriver().complete(frame, wanted);
    QCOMPARE(frame.gestures->size(), std::size_t(1));
    QCOMPARE(frame.gestures->front().id, 7);
    QVERIFY(*frame.hands[0].stabilizedPalmPosition == Vector(1, 2, 3));
    QVERIFY(*frame.pointables[0].stabilizedTipPosition == Vector(4, 5, 6));
    QCOMPARE(*frame.pointables[0].touchZone, TouchZone::Touching);
    QCOMPARE(*frame.pointables[0].touchDistance, 0.75F);
    QVERIFY(frame.interactionBox->center == Vector(1, 1, 1));

    FrameData bare = handFrame(2, 2000, {HandPose()});
    FrameDeriver().complete(bare, wanted);
    QVERIFY(bare.interactionBox->center == Vector(0, 200, 0));
    QVERIFY(bare.interactionBox->size == Vector(235.247F, 235.247F, 147.751F));
    QVERIFY(bare.gestures && bare.gestures->empty());
}

void tst_LeapFrameDeriver::gesturesAreThoseWanted_data()
{
    QTest::addColumn<int>("wanted");
    QTest::addColumn<bool>("isFound");
    QTest::newRow("the circle") << int(GestureType::Circle) << true;
    QTest::newRow("another") << int(GestureType::Swipe) << false;
}

void tst_LeapFrameDeriver::gesturesAreThoseWanted()
{
    QFETCH(const int, wanted);
    QFETCH(const bool, isFound);
    GestureTypes types;
    types.set(GestureType(wanted), true);
    FrameDeriver deriver;
    bool isThere = false;
    auto frames = HandMotion("point in 0 | hold 0.2 | circle r 30 turns 2 in 2").frames(100);
    for (FrameData &frame : frames) {
        deriver.complete(frame, types);
        isThere = isThere || !frame.gestures->empty();
    }
    QCOMPARE(isThere, isFound);
}

void tst_LeapFrameDeriver::aCircleThatWasUnderWayStartsWhereItIsSeen_data()
{
    QTest::addColumn<bool>("isPublished");
    QTest::newRow("found") << false;
    QTest::newRow("the service's") << true;
}

void tst_LeapFrameDeriver::aCircleThatWasUnderWayStartsWhereItIsSeen()
{
    QFETCH(const bool, isPublished);
    auto frames = HandMotion("point in 0 | hold 0.2 | circle r 30 turns 3 in 3").frames(100);
    FrameDeriver deriver;
    QString states;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        FrameData &frame = frames[i];
        if (isPublished) {
            GestureData circle;
            circle.type = GestureType::Circle;
            circle.state = GestureState::Update;
            frame.gestures = {circle};
        }
        deriver.complete(frame, i < 200 ? GestureTypes() : GestureTypes::all());
        for (const GestureData &gesture : *frame.gestures)
            states += QString::number(int(gesture.state));
    }
    QVERIFY(states.size() > 50);
    QCOMPARE(states.count('1'), 1);
    QVERIFY(states.startsWith("12"));
}

void tst_LeapFrameDeriver::whatVanishesIsForgotten_data()
{
    QTest::addColumn<int>("away"); // µs
    QTest::addColumn<bool>("isGone");
    QTest::addColumn<bool>("isForgotten");
    QTest::newRow("never away") << 10000 << false << false;
    QTest::newRow("gone for a moment") << 10000 << true << true;
    QTest::newRow("a gap") << 210000 << false << true;
    QTest::newRow("back in time") << -10000 << false << true;
}

void tst_LeapFrameDeriver::whatVanishesIsForgotten()
{
    QFETCH(const int, away);
    QFETCH(const bool, isGone);
    QFETCH(const bool, isForgotten);
    FrameDeriver deriver;
    FrameData before = handFrame(1, 1'000'000, {HandPose()});
    deriver.complete(before, GestureTypes::all());
    if (isGone) {
        FrameData empty = handFrame(2, 1'005'000, {});
        deriver.complete(empty, GestureTypes::all());
    }
    FrameData now = handFrame(3, 1'000'000 + away, {HandPose().at({100, 100, 0})});
    deriver.complete(now, GestureTypes::all());
    const bool isAsItIs = *now.hands[0].stabilizedPalmPosition == now.hands[0].palmPosition;
    QCOMPARE(isAsItIs, isForgotten);
    const PointableData &finger = now.pointables[2];
    QCOMPARE(*finger.stabilizedTipPosition == finger.tipPosition, isForgotten);
}

void tst_LeapFrameDeriver::noMomentHarms()
{
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kHuge = std::numeric_limits<float>::max();
    using Time = std::numeric_limits<std::int64_t>;
    FrameDeriver deriver;
    for (const std::int64_t time : {Time::min(), Time::max(), std::int64_t(0), Time::min() + 1}) {
        for (const float value : {kNan, kHuge, -kHuge, 0.0F}) {
            for (int step = 0; step < 40; ++step) {
                std::vector<HandPose> hands;
                for (int i = 0; i < 50; ++i) {
                    HandPose pose = HandPose().at({value, value * float(step % 3), 0});
                    pose.id = i / 2;
                    hands.push_back(pose);
                }
                const std::int64_t at = time == Time::max() ? time - 40 + step
                                                            : time + std::int64_t(step) * 5000;
                FrameData frame = handFrame(step, at, hands);
                frame.pointables[0].isTool = true;
                deriver.complete(frame, GestureTypes::all());
                // Of 25 ids there are states for 20.
                QVERIFY(frame.hands[39].stabilizedPalmPosition);
                QVERIFY(!frame.hands[40].stabilizedPalmPosition);
                QVERIFY(frame.gestures->size() <= 80);
            }
        }
    }
    FrameData broken = handFrame(1, 1'000'000, {HandPose().at({0, kNan, 0})});
    deriver.complete(broken, GestureTypes::all());
    FrameData frame = handFrame(2, 1'010'000, {HandPose()});
    deriver.complete(frame, GestureTypes::all());
    QVERIFY(*frame.hands[0].stabilizedPalmPosition == frame.hands[0].palmPosition);
}

QTEST_GUILESS_MAIN(tst_LeapFrameDeriver)

#include "tst_LeapFrameDeriver.moc"
