#include "HandDispatch.h"
#include "HandTutorial.h"
#include "OrbShaderCodeBuilder.h"

#include <QTest>

#include <optional>

namespace {

/// A view on which one gesture acts.
class Stage : public HandTutorial::Stage
{
public:
    bool attempt(HandGesture gesture) override
    {
        if (gesture == HandGesture::TwoFingerZoom && acting == gesture)
            m_fov -= 7;
        return acting == gesture;
    }
    void showProjection(int projection) override { shown = projection; }
    void stopGliding() override { isStopped = true; }
    void recordView(int times) override { recorded += times; }
    void lookFromAbove() override { pitchNow = 1.57F; }
    void forgetOneHandOpen() override { forgotten += 1; }
    void forgetTwoHandsOpen() override { forgotten += 2; }
    float pitch() const override { return pitchNow; }
    float fov() const override { return m_fov; }
    int projection() const override { return shown; }

    std::optional<HandGesture> acting;
    int shown = OrbShaderCodeBuilder::RECTILINEAR;
    float pitchNow = 0;
    bool isStopped = false;
    int recorded = 0;
    int forgotten = 0;

private:
    float m_fov = 130;
};

using Frame = HandTutorial::Frame;

Frame frameAt(double seconds, int mode)
{
    Frame frame;
    frame.time = qint64(seconds * 1e6);
    frame.cameraMode = mode;
    return frame;
}

Frame moving(int mode)
{
    Frame frame = frameAt(1, mode);
    frame.yawMotion = 0.75;
    frame.pitchMotion = 0.25;
    return frame;
}

} // namespace

/// The lessons in their order, each with the least that ends it.
class tst_HandTutorial : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void beginsByMode_data();
    void beginsByMode();
    void movingEndsAfterTenRadians_data();
    void movingEndsAfterTenRadians();
    void seekingEndsTwoSecondsLater_data();
    void seekingEndsTwoSecondsLater();
    void pinchingEndsWithTheFlatPicture_data();
    void pinchingEndsWithTheFlatPicture();
    void zoomingEndsAfterSixtyDegrees();
    void clappingTwiceEnds_data();
    void clappingTwiceEnds();
    void holdingEndsFromAbove();
    void turningEndsAfterThreeRadians();
    void swipingEnds();
    void aFistHeldEndsAll();

private:
    void run(const Frame &frame) { m_tutorial.run(frame, m_stage); }
    int lesson() const { return m_tutorial.lesson(); }

    HandTutorial m_tutorial;
    Stage m_stage;
};

void tst_HandTutorial::init()
{
    m_tutorial = HandTutorial();
    m_stage = Stage();
}

void tst_HandTutorial::beginsByMode_data()
{
    QTest::addColumn<int>("first");
    const int firsts[] = {HandTutorial::None, HandTutorial::Finger, HandTutorial::Clap,
                          HandTutorial::Move, HandTutorial::None};
    for (int mode = 0; mode < 5; ++mode)
        QTest::addRow("%d", mode) << firsts[mode];
}

void tst_HandTutorial::beginsByMode()
{
    QTEST(HandTutorial::firstLesson(QByteArray(QTest::currentDataTag()).toInt()), "first");
}

void tst_HandTutorial::movingEndsAfterTenRadians_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("gesture");
    QTest::newRow("hand") << int(HandTutorial::Move) << int(HandGesture::OpenHand);
    QTest::newRow("finger") << int(HandTutorial::Finger) << int(HandGesture::EdgePush);
}

void tst_HandTutorial::movingEndsAfterTenRadians()
{
    QFETCH(int, first);
    QFETCH(int, gesture);
    m_tutorial.setLesson(first);
    run(moving(CameraMode::kHands)); // by nobody's hand
    m_stage.acting = HandGesture(gesture);
    for (int i = 0; i < 10; ++i) {
        run(moving(CameraMode::kHands));
        QCOMPARE(lesson(), first);
    }
    QVERIFY(!m_stage.isStopped);
    run(moving(CameraMode::kHands));
    QCOMPARE(lesson(), int(HandTutorial::Seek));
    QVERIFY(m_stage.isStopped);
}

void tst_HandTutorial::seekingEndsTwoSecondsLater_data()
{
    QTest::addColumn<int>("next");
    QTest::newRow("1") << int(HandTutorial::Zoom);
    QTest::newRow("2") << int(HandTutorial::Swipe);
    QTest::newRow("3") << int(HandTutorial::Pinch);
}

void tst_HandTutorial::seekingEndsTwoSecondsLater()
{
    const int mode = QByteArray(QTest::currentDataTag()).toInt();
    m_tutorial.setLesson(HandTutorial::Seek);
    m_stage.shown = OrbShaderCodeBuilder::FISHEYE;
    run(frameAt(9, mode));
    m_stage.acting = HandGesture::CircleSeek;
    run(frameAt(10, mode));
    run(frameAt(11, mode)); // a further one changes nothing
    m_stage.acting.reset();
    run(frameAt(12, mode));
    QCOMPARE(lesson(), int(HandTutorial::Seek));
    run(frameAt(12.01, mode));
    QTEST(lesson(), "next");
    QCOMPARE(m_stage.shown, int(OrbShaderCodeBuilder::RECTILINEAR));
}

void tst_HandTutorial::pinchingEndsWithTheFlatPicture_data()
{
    QTest::addColumn<double>("held"); // seconds
    QTest::addColumn<float>("pitch");
    QTest::addColumn<bool>("ends");
    QTest::newRow("short") << 1.5 << 1.2F << false;
    QTest::newRow("long") << 1.6 << 0.5F << true;
    QTest::newRow("far") << 0.5 << 1.21F << true;
}

void tst_HandTutorial::pinchingEndsWithTheFlatPicture()
{
    QFETCH(double, held);
    QFETCH(float, pitch);
    QFETCH(bool, ends);
    m_tutorial.setLesson(HandTutorial::Pinch);
    m_stage.shown = OrbShaderCodeBuilder::LITTLE_PLANET;
    m_stage.acting = HandGesture::Pull;
    run(frameAt(10, CameraMode::kHands));
    m_stage.pitchNow = pitch;
    run(frameAt(10 + held, CameraMode::kHands));
    QCOMPARE(lesson(), int(HandTutorial::Pinch));
    m_stage.acting.reset();
    m_stage.shown = OrbShaderCodeBuilder::RECTILINEAR;
    run(frameAt(10 + held + 0.01, CameraMode::kHands));
    QCOMPARE(lesson(), int(ends ? HandTutorial::Zoom : HandTutorial::Pinch));
}

void tst_HandTutorial::zoomingEndsAfterSixtyDegrees()
{
    m_tutorial.setLesson(HandTutorial::Zoom);
    m_stage.acting = HandGesture::TwoFingerZoom;
    for (int i = 0; i < 8; ++i) // 56 degrees
        run(frameAt(i, CameraMode::kHands));
    QCOMPARE(lesson(), int(HandTutorial::Zoom));
    run(frameAt(9, CameraMode::kHands));
    QCOMPARE(lesson(), int(HandTutorial::Clap));
}

void tst_HandTutorial::clappingTwiceEnds_data()
{
    QTest::addColumn<int>("next");
    QTest::newRow("1") << int(HandTutorial::Fist);
    QTest::newRow("2") << int(HandTutorial::Seek);
    QTest::newRow("3") << int(HandTutorial::Hold);
}

void tst_HandTutorial::clappingTwiceEnds()
{
    const int mode = QByteArray(QTest::currentDataTag()).toInt();
    m_tutorial.setLesson(HandTutorial::Clap);
    run(frameAt(1, mode));
    QCOMPARE(m_stage.recorded, 100);
    m_stage.acting = HandGesture::Clap;
    run(frameAt(2, mode));
    QCOMPARE(lesson(), int(HandTutorial::Clap));
    run(frameAt(3, mode));
    QTEST(lesson(), "next");
    QCOMPARE(m_stage.recorded, 100);
}

void tst_HandTutorial::holdingEndsFromAbove()
{
    m_tutorial.setLesson(HandTutorial::Hold);
    for (const float pitch : {1.29F, 2.01F, 1.31F}) {
        QCOMPARE(lesson(), int(HandTutorial::Hold));
        m_stage.pitchNow = pitch;
        run(frameAt(1, CameraMode::kHands));
    }
    QCOMPARE(lesson(), int(HandTutorial::Turn));
    QCOMPARE(m_stage.forgotten, 3); // the open hand alone, at each frame
}

void tst_HandTutorial::turningEndsAfterThreeRadians()
{
    m_tutorial.setLesson(HandTutorial::Turn);
    m_stage.acting = HandGesture::TwoFingerRotation;
    for (int i = 0; i < 3; ++i) {
        run(moving(CameraMode::kHands)); // by 0.75, from 0.1
        QCOMPARE(lesson(), int(HandTutorial::Turn));
    }
    QCOMPARE(m_stage.recorded, 2);
    QCOMPARE(m_stage.pitchNow, 1.57F);
    run(moving(CameraMode::kHands));
    QCOMPARE(lesson(), int(HandTutorial::Fist));
    QCOMPARE(m_stage.forgotten, 8); // both open hands, at each frame
    QVERIFY(m_stage.isStopped);
}

void tst_HandTutorial::swipingEnds()
{
    m_tutorial.setLesson(HandTutorial::Swipe);
    run(frameAt(1, CameraMode::kHeadset));
    QCOMPARE(lesson(), int(HandTutorial::Swipe));
    m_stage.acting = HandGesture::NextSwipe;
    run(frameAt(2, CameraMode::kHeadset));
    QCOMPARE(lesson(), int(HandTutorial::Fist));
}

void tst_HandTutorial::aFistHeldEndsAll()
{
    m_tutorial.setLesson(HandTutorial::Fist);
    const auto see = [this](double seconds, bool hasFist) {
        Frame frame = frameAt(seconds, CameraMode::kHands);
        frame.hasFist = hasFist;
        run(frame);
        return lesson() == HandTutorial::None;
    };
    QVERIFY(!see(10, true));
    QVERIFY(!see(11.5, true));
    QVERIFY(!see(11.6, false)); // opened too early
    QVERIFY(!see(12, true));
    QVERIFY(!see(13, false)); // for a moment, which does not matter
    QVERIFY(see(13.6, true));
}

QTEST_APPLESS_MAIN(tst_HandTutorial)

#include "tst_HandTutorial.moc"
