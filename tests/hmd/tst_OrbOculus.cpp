#include "HeadsetStage.h"
#include "RecordingRuntime.h"
#include "WarningsFail.h"

#include <QtTest>

/// The headset as the scene sees it.
class tst_OrbOculus : public WarningsFail
{
    Q_OBJECT

private:
    RecordingRuntime &m_runtime = RecordingRuntime::instance();

private slots:
    void init();
    void withoutAHeadsetTheLogSaysSo_data();
    void withoutAHeadsetTheLogSaysSo();
    void aHeadsetIsTakenIntoUse_data();
    void aHeadsetIsTakenIntoUse();
    void turnedOffItLevelsTheHorizonAlone();
    void theViewersOwnTurnIsWrapped();
    void theMatricesLeadFromThePictureToTheWorld();
    void aHeadsetThatGoesIsNotInUse();
};

void tst_OrbOculus::init()
{
    WarningsFail::init();
    m_runtime.clear();
    m_runtime.headset = RecordingRuntime::dk2();
    m_runtime.present = true;
    m_runtime.error.clear();
    m_runtime.pose = {};
}

void tst_OrbOculus::withoutAHeadsetTheLogSaysSo_data()
{
    QTest::addColumn<QByteArray>("error");
    QTest::addColumn<QString>("line");
    QTest::newRow("none there") << QByteArray() << QString();
    QTest::newRow("one that cannot be opened")
        << QByteArray("No rights for %1.") << QStringLiteral("No rights for %1.\n");
}

void tst_OrbOculus::withoutAHeadsetTheLogSaysSo()
{
    QFETCH(QByteArray, error);
    QFETCH(QString, line);
    m_runtime.present = false;
    m_runtime.error = error;
    if (!error.isEmpty())
        expectWarning(QStringLiteral("^No rights for %1.$"));
    HeadsetStage stage({}, false);
    QCOMPARE(stage.oculus.logMessage(), QStringLiteral("Scan in progress...\n"));
    QVERIFY(stage.start());
    QCOMPARE(stage.oculus.logMessage(),
             QStringLiteral("Oculus Rift not detected.\n") + line
                 + QStringLiteral("Oculus Rift initialization failed.\n"
                                  "Ensure to have installed Oculus Runtime 0.4.4.\n"));
    QVERIFY(!stage.oculus.available());
    stage.oculus.setActivated(true);
    QVERIFY(!stage.oculus.activated());
    QVERIFY(!stage.headsetWindow());
}

void tst_OrbOculus::aHeadsetIsTakenIntoUse_data()
{
    QTest::addColumn<bool>("dk1");
    QTest::addColumn<QString>("named");
    QTest::addColumn<float>("fov");
    QTest::addColumn<qreal>("lens"); // of the left eye, in widths of the panel
    QTest::addColumn<QPointF>("scale");
    QTest::addColumn<QPointF>("scaleIn");
    QTest::addColumn<QVector4D>("warp");
    QTest::addColumn<double>("scaleCorrector");

    // Degrees of the four half angles, from the tangents by another tool.
    QTest::newRow("DK1") << true << QStringLiteral("Test DK1 \nRift resolution : 320 * 200 \n")
                         << 88.2986984F << 0.287994 << QPointF(0.194408, 0.311053)
                         << QPointF(4, 2.5) << QVector4D(1, 0.22F, 0.24F, 0)
                         << (48.78109 + 48.78109) / (37.75457 + 46.44920);
    QTest::newRow("DK2") << false << QStringLiteral("Test DK2 \nRift resolution : 480 * 270 \n")
                         << 91.0F << 0.250994 << QPointF() << QPointF() << QVector4D()
                         << (53.04649 + 53.04649) / (47.52769 + 46.63209);
}

void tst_OrbOculus::aHeadsetIsTakenIntoUse()
{
    QFETCH(bool, dk1);
    QFETCH(QString, named);
    QFETCH(float, fov);
    QFETCH(qreal, lens);
    QFETCH(QPointF, scale);
    QFETCH(QPointF, scaleIn);
    QFETCH(QVector4D, warp);
    QFETCH(double, scaleCorrector);
    if (dk1)
        m_runtime.headset = RecordingRuntime::dk1();
    HeadsetStage stage;
    OrbOculus &oculus = stage.oculus;
    QCOMPARE(oculus.getFov(), 0.0F);
    QCOMPARE(oculus.scaleCorrector(), 1.2F);
    QVERIFY(stage.start());
    QCOMPARE(oculus.logMessage(),
             QStringLiteral("Oculus Rift detected.\nProduct name : ") + named
                 + QStringLiteral("Oculus Rift initialization succeeded.\n"
                                  "Built with Oculus SDK 0.4.4.\n"));
    QVERIFY(oculus.available());
    QVERIFY(oculus.activated());
    QVERIFY(stage.builder.oculusMode());
    QVERIFY(!m_runtime.nextFrame().isEmpty());

    QCOMPARE(oculus.getFov(), fov);
    QCOMPARE(stage.state.fov(), fov);
    QCOMPARE(oculus.lensCenterLeft(), QPointF(lens, 0.5));
    QCOMPARE(oculus.lensCenterRight(), QPointF(1 - lens, 0.5));
    QCOMPARE(oculus.screenCenterLeft(), QPointF(0.25, 0.5));
    QCOMPARE(oculus.screenCenterRight(), QPointF(0.75, 0.5));
    QCOMPARE(oculus.scale(), scale);
    QCOMPARE(oculus.scaleIn(), scaleIn);
    QCOMPARE(oculus.hmdWarpParam(), warp);
    QVERIFY(std::abs(double(oculus.scaleCorrector()) - scaleCorrector) < 1e-5);
    QTRY_VERIFY(oculus.fps() > 0);

    // A second wish opens no second window, nor does a window stand for long after its end.
    GLWindow *window = stage.headsetWindow();
    QVERIFY(window);
    oculus.setActivated(true);
    QCOMPARE(stage.headsetWindow(), window);
}

void tst_OrbOculus::turnedOffItLevelsTheHorizonAlone()
{
    HeadsetStage stage;
    m_runtime.pose.Orientation = {0.2F, -0.3F, 0.1F, 0.9273618F};
    QVERIFY(stage.start());
    QTRY_VERIFY(stage.state.roll() != 0);
    const float yaw = stage.state.yaw();
    const float pitch = stage.state.pitch();
    QVERIFY(yaw != 0 && pitch != 0);

    stage.oculus.setActivated(false);
    QCOMPARE(stage.headsetWindow(), nullptr);
    QCOMPARE(stage.state.roll(), 0.0F);
    QCOMPARE(stage.state.yaw(), yaw);
    QCOMPARE(stage.state.pitch(), pitch);
    QCOMPARE(stage.state.rotationMatrix()(1, 0), 0.0F);

    // Turned on again it is configured anew.
    m_runtime.calls.clear();
    stage.oculus.setActivated(true);
    QVERIFY(!m_runtime.nextFrame().isEmpty());
    QTRY_VERIFY(stage.state.roll() != 0);

    // As when the viewer closes its window.
    stage.headsetWindow()->close();
    QVERIFY(!stage.oculus.activated());
    QVERIFY(!stage.builder.oculusMode());
    QCOMPARE(stage.state.roll(), 0.0F);
}

void tst_OrbOculus::theViewersOwnTurnIsWrapped()
{
    HeadsetStage stage;
    QSignalSpy changed(&stage.oculus, &OrbOculus::shiftYawChanged);
    stage.oculus.setShiftYaw(3.5F);
    QCOMPARE(stage.oculus.shiftYaw(), -2.783185482025146F);
    QCOMPARE(changed.count(), 1);
    stage.oculus.setShiftYaw(std::numeric_limits<float>::quiet_NaN());
    QCOMPARE(stage.oculus.shiftYaw(), -2.783185482025146F);
}

void tst_OrbOculus::theMatricesLeadFromThePictureToTheWorld()
{
    HeadsetStage stage;
    QVERIFY(stage.start());
    QVERIFY(!m_runtime.nextFrame().isEmpty());
    // An inverse undoes the projection: the corners of an eye's view are those of its tangents.
    const ovrFovPort &fov = m_runtime.headset.DefaultEyeFov[ovrEye_Right];
    stage.oculus.setActivated(false);
    stage.state.setYaw(0);
    stage.state.setPitch(0);
    const QMatrix4x4 right = stage.oculus.getRotationMatrixRight();
    const QVector3D upperLeft = (right * QVector4D(-1, 1, -1, 1)).toVector3D();
    QVERIFY(qFuzzyCompare(upperLeft, QVector3D(-fov.LeftTan, fov.UpTan, -1)));
    const QVector3D lowerRight = (right * QVector4D(1, -1, -1, 1)).toVector3D();
    QVERIFY(qFuzzyCompare(lowerRight, QVector3D(fov.RightTan, -fov.DownTan, -1)));
}

void tst_OrbOculus::aHeadsetThatGoesIsNotInUse()
{
    HeadsetStage stage;
    QVERIFY(stage.start());
    stage.oculus.setAvailable(false);
    QVERIFY(!stage.oculus.activated());
    QVERIFY(!stage.builder.oculusMode());
    QVERIFY(!stage.headsetWindow());
}

QTEST_MAIN(tst_OrbOculus)
#include "tst_OrbOculus.moc"
