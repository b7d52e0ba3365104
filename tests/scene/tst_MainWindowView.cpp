#include "SceneFixture.h"

#include <QElapsedTimer>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

namespace {
constexpr float kRadPerPixel = 0.005F;
constexpr QPoint kPress(400, 200);
} // namespace

/// How the pointer, the wheel and fingers steer the view of a picture.
class tst_MainWindowView : public SceneFixture
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void draggingTurnsTheView_data();
    void draggingTurnsTheView();
    void thePictureFollowsTheFinger();
    void upToThreePixelsAreNoDrag();
    void aClickAfterADragOpensTheBarOnlyOnceThePointerHasLeft();
    void aClickOpensTheBarAndAnotherClosesIt();
    void theWheelZooms_data();
    void theWheelZooms();
    void fingersZoomAtEverySecondUpdate();
    void zoomingStopsAtTheLimitsOfTheProjection_data();
    void zoomingStopsAtTheLimitsOfTheProjection();
    void aProjectionThatCannotShowTheFieldOfViewStartsAtNinety_data();
    void aProjectionThatCannotShowTheFieldOfViewStartsAtNinety();
    void aDoubleClickFillsTheScreenHalfASecondLaterAndAnotherEndsIt();
};

void tst_MainWindowView::initTestCase()
{
    SceneFixture::initTestCase();
    QVERIFY(dropFiles({media.octants()}));
}

void tst_MainWindowView::init()
{
    SceneFixture::init();
    QTRY_VERIFY(showsOctantsAhead());
}

void tst_MainWindowView::draggingTurnsTheView_data()
{
    QTest::addColumn<bool>("touchMode");
    QTest::addColumn<QPoint>("by");
    QTest::addColumn<float>("yaw");
    QTest::addColumn<float>("pitch");

    QTest::newRow("right, with the finger") << true << QPoint(40, 0) << -0.2F << 0.F;
    QTest::newRow("left, with the finger") << true << QPoint(-40, 0) << 0.2F << 0.F;
    QTest::newRow("down, with the finger") << true << QPoint(0, 30) << 0.F << -0.15F;
    QTest::newRow("up and right, with the finger") << true << QPoint(20, -60) << -0.1F << 0.3F;
    QTest::newRow("right, against the finger") << false << QPoint(40, 0) << 0.2F << 0.F;
    QTest::newRow("up and left, against the finger") << false << QPoint(-20, -60) << -0.1F << -0.3F;
}

void tst_MainWindowView::draggingTurnsTheView()
{
    QFETCH(bool, touchMode);
    QFETCH(QPoint, by);
    QFETCH(float, yaw);
    QFETCH(float, pitch);

    view()->setTouchMode(touchMode);
    drag(kPress, by);
    QCOMPARE(view()->yaw() + 1, yaw + 1);
    QCOMPARE(view()->pitch() + 1, pitch + 1);
}

void tst_MainWindowView::thePictureFollowsTheFinger()
{
    const QPoint aboveAndRight = middle() + QPoint(20, -100);
    const QPoint right = middle() + QPoint(100, 20);
    QVERIFY(shows(TestMedia::octant(2, 0), aboveAndRight));
    drag(kPress, {40, 0});
    QTRY_VERIFY(shows(TestMedia::octant(1, 0), aboveAndRight));

    QVERIFY(shows(TestMedia::octant(2, 1), right));
    drag(kPress, {0, 40});
    QTRY_VERIFY(shows(TestMedia::octant(2, 0), right));
}

void tst_MainWindowView::upToThreePixelsAreNoDrag()
{
    drag(kPress, {3, -3});
    QCOMPARE(view()->yaw(), 0.F);
    QCOMPARE(view()->pitch(), 0.F);
    drag(kPress, {0, 4});
    QCOMPARE(view()->pitch(), -4 * kRadPerPixel);
}

void tst_MainWindowView::aClickAfterADragOpensTheBarOnlyOnceThePointerHasLeft()
{
    const QPoint released = kPress + QPoint(40, 0);
    drag(kPress, {40, 0});
    hideControls();
    clickAt(released);
    QCOMPARE(state(), QStringLiteral("Video"));
    drag(released, {2, 0});
    QCOMPARE(view()->yaw(), -42 * kRadPerPixel);

    leaveWindow();
    hideControls();
    clickAt(released + QPoint(2, 0));
    QCOMPARE(state(), QStringLiteral("ControlsPanel"));
}

void tst_MainWindowView::aClickOpensTheBarAndAnotherClosesIt()
{
    moveTo(kPress);
    hideControls();
    QTest::mousePress(window(), Qt::LeftButton, Qt::NoModifier, kPress);
    QCOMPARE(state(), QStringLiteral("Video"));
    QTest::mouseRelease(window(), Qt::LeftButton, Qt::NoModifier, kPress);
    QCOMPARE(state(), QStringLiteral("ControlsPanel"));
    QVERIFY(!cursorHidden());
    QTRY_COMPARE(scene(QStringLiteral("orb_bar.y + orb_bar.height - root.height")).toReal(), 0.);
    keepPicture(QStringLiteral("bar"));

    clickAt(kPress);
    QCOMPARE(state(), QStringLiteral("Video"));
    QVERIFY(cursorHidden());
    QTRY_COMPARE(scene(QStringLiteral("orb_bar.y - root.height")).toReal(), 0.);
    QVERIFY(showsOctantsAhead());
}

void tst_MainWindowView::theWheelZooms_data()
{
    QTest::addColumn<QPoint>("pixelDelta");
    QTest::addColumn<QPoint>("angleDelta");
    QTest::addColumn<float>("fov");

    QTest::newRow("a notch away") << QPoint() << QPoint(0, 120) << 85.F;
    QTest::newRow("a notch towards") << QPoint() << QPoint(0, -120) << 95.F;
    QTest::newRow("a touch pad away") << QPoint(0, 7) << QPoint() << 88.F;
    QTest::newRow("a touch pad towards") << QPoint(0, -1) << QPoint() << 92.F;
    QTest::newRow("pixels win over the angle") << QPoint(0, -9) << QPoint(0, 120) << 92.F;
    QTest::newRow("sideways") << QPoint() << QPoint(120, 0) << 90.F;
    QTest::newRow("pixels sideways leave the angle") << QPoint(9, 0) << QPoint(0, 120) << 85.F;
}

void tst_MainWindowView::theWheelZooms()
{
    QFETCH(QPoint, pixelDelta);
    QFETCH(QPoint, angleDelta);
    turnWheel(pixelDelta, angleDelta);
    QTEST(view()->fov(), "fov");
}

void tst_MainWindowView::fingersZoomAtEverySecondUpdate()
{
    constexpr int kMoves = 12;
    constexpr float kStepDeg = 3;
    QQuickItem *area = item(
        [](QQuickItem *candidate) { return candidate->inherits("QQuickPinchArea"); });
    QVERIFY(area);
    QSignalSpy started(area, SIGNAL(pinchStarted(QQuickPinchEvent *)));
    QSignalSpy updated(area, SIGNAL(pinchUpdated(QQuickPinchEvent *)));
    QSignalSpy finished(area, SIGNAL(pinchFinished(QQuickPinchEvent *)));
    QTouchDevice *screen = QTest::createTouchDevice();

    const auto put = [&](Qt::TouchPointState state, int distance) {
        QTest::QTouchEventSequence touch = QTest::touchEvent(window(), screen, false);
        for (int finger : {0, 1}) {
            const QPoint point = middle() + QPoint(finger == 0 ? -distance : distance, 0);
            if (state == Qt::TouchPointPressed)
                touch.press(finger, point, window());
            else if (state == Qt::TouchPointMoved)
                touch.move(finger, point, window());
            else
                touch.release(finger, point, window());
        }
        touch.commit();
    };
    // The scene takes moves once a frame.
    const auto pinch = [&](int from, int step) {
        put(Qt::TouchPointPressed, from);
        for (int i = 1; i <= kMoves; ++i) {
            const int before = started.count() + updated.count();
            put(Qt::TouchPointMoved, from + i * step);
            QVERIFY(QTest::qWaitFor([&] { return started.count() + updated.count() > before; }));
        }
        put(Qt::TouchPointReleased, from + kMoves * step);
    };

    pinch(60, 15);
    QCOMPARE(started.count(), 1);
    QTRY_COMPARE(finished.count(), 1);
    const int apart = updated.count();
    QVERIFY(apart > 4);
    const int zoomsIn = apart / 2;
    QCOMPARE(view()->fov(), 90 - kStepDeg * static_cast<float>(zoomsIn));
    QCOMPARE(view()->yaw(), 0.F);

    view()->setFov(90);
    pinch(300, -15);
    QCOMPARE(started.count(), 2);
    QTRY_COMPARE(finished.count(), 2);
    const int together = updated.count() - apart;
    QVERIFY(together > 4);
    const int zoomsOut = together / 2;
    QCOMPARE(view()->fov(), 90 + kStepDeg * static_cast<float>(zoomsOut));
    QCOMPARE(view()->yaw(), 0.F);
}

void tst_MainWindowView::zoomingStopsAtTheLimitsOfTheProjection_data()
{
    QTest::addColumn<int>("projection");
    QTest::addColumn<float>("largest");

    QTest::newRow("rectilinear") << int(OrbShaderCodeBuilder::RECTILINEAR) << 130.F;
    QTest::newRow("little planet") << int(OrbShaderCodeBuilder::LITTLE_PLANET) << 360.F;
    QTest::newRow("fisheye") << int(OrbShaderCodeBuilder::FISHEYE) << 360.F;
    QTest::newRow("mirror ball") << int(OrbShaderCodeBuilder::MIRROR_BALL) << 180.F;
    QTest::newRow("source") << int(OrbShaderCodeBuilder::NO_PROJECTION) << 180.F;
}

void tst_MainWindowView::zoomingStopsAtTheLimitsOfTheProjection()
{
    QFETCH(int, projection);
    QFETCH(float, largest);
    constexpr int kMoreThanEnough = 75;

    picture()->setProjection(projection);
    for (int i = 0; i < kMoreThanEnough; ++i)
        turnWheel({}, {0, -120});
    QCOMPARE(view()->fov(), largest);
    for (int i = 0; i < kMoreThanEnough; ++i)
        turnWheel({}, {0, 120});
    QCOMPARE(view()->fov(), 10.F);
}

void tst_MainWindowView::aProjectionThatCannotShowTheFieldOfViewStartsAtNinety_data()
{
    QTest::addColumn<float>("fov");
    QTest::addColumn<int>("projection");
    QTest::addColumn<float>("expected");

    QTest::newRow("200 to rectilinear") << 200.F << int(OrbShaderCodeBuilder::RECTILINEAR) << 90.F;
    QTest::newRow("200 to the source") << 200.F << int(OrbShaderCodeBuilder::NO_PROJECTION) << 90.F;
    QTest::newRow("200 to little planet")
        << 200.F << int(OrbShaderCodeBuilder::LITTLE_PLANET) << 200.F;
    QTest::newRow("180 to mirror ball") << 180.F << int(OrbShaderCodeBuilder::MIRROR_BALL) << 180.F;
    QTest::newRow("131 to rectilinear") << 131.F << int(OrbShaderCodeBuilder::RECTILINEAR) << 90.F;
    QTest::newRow("130 to rectilinear") << 130.F << int(OrbShaderCodeBuilder::RECTILINEAR) << 130.F;
}

void tst_MainWindowView::aProjectionThatCannotShowTheFieldOfViewStartsAtNinety()
{
    QFETCH(float, fov);
    QFETCH(int, projection);
    picture()->setProjection(OrbShaderCodeBuilder::FISHEYE);
    view()->setFov(fov);
    picture()->setProjection(projection);
    QTEST(view()->fov(), "expected");
}

void tst_MainWindowView::aDoubleClickFillsTheScreenHalfASecondLaterAndAnotherEndsIt()
{
    const QSize windowed = window()->size();
    QElapsedTimer clock;
    clock.start();
    QTest::mouseDClick(window(), Qt::LeftButton, Qt::NoModifier, kPress);
    QVERIFY(!window()->fullScreen());
    QTRY_VERIFY(window()->fullScreen());
    QVERIFY2(clock.elapsed() >= 500 - kTimerSlackMs, qPrintable(QString::number(clock.elapsed())));
    QTRY_COMPARE(window()->size(), window()->screen()->size());
    QTRY_VERIFY(showsOctantsAhead());

    QTest::mouseDClick(window(), Qt::LeftButton, Qt::NoModifier, kPress);
    QTRY_VERIFY(!window()->fullScreen());
    QTRY_COMPARE(window()->size(), windowed);
}

int main(int argc, char **argv)
{
    return tst_MainWindowView().run(argc, argv);
}

#include "tst_MainWindowView.moc"
