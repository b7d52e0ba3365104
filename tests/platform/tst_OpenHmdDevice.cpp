#include "OpenHmdDevice.h"

#include "ProcessLevel.h"
#include "WarningsFail.h"

#include <QtTest>

#include <cmath>

static std::unique_ptr<OpenHmdDevice> opened()
{
    std::string error;
    auto device = OpenHmdDevice::openExternal(&error);
    if (!device)
        qFatal("OpenHMD has no external device");
    return device;
}

/// With the real library and the device that it has without hardware.
class tst_OpenHmdDevice : public WarningsFail
{
    Q_OBJECT

private slots:
    void findsNothingWithoutAHeadset();
    void describesADeviceOfTheLibrary();
    void orientationsArrive();
    void opensAndClosesWithoutALeak();
};

void tst_OpenHmdDevice::findsNothingWithoutAHeadset()
{
    std::string error = "from before";
    QVERIFY(!OpenHmdDevice::open(&error));
    QCOMPARE(error, std::string());
}

void tst_OpenHmdDevice::describesADeviceOfTheLibrary()
{
    const auto device = opened();
    const ovrHmdDesc description = device->description();
    QCOMPARE(description.ProductName, "OpenHMD External Device");
    QCOMPARE(QSize(description.Resolution.w, description.Resolution.h), QSize(1280, 800));
    QCOMPARE(description.HmdCaps, 0x32C0U); // there is no screen

    // The library's generic device, 125.5 degrees high, with lenses nearer to the middle of the
    // panel.
    const ovrFovPort &left = description.DefaultEyeFov[ovrEye_Left];
    const ovrFovPort &right = description.DefaultEyeFov[ovrEye_Right];
    const float half = std::tan(qDegreesToRadians(125.5144F) / 2);
    QVERIFY(qAbs(left.UpTan - half) < 1e-3F && qAbs(right.DownTan - half) < 1e-3F);
    QVERIFY(left.LeftTan > left.RightTan);
    QCOMPARE(right.RightTan, left.LeftTan);
}

void tst_OpenHmdDevice::orientationsArrive()
{
    const auto device = opened();
    const auto stands = [&](const ovrQuatf &expected) {
        const ovrQuatf q = device->pose(0).Orientation;
        return q.x == expected.x && q.y == expected.y && q.z == expected.z && q.w == expected.w;
    };
    for (const ovrQuatf &q :
         {ovrQuatf{0, 0.6F, 0, 0.8F}, ovrQuatf{1, 0, 0, 0}, ovrQuatf{0, 3, 0, 4}}) {
        device->setOrientation(q);
        QTRY_VERIFY(stands(q));
    }
}

void tst_OpenHmdDevice::opensAndClosesWithoutALeak()
{
    ProcessLevel start;
    for (int i = 0; i < 220; ++i) {
        if (i == 20)
            start = ProcessLevel::now();
        opened()->pose(0.02);
    }
    QTRY_VERIFY2(ProcessLevel::now().isWithin(start),
                 qPrintable(start.text() % QStringLiteral(", then ") % ProcessLevel::now().text()));
}

QTEST_GUILESS_MAIN(tst_OpenHmdDevice)
#include "tst_OpenHmdDevice.moc"
