#include "TestHeadset.h"
#include "WarningsFail.h"

#include <QMatrix4x4>
#include <QtTest>

#include <chrono>
#include <limits>

class tst_Ovr : public WarningsFail
{
    Q_OBJECT

private slots:
    void cleanup();
    void aHandleLivesUntilItIsDestroyedOrTheRuntimeCloses();
    void anImpossibleHeadsetIsRefusedInWords_data();
    void anImpossibleHeadsetIsRefusedInWords();
    void posesArePredictedForTheFrame();
    void samplesReachTheCallerAsTheyAre();
    void eyesSeeTheirHalvesOfThePanel();
    void theProjectionFillsTheFieldOfView();
    void noFunctionMindsNull();
};

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr unsigned kOrientation = ovrTrackingCap_Orientation;

double clockNow()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace

void tst_Ovr::cleanup()
{
    ovr_Shutdown();
    WarningsFail::cleanup();
}

void tst_Ovr::aHandleLivesUntilItIsDestroyedOrTheRuntimeCloses()
{
    TestHeadset headset;
    const ovrHmd hmd = create(&headset);
    QVERIFY(hmd != nullptr && hmd->Resolution.w == 1921);
    QVERIFY(ovrHmd_DismissHSWDisplay(hmd));
    QVERIFY(!headset.showsNotice);
    ovrHmd_Destroy(hmd);
    QCOMPARE(headset.closed, 1);
    QVERIFY(create(&headset) != nullptr);
    ovr_Shutdown();
    QCOMPARE(headset.closed, 2);

    ovr_SetDevice([](std::string *error) {
        *error = "It is asleep.";
        return nullptr;
    });
    QVERIFY(ovrHmd_Create(0) == nullptr);
    QCOMPARE(QByteArray(ovrHmd_GetLastError()), QByteArray("It is asleep."));
    QVERIFY(ovrHmd_Create(1) == nullptr);
    QVERIFY(ovrHmd_GetLastError() == nullptr);
}

void tst_Ovr::anImpossibleHeadsetIsRefusedInWords_data()
{
    QTest::addColumn<QSize>("panel");
    QTest::addColumn<float>("tan");
    QTest::addColumn<double>("warpScale");
    QTest::addColumn<QByteArray>("about");
    const QSize good(1920, 1080);
    QTest::newRow("no panel") << QSize(0, 0) << 1.0F << 1.0 << QByteArray("panel, 0 by 0 pixels.");
    QTest::newRow("too narrow") << QSize(1, 1080) << 1.0F << 1.0 << QByteArray("panel");
    QTest::newRow("too high") << QSize(1920, 16385) << 1.0F << 1.0 << QByteArray("panel");
    QTest::newRow("blind") << good << 0.01F << 1.0 << QByteArray("field of view");
    QTest::newRow("all around") << good << 100.0F << 1.0 << QByteArray("field of view");
    QTest::newRow("view of NaN") << good << kNan << 1.0 << QByteArray("field of view");
    QTest::newRow("lens of NaN") << good << 1.0F << double(kNan) << QByteArray("lenses");
    QTest::newRow("smallest") << QSize(2, 1) << 0.011F << 1.0 << QByteArray();
    QTest::newRow("largest") << QSize(16384, 16384) << 99.0F << 1.0 << QByteArray();
}

void tst_Ovr::anImpossibleHeadsetIsRefusedInWords()
{
    QFETCH(QSize, panel);
    QFETCH(float, tan);
    QFETCH(double, warpScale);
    QFETCH(QByteArray, about);
    TestHeadset headset;
    headset.desc.Resolution = {panel.width(), panel.height()};
    headset.desc.DefaultEyeFov[ovrEye_Right].DownTan = tan;
    headset.lens.warpScale = warpScale;
    QCOMPARE(create(&headset) != nullptr, about.isEmpty());
    QCOMPARE(ovrHmd_GetLastError() == nullptr, about.isEmpty());
    QVERIFY(QByteArray(ovrHmd_GetLastError()).contains(about));
}

void tst_Ovr::posesArePredictedForTheFrame()
{
    for (const auto &[type, period] :
         {std::pair(ovrHmd_DK1, 1 / 60.), std::pair(ovrHmd_DK2, 1 / 75.)}) {
        TestHeadset headset(type);
        const ovrHmd hmd = create(&headset);
        QVERIFY(
            !ovrHmd_ConfigureTracking(hmd, kOrientation, kOrientation | ovrTrackingCap_Position));
        QCOMPARE(ovrHmd_GetHmdPosePerEye(hmd, ovrEye_Left).Orientation.w, 1.0F);
        QVERIFY(headset.aheadSeconds.empty()); // it does not track yet
        QVERIFY(ovrHmd_ConfigureTracking(hmd, kOrientation, kOrientation));

        const double before = clockNow();
        const ovrFrameTiming first = ovrHmd_BeginFrame(hmd, 0);
        QCOMPARE(ovrHmd_GetHmdPosePerEye(hmd, ovrEye_Right).Orientation.y, 0.6F);
        const double after = clockNow();
        const double midpoint = first.ScanoutMidpointSeconds;
        QVERIFY(before <= first.ThisFrameSeconds && first.ThisFrameSeconds <= after);
        QVERIFY(std::abs(midpoint - first.ThisFrameSeconds - 1.5 * period) < 1e-6);
        QVERIFY(headset.aheadSeconds[0] <= midpoint - before);
        QVERIFY(headset.aheadSeconds[0] >= std::max(0.0, midpoint - after));
        const ovrFrameTiming second = ovrHmd_BeginFrameTiming(hmd, 1);
        QVERIFY(std::abs(double(second.DeltaSeconds)
                         - (second.ThisFrameSeconds - first.ThisFrameSeconds))
                < 1e-6);

        headset.aheadSeconds.clear();
        for (const double seconds : {after + 5, 0.0, before - 5, double(kNan)})
            ovrHmd_GetTrackingState(hmd, seconds);
        QCOMPARE(headset.aheadSeconds, std::vector<double>({0.1, 0, 0, 0})); // at most a tenth
    }
}

void tst_Ovr::samplesReachTheCallerAsTheyAre()
{
    TestHeadset headset;
    const ovrHmd hmd = create(&headset);
    QVERIFY(ovrHmd_ConfigureTracking(hmd, kOrientation, kOrientation));
    headset.sample = {{0, 0, -300, kNan}, {0, 7, 0}};
    const ovrPosef pose = ovrHmd_GetHmdPosePerEye(hmd, ovrEye_Left);
    QCOMPARE(pose.Orientation.z, -300.0F);
    QVERIFY(std::isnan(pose.Orientation.w));
    QCOMPARE(pose.Position.y, 7.0F);
}

void tst_Ovr::eyesSeeTheirHalvesOfThePanel()
{
    TestHeadset headset; // 1921 × 1080
    const ovrHmd hmd = create(&headset);
    const ovrEyeRenderDesc left = ovrHmd_GetRenderDesc(hmd, ovrEye_Left, {1.5F, 0.5F, 1, 0.6F});
    const ovrEyeRenderDesc right = ovrHmd_GetRenderDesc(hmd, ovrEye_Right, left.Fov);
    QCOMPARE(left.DistortedViewport.Pos.x, 0);
    QCOMPARE(right.DistortedViewport.Pos.x, 961);
    QCOMPARE(right.DistortedViewport.Size.w, 960);
    QCOMPARE(left.PixelsPerTanAngleAtCenter.x, 600.0F);
    QCOMPARE(left.PixelsPerTanAngleAtCenter.y, 540.0F);
    QCOMPARE(left.HmdToEyeViewOffset.x, 0.032F);
    QCOMPARE(right.HmdToEyeViewOffset.x, -0.032F);
}

void tst_Ovr::theProjectionFillsTheFieldOfView()
{
    for (const float forward : {-1.0F, 1.0F}) {
        const ovrMatrix4f rows = ovrMatrix4f_Projection({1.5F, 0.5F, 1, 0.6F}, 0.25F, 50,
                                                        forward < 0);
        const QMatrix4x4 matrix(&rows.M[0][0]);
        const QVector3D nearest = matrix.map(QVector3D(0.6F, 1.5F, forward) * 0.25F);
        const QVector3D farthest = matrix.map(QVector3D(-1, -0.5F, forward) * 50);
        QVERIFY((nearest - QVector3D(1, 1, -1)).length() < 1e-4F);
        QVERIFY((farthest - QVector3D(-1, -1, 1)).length() < 1e-4F);
    }
}

void tst_Ovr::noFunctionMindsNull()
{
    TestHeadset headset;
    const ovrFovPort *fov = headset.desc.DefaultEyeFov;
    ovrEyeRenderDesc descs[2];
    ovrGLConfig configuration;
    configuration.API = ovrRenderAPI_OpenGL;
    configuration.RTSize = {1920, 1080};
    ovrHSWDisplayState notice{1};
    ovrHmd_GetHSWDisplayState(nullptr, &notice);
    QVERIFY(!notice.Displayed);
    QVERIFY(!ovrHmd_AttachToWindow(nullptr, 1, nullptr, nullptr));
    QVERIFY(!ovrHmd_ConfigureTracking(nullptr, kOrientation, 0));
    QVERIFY(!ovrHmd_ConfigureRendering(nullptr, &configuration, 0, fov, descs));
    QVERIFY(!ovrHmd_DismissHSWDisplay(nullptr));
    QCOMPARE(ovrHmd_GetRenderDesc(nullptr, ovrEye_Right, *fov).DistortedViewport.Size.w, 0);
    QCOMPARE(ovrHmd_BeginFrame(nullptr, 0).ThisFrameSeconds, 0.0);
    QCOMPARE(ovrHmd_GetHmdPosePerEye(nullptr, ovrEye_Left).Orientation.w, 1.0F);
    QCOMPARE(ovrHmd_GetTrackingState(nullptr, 1).HeadPose.TimeInSeconds, 0.0);
    ovrHmd_SetEnabledCaps(nullptr, ovrHmdCap_NoVSync);
    ovrHmd_EndFrame(nullptr, nullptr, nullptr);
    ovrHmd_EndFrameTiming(nullptr);
    ovrHmd_Destroy(nullptr);

    const ovrHmd hmd = create(&headset);
    QVERIFY(!ovrHmd_AttachToWindow(hmd, 0, nullptr, nullptr));
    QVERIFY(!ovrHmd_ConfigureRendering(hmd, nullptr, 0, nullptr, nullptr));
    QVERIFY(!ovrHmd_ConfigureRendering(hmd, &configuration, 0, fov, descs)); // no context
    ovrHmd_GetHSWDisplayState(hmd, nullptr);
    ovrHmd_EndFrame(hmd, nullptr, nullptr);
}

QTEST_GUILESS_MAIN(tst_Ovr)
#include "tst_Ovr.moc"
