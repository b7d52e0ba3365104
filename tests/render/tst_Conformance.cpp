#include "Comparison.h"
#include "PanoramaStage.h"
#include "TestPanorama.h"
#include "WarningsFail.h"

#include <QtTest>

#include <memory>

using Builder = OrbShaderCodeBuilder;

Q_DECLARE_METATYPE(ViewSettings)

namespace {

constexpr double kWrongShareAllowed = 0.005;

constexpr float kPi = 3.1415927F;
constexpr float kHalfPi = 1.5707964F;

/// Sizes on the device. The sides are even, so that no pixel's centre lies exactly in the view's
/// axis or in the seam behind it, where rounding decides.
constexpr QSize kLandscape(200, 120);
constexpr QSize kPortrait(120, 200);
constexpr QSize kSquare(150, 150);

struct Camera
{
    float yaw;
    float pitch;
    float roll;
    float zoom; ///< 0 the smallest field of view that the player offers, 1 the largest
};

constexpr Camera kCameras[] = {
    {0, 0, 0, 0.4F},               // as at the start
    {0, 0, 0, 0},                  // closest
    {0.4F, -0.3F, 0.2F, 1},        // widest
    {kPi, 0, 0, 0.5F},             // at the seam
    {-kPi, 0.5F, 0.7F, 0.35F},     // at the seam, from the other side
    {3.0F, -0.2F, -0.1F, 0.05F},   // close beside the seam
    {0, kHalfPi, 0, 0.5F},         // straight down
    {1.0F, -kHalfPi, 0, 0.7F},     // straight up
    {-2.1F, 1.3F, 2.5F, 0.25F},    // almost down
    {0.8F, 2.6F, 0, 0.3F},         // over the pole, upside down
    {-1.2F, 0.7F, -kHalfPi, 0.6F}, // lying on the side
    {2.3F, -0.9F, kPi, 0.9F},      // on the head
};

constexpr float kSmallestFovDeg = 10;

float largestFovDeg(int projection)
{
    if (projection == Builder::RECTILINEAR)
        return 130;
    return projection == Builder::LITTLE_PLANET || projection == Builder::FISHEYE ? 360 : 180;
}

ViewSettings seenBy(const Camera &camera, int projection)
{
    ViewSettings settings;
    settings.projection = projection;
    settings.yaw = camera.yaw;
    settings.pitch = camera.pitch;
    settings.roll = camera.roll;
    settings.fovDeg = kSmallestFovDeg + camera.zoom * (largestFovDeg(projection) - kSmallestFovDeg);
    return settings;
}

void apply(const ViewSettings &settings, PanoramaStage &stage)
{
    stage.builder.setProjection(settings.projection);
    stage.builder.setEffect(settings.effect);
    stage.builder.setStereoMode(settings.stereoMode);
    stage.builder.setProjectionSource(settings.projectionSource);
    stage.builder.setRotationSource(settings.rotationSource);
    stage.builder.setInvertedColors(settings.exchangedColours);
    stage.state.setYaw(settings.yaw);
    stage.state.setPitch(settings.pitch);
    stage.state.setRoll(settings.roll);
    stage.state.setFov(settings.fovDeg);
    stage.state.setPitchCorrection(settings.pitchCorrection);
    stage.state.setRollCorrection(settings.rollCorrection);
    stage.state.setYawMin(settings.yawMin);
    stage.state.setYawMax(settings.yawMax);
    stage.state.setPitchMin(settings.pitchMin);
    stage.state.setPitchMax(settings.pitchMax);
}

QString describe(const ViewSettings &s)
{
    return QString::asprintf("projection %d, yaw %g, pitch %g, roll %g, fov %g", s.projection,
                             double(s.yaw), double(s.pitch), double(s.roll), double(s.fovDeg));
}

/// The views through which each further setting is looked at. Two are from close by, one where the
/// picture is of middling brightness and one where all pieces of the other effects meet: only there
/// do borders lie far enough apart to show a threshold that is a little off.
QList<ViewSettings> plainViews()
{
    return {seenBy({0.3F, 0.2F, 0.1F, 0.6F}, Builder::RECTILINEAR),
            seenBy({0.442F, 0.025F, 0, 0}, Builder::RECTILINEAR),
            seenBy({-2.356F, -0.27F, 0, 0}, Builder::RECTILINEAR),
            seenBy({-2.6F, -0.8F, 0.4F, 0.3F}, Builder::LITTLE_PLANET),
            seenBy({1.9F, 1.1F, -0.6F, 0.2F}, Builder::MIRROR_BALL),
            seenBy({2.8F, 0.5F, 0.2F, 0.35F}, Builder::FISHEYE),
            seenBy({}, Builder::NO_PROJECTION)};
}

} // namespace

class tst_Conformance : public WarningsFail
{
    Q_OBJECT

private slots:
    void thisRunIsTheOneThatWasAskedFor();
    void projectionsFollowTheirGeometry_data();
    void projectionsFollowTheirGeometry();
    void eachFurtherSettingFollowsItsFormula_data();
    void eachFurtherSettingFollowsItsFormula();

private:
    void compare(PanoramaStage &stage, const QSize &size, const ViewSettings &settings,
                 double leastComparedShare);

    const QImage m_panorama = testPanorama();
    double m_worstShare = 0;
    double m_largestError = 0;
};

void tst_Conformance::compare(PanoramaStage &stage, const QSize &size, const ViewSettings &settings,
                              double leastComparedShare)
{
    apply(settings, stage);
    const Comparison result(stage.picture(), ReferencePicture(m_panorama, settings, size));
    const QByteArray report = (describe(settings) + QStringLiteral(": ") + result.toString())
                                  .toLocal8Bit();
    m_worstShare = std::max(m_worstShare, result.wrongShare());
    m_largestError = std::max(m_largestError, result.maxError());
    // Most of what has a colour is compared, and that is a good piece of the picture.
    constexpr int kLeastComparedPixels = 1000;
    QVERIFY2(result.comparedPixels() >= kLeastComparedPixels, report.constData());
    QVERIFY2(result.comparedShare() >= leastComparedShare, report.constData());
    QVERIFY2(result.wrongShare() <= kWrongShareAllowed, report.constData());
}

void tst_Conformance::thisRunIsTheOneThatWasAskedFor()
{
    PanoramaStage stage(kLandscape);
    QVERIFY(stage.start());
    QCOMPARE(stage.rendersOnItsOwnThread(), PanoramaStage::wantsOwnThread());
    QCOMPARE(stage.rendersWithOpenGlEs(), PanoramaStage::wantsOpenGlEs());
    QCOMPARE(stage.window.effectiveDevicePixelRatio(), PanoramaStage::wantedScale());
    QCOMPARE(stage.picture().size(), kLandscape);
}

void tst_Conformance::projectionsFollowTheirGeometry_data()
{
    QTest::addColumn<int>("projection");
    QTest::addColumn<QSize>("size");
    const std::pair<const char *, QSize> shapes[] = {{"landscape", kLandscape},
                                                     {"portrait", kPortrait},
                                                     {"square", kSquare}};
    const char *const names[] = {"flat", "rectilinear", "little planet", "mirror ball", "fisheye"};
    const bool usualRun = PanoramaStage::wantedScale() == 1 && !PanoramaStage::wantsOpenGlEs();
    for (int projection = 0; projection < Builder::LAST_VALUE_PROJECTION; ++projection) {
        for (const auto &[shape, size] : shapes) {
            if (size != kLandscape && !usualRun)
                continue; // one shape tells whether the scale or the kind of OpenGL matters
            QTest::addRow("%s, %s", names[projection], shape) << projection << size;
        }
    }
}

void tst_Conformance::projectionsFollowTheirGeometry()
{
    QFETCH(int, projection);
    QFETCH(QSize, size);
    PanoramaStage stage(size);
    QVERIFY(stage.start());
    m_worstShare = m_largestError = 0;
    constexpr double kLeastComparedShare = 0.8;
    for (const Camera &camera : kCameras) {
        compare(stage, size, seenBy(camera, projection), kLeastComparedShare);
        if (QTest::currentTestFailed())
            return;
    }
    qInfo("at most %.3f %% wrong, largest error %.2f", 100 * m_worstShare, m_largestError);
}

void tst_Conformance::eachFurtherSettingFollowsItsFormula_data()
{
    QTest::addColumn<ViewSettings>("added");
    QTest::addColumn<double>("leastComparedShare");
    const auto add = [](const char *name, double leastComparedShare, auto change) {
        ViewSettings added;
        change(added);
        QTest::newRow(name) << added << leastComparedShare;
    };
    // The pieces of these effects are small, and so much of the picture lies beside a border.
    constexpr double kInPieces = 0.4;
    constexpr double kWhole = 0.8;
    add("sepia", kWhole, [](ViewSettings &s) { s.effect = Builder::SEPIA; });
    add("black and white", kInPieces, [](ViewSettings &s) { s.effect = Builder::BLACK_AND_WHITE; });
    add("television", kWhole, [](ViewSettings &s) { s.effect = Builder::TV; });
    add("negative", kWhole, [](ViewSettings &s) { s.effect = Builder::INVERT; });
    add("red only", kInPieces, [](ViewSettings &s) { s.effect = Builder::RED_ONLY; });
    add("yellow only", kInPieces, [](ViewSettings &s) { s.effect = Builder::YELLOW_ONLY; });
    add("blue only", kInPieces, [](ViewSettings &s) { s.effect = Builder::BLUE_ONLY; });
    add("over and under", kWhole,
        [](ViewSettings &s) { s.stereoMode = Builder::STEREO_3D_OVERUNDER; });
    add("side by side", kWhole,
        [](ViewSettings &s) { s.stereoMode = Builder::STEREO_3D_SIDEBYSIDE; });
    add("part of the longitudes", kWhole, [](ViewSettings &s) {
        s.yawMin = -1.9F;
        s.yawMax = 2.2F;
    });
    add("part of the latitudes", kWhole, [](ViewSettings &s) {
        s.pitchMin = -0.8F;
        s.pitchMax = 1.1F;
    });
    add("part of the sphere", kWhole, [](ViewSettings &s) {
        s.yawMin = -2.9F;
        s.yawMax = 1.6F;
        s.pitchMin = -1.3F;
        s.pitchMax = 0.4F;
    });
    add("fisheye source looking up", kWhole, [](ViewSettings &s) { s.projectionSource = 4; });
    add("fisheye source looking ahead", kWhole, [](ViewSettings &s) {
        s.projectionSource = 4;
        s.rotationSource = 2;
    });
    add("exchanged colours", kWhole, [](ViewSettings &s) { s.exchangedColours = true; });
    add("mounting correction", kWhole, [](ViewSettings &s) {
        s.pitchCorrection = 0.35F;
        s.rollCorrection = -0.6F;
    });
}

void tst_Conformance::eachFurtherSettingFollowsItsFormula()
{
    QFETCH(ViewSettings, added);
    QFETCH(double, leastComparedShare);
    PanoramaStage stage(kLandscape);
    QVERIFY(stage.start());
    m_worstShare = m_largestError = 0;
    const QList<ViewSettings> views = plainViews();
    for (const ViewSettings &view : views) {
        ViewSettings settings = added;
        settings.projection = view.projection;
        settings.yaw = view.yaw;
        settings.pitch = view.pitch;
        settings.roll = view.roll;
        settings.fovDeg = view.fovDeg;
        compare(stage, kLandscape, settings, leastComparedShare);
        if (QTest::currentTestFailed())
            return;
    }
    qInfo("at most %.3f %% wrong, largest error %.2f", 100 * m_worstShare, m_largestError);
}

QTEST_MAIN(tst_Conformance)
#include "tst_Conformance.moc"
