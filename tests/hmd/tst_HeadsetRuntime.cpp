#include "HeadsetStage.h"
#include "OpenHmdDevice.h"
#include "ProcessLevel.h"
#include "SimulatedDevice.h"
#include "WarningsFail.h"

#include <QtTest>

#include <cmath>

namespace {

constexpr int kToggles = 200;
constexpr int kWarmUps = 20; ///< after which drivers and allocators have what they keep

constexpr float kHalf = 0.70710678F;

} // namespace

/// The headset's object and window over the layer itself.
class tst_HeadsetRuntime : public WarningsFail
{
    Q_OBJECT

private slots:
    void cleanup();
    void theHeadOfOpenHmdTurnsTheView();
    void turnedOnAndOffItLeavesNothingBehind_data();
    void turnedOnAndOffItLeavesNothingBehind();
};

void tst_HeadsetRuntime::cleanup()
{
    ovr_SetDevice({});
    WarningsFail::cleanup();
}

void tst_HeadsetRuntime::theHeadOfOpenHmdTurnsTheView()
{
    OpenHmdDevice *device = nullptr;
    ovr_SetDevice([&device](std::string *error) {
        std::unique_ptr<OpenHmdDevice> external = OpenHmdDevice::openExternal(error);
        device = external.get();
        return external;
    });
    HeadsetStage stage;
    QVERIFY(stage.start());
    QVERIFY2(device && stage.oculus.activated(), qPrintable(stage.oculus.logMessage()));

    struct Pose
    {
        ovrQuatf head;
        double yaw = 0; ///< of the view, degrees: to the right, down, and as the picture turns
        double pitch = 0;
        double roll = 0;
    };
    const Pose poses[] = {
        {{0, kHalf, 0, kHalf}, -90, 0, 0},
        {{0.25881905F, 0, 0, 0.96592583F}, 0, -30, 0},
        {{0, 0, -0.38268343F, 0.92387953F}, 0, 0, -45},
        {{0, 1, 0, 0}, 180, 0, 0},
        {{0, 0, 0, 1}, 0, 0, 0},
    };
    const auto apart = [](float radians, double degrees) {
        return std::abs(std::remainder(double(radians) - qDegreesToRadians(degrees), 2 * M_PI));
    };
    for (const Pose &pose : poses) {
        device->setOrientation(pose.head);
        QTRY_VERIFY(apart(stage.state.yaw(), pose.yaw) < 1e-3
                    && apart(stage.state.pitch(), pose.pitch) < 1e-3
                    && apart(stage.state.roll(), pose.roll) < 1e-3);
    }
    // What is straight ahead comes out of the matrix, too.
    device->setOrientation({0, kHalf, 0, kHalf});
    QTRY_VERIFY(
        qFuzzyCompare(stage.state.rotationMatrix().mapVector({0, 0, -1}) + QVector3D(1, 1, 1),
                      QVector3D(0, 1, 1)));
}

void tst_HeadsetRuntime::turnedOnAndOffItLeavesNothingBehind_data()
{
    QTest::addColumn<bool>("sdk");
    QTest::newRow("by the runtime") << true;
    QTest::newRow("plain") << false;
}

void tst_HeadsetRuntime::turnedOnAndOffItLeavesNothingBehind()
{
    QFETCH(bool, sdk);
    QTemporaryFile script;
    QVERIFY(script.open());
    script.write(R"({"resolution": [480, 270], "repeat": true, "poses": [
        {"atSeconds": 0, "yawDeg": -40}, {"atSeconds": 2, "yawDeg": 40}, {"atSeconds": 4, "yawDeg": -40}]})");
    script.close();
    ovr_SetDevice(
        [&script](std::string *error) { return SimulatedDevice::open(script.fileName(), error); });
    HeadsetStage stage({{QStringLiteral("useSDK"), sdk}});
    QVERIFY(stage.start());
    const auto toggle = [&stage] {
        QSignalSpy turned(&stage.state, &OrbGlobalObject::yawChanged);
        const bool showsAFrame = turned.wait(); // each frame brings its own pose
        stage.oculus.setActivated(false);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        stage.oculus.setActivated(true);
        return showsAFrame;
    };
    for (int i = 0; i < kWarmUps; ++i)
        QVERIFY(toggle());
    const ProcessLevel before = ProcessLevel::now();
    for (int i = 0; i < kToggles; ++i)
        QVERIFY(toggle());
    const ProcessLevel now = ProcessLevel::now();
    qInfo("%s; now %s", qPrintable(before.text()), qPrintable(now.text()));
    QVERIFY(now.isWithin(before));
}

QTEST_MAIN(tst_HeadsetRuntime)
#include "tst_HeadsetRuntime.moc"
