#include "FrameDeriver.h"
#include "HandMotion.h"
#include "Leap.h"
#include "WarningsFail.h"

#include <QtTest>

/// Moments as values: how hands have moved between two of them, and what is asked of one.
class tst_LeapFrame : public WarningsFail
{
    Q_OBJECT

private slots:
    void eachMotionIsRecognised_data();
    void eachMotionIsRecognised();
    void twoHandsMoveTogether_data();
    void twoHandsMoveTogether();
    void oneOfTwoHandsMovesBoth();
    void noiseDoesNotHideMotion_data();
    void noiseDoesNotHideMotion();
    void theServicesCountIsTaken();
    void whatIsNotThereIsInvalid();
    void listsKnowTheirEnds();
    void theBoxMeasuresFromItsCorner();
    void theDeviceSeesAPyramid_data();
    void theDeviceSeesAPyramid();
    void anglesAreThoseOfTheLibrary_data();
    void anglesAreThoseOfTheLibrary();
};

namespace {

using namespace Leap;

constexpr float kPi = 3.14159265F;

Frame moment(const std::vector<HandPose> &hands, std::int64_t id = 1)
{
    return Frame(std::make_shared<const FrameData>(handFrame(id, id * 10000, hands)));
}

/// With finger tips drawn out from their middle, at the palm's (0, 200, -90), by that factor.
HandPose spread(float factor)
{
    HandPose pose;
    for (std::size_t i = 0; i < 5; ++i)
        pose.tipOffset[i].x = (float(i) - 2) * 20 * (factor - 1);
    return pose;
}

bool isClose(float value, double expected)
{
    return std::abs(double(value) - expected) < 1e-3;
}

} // namespace

void tst_LeapFrame::eachMotionIsRecognised_data()
{
    QTest::addColumn<int>("motion");
    QTest::newRow("to the side") << 0;
    QTest::newRow("turned") << 1;
    QTest::newRow("spread") << 2;
}

void tst_LeapFrame::eachMotionIsRecognised()
{
    QFETCH(const int, motion);
    // The same whether the hand is level or inclined.
    for (const float inclined : {0.0F, 0.7F}) {
        const HandPose start = spread(1).nodded(inclined);
        const std::array<HandPose, 3> ends{start.at({3, 200, -4}), start.rolled(0.1F),
                                           spread(1.1F).nodded(inclined)};
        const Frame before = moment({start});
        const Frame now = moment({ends[std::size_t(motion)]}, 2);
        QVERIFY((now.translationProbability(before) > 0.98F) == (motion == 0));
        QVERIFY((now.rotationProbability(before) > 0.98F) == (motion == 1));
        QVERIFY((now.scaleProbability(before) > 0.98F) == (motion == 2));
        QVERIFY((now.hands()[0].translationProbability(before) > 0.98F) == (motion == 0));
        QVERIFY((now.hands()[0].rotationProbability(before) > 0.98F) == (motion == 1));
        const Vector way = motion == 0 ? Vector(3, 0, -4) : Vector();
        QVERIFY(now.translation(before).distanceTo(way) < 1e-4F);
        QVERIFY(now.hands()[0].translation(before).distanceTo(way) < 1e-4F);
        QVERIFY(isClose(now.scaleFactor(before), motion == 2 ? 1.1 : 1));
        QVERIFY(isClose(motionBetween(before.data()->hands[0], now.data()->hands[0]).angle,
                        motion == 1 ? 0.1 : 0));
    }
}

void tst_LeapFrame::twoHandsMoveTogether_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("scale");
    QTest::addColumn<int>("motion");
    QTest::newRow("alike") << "left: at -100 200 0 | move 10 0 0 in 1\n"
                              "right: at 100 200 0 | move 10 0 0 in 1"
                           << 1.0F << 0;
    QTest::newRow("around each other")
        << "both: at 100 200 0\nleft: arc 10 around 0 200 0 in 1\nright: arc 10 around 0 200 0 in 1"
        << 1.0F << 1;
    QTest::newRow("apart") << "both: at 100 200 0 | move 10 0 0 in 1" << 1.1F << 2;
    QTest::newRow("together") << "both: at 100 200 0 | move -20 0 0 in 1" << 0.8F << 2;
}

void tst_LeapFrame::twoHandsMoveTogether()
{
    QFETCH(const QString, text);
    QFETCH(const float, scale);
    QFETCH(const int, motion);
    const HandMotion hands(text);
    const Frame before = moment(hands.handsAt(0));
    const Frame now = moment(hands.handsAt(1), 2);
    QVERIFY(isClose(now.scaleFactor(before), double(scale)));
    QVERIFY(now.translation(before).distanceTo(motion == 0 ? Vector(10, 0, 0) : Vector()) < 0.01F);
    QVERIFY((now.translationProbability(before) > 0.98F) == (motion == 0));
    QVERIFY((now.rotationProbability(before) > 0.98F) == (motion == 1));
    QVERIFY((now.scaleProbability(before) > 0.98F) == (motion == 2));
}

void tst_LeapFrame::oneOfTwoHandsMovesBoth()
{
    // Their middle goes by as much as each of them goes from it.
    const HandMotion hands("left: at -100 200 0\nright: at 100 200 0 | move 10 0 0 in 1");
    const Frame before = moment(hands.handsAt(0));
    const Frame now = moment(hands.handsAt(1), 2);
    QVERIFY(std::abs(now.translationProbability(before) - 0.5F) < 0.05F);
    QVERIFY(std::abs(now.scaleProbability(before) - 0.5F) < 0.05F);
}

void tst_LeapFrame::noiseDoesNotHideMotion_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("noise"); // mm
    QTest::addColumn<bool>("isStabilized");
    QTest::addColumn<bool>("isScale");
    QTest::addColumn<float>("threshold");
    QTest::addColumn<float>("share"); // of moments
    const QString move = "hold 0.3 | move 200 0 0 in 1 steady";
    const QString apart = "both: at 60 200 0 | hold 0.3 | move 150 0 0 in 1 steady";
    const QString alike = "left: at -100 200 0 | hold 0.3 | move 150 0 0 in 1 steady\n"
                          "right: at 100 200 0 | hold 0.3 | move 150 0 0 in 1 steady";
    QTest::newRow("5 mm a frame") << "move 500 0 0 in 1 steady" << 0.5F << false << false << 0.7F
                                  << 0.99F;
    QTest::newRow("2 mm a frame") << move << 1.0F << true << false << 0.7F << 0.95F;
    QTest::newRow("2 mm a frame, noisy") << move << 2.0F << true << false << 0.7F << 0.9F;
    QTest::newRow("apart") << apart << 1.0F << true << true << 0.98F << 0.8F;
    QTest::newRow("not apart") << alike << 1.0F << true << true << 0.3F << -0.05F;
}

void tst_LeapFrame::noiseDoesNotHideMotion()
{
    QFETCH(const QString, text);
    QFETCH(const float, noise);
    QFETCH(const bool, isStabilized);
    QFETCH(const bool, isScale);
    QFETCH(const float, threshold);
    QFETCH(const float, share);
    int above = 0;
    int count = 0;
    for (unsigned seed = 0; seed < 10; ++seed) {
        std::mt19937 random(seed);
        FrameDeriver deriver;
        Frame before;
        auto frames = HandMotion(text).frames(100, noise, random);
        for (FrameData &data : frames) {
            if (isStabilized)
                deriver.complete(data, GestureTypes::all());
            const Frame now(std::make_shared<const FrameData>(data));
            // From when the hand has been on its way for a while.
            if (data.id > 60) {
                const float probability = isScale ? now.scaleProbability(before)
                                                  : now.translationProbability(before);
                above += probability > threshold ? 1 : 0;
                ++count;
            }
            before = now;
        }
    }
    // A negative share is one to stay below.
    const float found = float(above) / float(count);
    QVERIFY2(share > 0 ? found >= share : found < -share,
             qPrintable(QString::number(double(found))));
}

void tst_LeapFrame::theServicesCountIsTaken()
{
    FrameData before = handFrame(1, 1000, {HandPose()});
    FrameData now = handFrame(2, 2000, {HandPose().at({90, 90, 90})});
    before.motion = MotionData();
    before.motion->translation = {1, 1, 1};
    now.motion = before.motion;
    now.motion->translation = {1, 8, 1};
    now.motion->scale = 0.01F;
    const Frame since(std::make_shared<const FrameData>(before));
    const Frame frame(std::make_shared<const FrameData>(now));
    QVERIFY(frame.translation(since) == Vector(0, 7, 0));
    QVERIFY(isClose(frame.scaleFactor(since), std::exp(0.01)));
    QVERIFY(frame.translationProbability(since) > 0.98F);
    // Hands that were not there before have done nothing.
    HandPose other;
    other.id = 9;
    QVERIFY(moment({other}).translation(since) == Vector());
    QCOMPARE(moment({other}).hands()[0].translationProbability(since), 0.0F);
}

void tst_LeapFrame::whatIsNotThereIsInvalid()
{
    const Frame none;
    const Frame empty = moment({});
    QVERIFY(!none.isValid() && empty.isValid());
    for (const Frame &frame : {none, empty}) {
        QVERIFY(frame.hands().isEmpty() && frame.pointables().isEmpty());
        QVERIFY(!frame.hands().leftmost().isValid() && !frame.tools().rightmost().isValid());
        QVERIFY(!frame.hand(1).isValid() && !frame.gesture(1).isValid());
        QVERIFY(frame.hands()[0].palmNormal() == Vector());
        QVERIFY(frame.hands()[0].fingers().extended().isEmpty());
        QCOMPARE(frame.hands()[3].confidence(), 0.0F);
        QVERIFY(!frame.pointables()[-1].hand().isValid());
        QVERIFY(frame.pointables()[0] != frame.pointables()[0]);
        QVERIFY(!CircleGesture(frame.gestures()[0]).pointable().isValid());
        QCOMPARE(frame.translationProbability(none), 0.0F);
        QCOMPARE(frame.scaleFactor(empty), 1.0F);
    }
}

void tst_LeapFrame::listsKnowTheirEnds()
{
    HandPose left = HandPose().at({-100, 200, 0});
    left.id = 2;
    const Frame frame = moment({HandPose().at({50, 200, 0}).pointing(), left});
    QCOMPARE(frame.hands().leftmost().id(), 2);
    QCOMPARE(frame.hands().rightmost().id(), 1);
    QCOMPARE(frame.pointables().leftmost().id(), left.fingerId(0));
    QCOMPARE(frame.hand(1).fingers().extended().count(), 1);
    QCOMPARE(frame.hand(1).fingers().extended()[0].type(), Finger::TYPE_INDEX);
    QCOMPARE(frame.hand(2).fingers().extended().count(), 5);
    QCOMPARE(frame.fingers().fingerType(Finger::TYPE_RING).count(), 2);
    QVERIFY(frame.pointable(11) == frame.fingers()[1]);
    QCOMPARE(frame.pointable(21).hand().id(), 2);
    const Bone bone = frame.fingers()[1].bone(Bone::TYPE_DISTAL);
    QVERIFY(bone.nextJoint() == frame.fingers()[1].tipPosition());
}

void tst_LeapFrame::theBoxMeasuresFromItsCorner()
{
    const InteractionBox box(BoxData{{0, 200, 0}, {200, 100, 50}});
    QVERIFY(box.normalizePoint({0, 200, 0}) == Vector(0.5F, 0.5F, 0.5F));
    QVERIFY(box.normalizePoint({-100, 250, 25}) == Vector(0, 1, 1));
    QVERIFY(box.normalizePoint({300, 100, -75}, false) == Vector(2, -0.5F, -1));
    QVERIFY(box.normalizePoint({300, 100, -75}) == Vector(1, 0, 0));
}

void tst_LeapFrame::theDeviceSeesAPyramid_data()
{
    QTest::addColumn<QVector<float>>("place");
    QTest::addColumn<double>("distance");
    const double ring = std::sin(qDegreesToRadians(30.0));
    QTest::newRow("near the device") << QVector<float>{0, 30, 0} << 5.0;
    QTest::newRow("in the device") << QVector<float>{0, 10, 0} << 0.0;
    QTest::newRow("far") << QVector<float>{0, 590, 0} << 10.0;
    QTest::newRow("too far") << QVector<float>{0, 601, 0} << 0.0;
    // 300 mm off and 30 degrees within the border of 60 to the user's side.
    QTest::newRow("to the user") << QVector<float>{0, 259.8076F, 150} << 300 * ring;
    QTest::newRow("beyond the border") << QVector<float>{0, 100, 174} << 0.0;
    // 300 mm off and 30 degrees within the border of 75 to the side.
    QTest::newRow("to the side") << QVector<float>{-212.132F, 212.132F, 0} << 300 * ring;
    QTest::newRow("below") << QVector<float>{0, -100, 0} << 0.0;
}

void tst_LeapFrame::theDeviceSeesAPyramid()
{
    QFETCH(const QVector<float>, place);
    QFETCH(const double, distance);
    QVERIFY(isClose(Device().distanceToBoundary({place[0], place[1], place[2]}), distance));
}

void tst_LeapFrame::anglesAreThoseOfTheLibrary_data()
{
    QTest::addColumn<QVector<float>>("vector");
    QTest::addColumn<float>("angle"); // to the x axis
    QTest::newRow("along") << QVector<float>{3, 0, 0} << 0.0F;
    QTest::newRow("against") << QVector<float>{-2, 0, 0} << kPi;
    QTest::newRow("across") << QVector<float>{0, 0, 1} << kPi / 2;
    QTest::newRow("between") << QVector<float>{5, 5, 0} << kPi / 4;
    QTest::newRow("none") << QVector<float>{0, 0, 0} << 0.0F;
    // The product of the squared lengths is just below, and above, 1.1920929e-07.
    QTest::newRow("as good as none") << QVector<float>{0, 3.45e-4F, 0} << 0.0F;
    QTest::newRow("hardly any") << QVector<float>{0, 3.46e-4F, 0} << kPi / 2;
}

void tst_LeapFrame::anglesAreThoseOfTheLibrary()
{
    QFETCH(const QVector<float>, vector);
    QFETCH(const float, angle);
    const float found = Vector(vector[0], vector[1], vector[2]).angleTo(Vector::xAxis());
    QVERIFY2(std::abs(found - angle) < 1e-5F, qPrintable(QString::number(double(found))));
}

QTEST_GUILESS_MAIN(tst_LeapFrame)

#include "tst_LeapFrame.moc"
