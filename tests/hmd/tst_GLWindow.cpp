#include "Comparison.h"
#include "HeadsetStage.h"
#include "RecordingRuntime.h"
#include "TestPanorama.h"
#include "WarningsFail.h"

#include <QQuaternion>
#include <QQuickItem>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kWrongShareAllowed = 0.005;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

struct Head
{
    double yaw; ///< radians, right-handed
    double pitch;
    double roll;
    float shiftYaw;
};

constexpr Head kHeads[] = {
    {0, 0, 0, 0},
    {0.7, -0.4, 0.2, 0},
    {-2.4, 0.9, -1.1, 2.5F},
    {1.3, -1.4, 2.9, -0.8F},
};

ovrQuatf orientation(const Head &head)
{
    const auto about = [](float x, float y, float z, double angle) {
        return QQuaternion::fromAxisAndAngle(x, y, z, static_cast<float>(angle * 180 / kPi));
    };
    const QQuaternion q = about(0, 1, 0, head.yaw) * about(1, 0, 0, head.pitch)
        * about(0, 0, 1, head.roll);
    return {q.x(), q.y(), q.z(), q.scalar()};
}

/// What an eye sees.
ViewSettings seenBy(const Head &head, const ovrHmdDesc &headset, ovrEyeType eye, int stereoMode)
{
    const ovrFovPort &port = headset.DefaultEyeFov[eye];
    const ovrFovPort &left = headset.DefaultEyeFov[ovrEye_Left];
    EyeSettings settings;
    settings.upTan = double(port.UpTan);
    settings.downTan = double(port.DownTan);
    settings.leftTan = double(port.LeftTan);
    settings.rightTan = double(port.RightTan);
    settings.scaleCorrector = (std::atan(double(left.UpTan)) + std::atan(double(left.DownTan)))
        / (std::atan(double(left.LeftTan)) + std::atan(double(left.RightTan)));
    settings.second = eye == ovrEye_Right;

    ViewSettings view;
    view.eye = settings;
    view.stereoMode = stereoMode;
    view.fovDeg = headset.Type == ovrHmd_DK1 ? 88.2986984F : 91;
    view.yaw = -static_cast<float>(head.yaw + double(head.shiftYaw));
    view.pitch = -static_cast<float>(head.pitch);
    view.roll = static_cast<float>(head.roll);
    return view;
}

/// While it lives the headset's windows get no larger than this.
class SmallScreen : public QObject
{
public:
    SmallScreen() { qApp->installEventFilter(this); }

    bool eventFilter(QObject *object, QEvent *event) override
    {
        auto *window = qobject_cast<GLWindow *>(object);
        if (window && event->type() == QEvent::Polish)
            window->setMaximumSize(300, 200);
        return false;
    }
};

} // namespace

/// The window on the headset's screen, and what it asks of the runtime.
class tst_GLWindow : public WarningsFail
{
    Q_OBJECT

private:
    RecordingRuntime &m_runtime = RecordingRuntime::instance();

private slots:
    void init();
    void bothEyesShowWhatTheyLookAt_data();
    void bothEyesShowWhatTheyLookAt();
    void aFrameAsksTheRuntimeInOrder_data();
    void aFrameAsksTheRuntimeInOrder();
    void theHeadsetIsConfiguredBySettings_data();
    void theHeadsetIsConfiguredBySettings();
    void anOddWidthLeavesAColumnUnused();
    void aScreenOfTheDesktopGetsTheWindow();
    void aWindowOfAnotherSizeStaysDark();
    void withoutMediaNoFrameBegins();
    void aBrokenOrientationLeavesTheView_data();
    void aBrokenOrientationLeavesTheView();
    void keysReachTheScene();
};

void tst_GLWindow::init()
{
    WarningsFail::init();
    m_runtime.clear();
    m_runtime.headset = RecordingRuntime::dk2();
    m_runtime.present = true;
    m_runtime.pose = {};
    m_runtime.notice = false;
}

void tst_GLWindow::bothEyesShowWhatTheyLookAt_data()
{
    QTest::addColumn<bool>("dk1");
    QTest::addColumn<bool>("sdk");
    QTest::addColumn<int>("stereoMode");
    using Builder = OrbShaderCodeBuilder;
    QTest::newRow("DK1, one picture") << true << true << int(Builder::STEREO_2D);
    QTest::newRow("DK1, over and under") << true << true << int(Builder::STEREO_3D_OVERUNDER);
    QTest::newRow("DK1, side by side") << true << true << int(Builder::STEREO_3D_SIDEBYSIDE);
    QTest::newRow("DK2, one picture") << false << true << int(Builder::STEREO_2D);
    QTest::newRow("DK2, over and under") << false << true << int(Builder::STEREO_3D_OVERUNDER);
    QTest::newRow("DK2, side by side") << false << true << int(Builder::STEREO_3D_SIDEBYSIDE);
    QTest::newRow("DK2, plain way") << false << false << int(Builder::STEREO_3D_SIDEBYSIDE);
}

void tst_GLWindow::bothEyesShowWhatTheyLookAt()
{
    QFETCH(bool, dk1);
    QFETCH(bool, sdk);
    QFETCH(int, stereoMode);
    if (dk1)
        m_runtime.headset = RecordingRuntime::dk1();
    const ovrHmdDesc headset = m_runtime.headset;
    HeadsetStage stage({{QStringLiteral("useSDK"), sdk}});
    stage.builder.setStereoMode(stereoMode);
    QVERIFY(stage.start());
    const QImage panorama = testPanorama();
    const QSize eyeSize(headset.Resolution.w / 2, headset.Resolution.h);
    double worstShare = 0;
    for (const Head &head : kHeads) {
        m_runtime.pose.Orientation = orientation(head);
        stage.oculus.setShiftYaw(head.shiftYaw);
        const QImage picture = m_runtime.nextPicture();
        QCOMPARE(picture.size(), QSize(headset.Resolution.w, headset.Resolution.h));
        for (const ovrEyeType eye : {ovrEye_Left, ovrEye_Right}) {
            const Comparison result(picture.copy(QRect({eye * eyeSize.width(), 0}, eyeSize)),
                                    ReferencePicture(panorama,
                                                     seenBy(head, headset, eye, stereoMode),
                                                     eyeSize));
            const QByteArray report = QStringLiteral("eye %1, yaw %2: %3")
                                          .arg(eye)
                                          .arg(head.yaw)
                                          .arg(result.toString())
                                          .toLocal8Bit();
            QVERIFY2(result.comparedShare() > 0.9, report.constData());
            QVERIFY2(result.wrongShare() <= kWrongShareAllowed, report.constData());
            worstShare = std::max(worstShare, result.wrongShare());
        }
    }
    qInfo("at most %.3f %% wrong", 100 * worstShare);
}

void tst_GLWindow::aFrameAsksTheRuntimeInOrder_data()
{
    QTest::addColumn<QVariantMap>("settings");
    QTest::addColumn<bool>("notice");
    QTest::addColumn<QStringList>("calls");
    const QString useSdk = QStringLiteral("useSDK");
    const QString usePrediction = QStringLiteral("usePrediction");
    const QString begin = QStringLiteral("BeginFrame 0");
    const QString beginTiming = QStringLiteral("BeginFrameTiming 0");
    const QString isNotice = QStringLiteral("GetHSWDisplayState");
    const QString endTiming = QStringLiteral("EndFrameTiming");
    const QString end = QStringLiteral("EndFrame api 1 480x270 at 0,0 240x270 turned 0.5; "
                                       "api 1 480x270 at 240,0 240x270 turned 0.5");
    const QString now = QStringLiteral("GetTrackingState 0");
    const QString atScanout = QStringLiteral("GetTrackingState 42.5");
    const QString ofEye = QStringLiteral("GetHmdPosePerEye 0");

    QTest::newRow("by the runtime")
        << QVariantMap() << false << QStringList{begin, isNotice, ofEye, end};
    QTest::newRow("with a notice")
        << QVariantMap() << true
        << QStringList{begin, isNotice, QStringLiteral("DismissHSWDisplay"), ofEye, end};
    QTest::newRow("by the runtime, no prediction")
        << QVariantMap{{usePrediction, false}} << false << QStringList{begin, isNotice, now, end};
    QTest::newRow("plain") << QVariantMap{{useSdk, false}} << true
                           << QStringList{beginTiming, atScanout, endTiming};
    QTest::newRow("plain, no prediction") << QVariantMap{{useSdk, false}, {usePrediction, false}}
                                          << false << QStringList{beginTiming, now, endTiming};
}

void tst_GLWindow::aFrameAsksTheRuntimeInOrder()
{
    QFETCH(QVariantMap, settings);
    QFETCH(bool, notice);
    QFETCH(QStringList, calls);
    HeadsetStage stage(settings);
    m_runtime.notice = notice;
    m_runtime.pose.Orientation = {0.5F, 0.5F, 0.5F, 0.5F};
    QVERIFY(stage.start());
    QCOMPARE(m_runtime.nextFrame(), calls);
}

void tst_GLWindow::theHeadsetIsConfiguredBySettings_data()
{
    QTest::addColumn<bool>("dk1");
    QTest::addColumn<QVariantMap>("settings");
    QTest::addColumn<QString>("enabled");
    QTest::addColumn<QString>("distortion");
    const auto off = [](const char *key) { return QVariantMap{{QLatin1String(key), false}}; };
    const auto hex = [](const char *text) { return QString::fromLatin1(text); };
    QTest::newRow("DK2") << false << QVariantMap() << hex("0x2280") << hex("0x1018b");
    QTest::newRow("DK1") << true << QVariantMap() << hex("0x2280") << hex("0x1000b");
    QTest::newRow("vsync") << false << off("vsync") << hex("0x3280") << hex("0x1018b");
    QTest::newRow("dynamicPrediction")
        << false << off("dynamicPrediction") << hex("0x2080") << hex("0x1018b");
    QTest::newRow("timewarpNoJit")
        << false << off("timewarpNoJit") << hex("0x2280") << hex("0x18b");
    QTest::newRow("plain") << false << off("useSDK") << QString() << QString();
}

void tst_GLWindow::theHeadsetIsConfiguredBySettings()
{
    QFETCH(bool, dk1);
    QFETCH(QVariantMap, settings);
    QFETCH(QString, enabled);
    QFETCH(QString, distortion);
    if (dk1)
        m_runtime.headset = RecordingRuntime::dk1();
    HeadsetStage stage(settings);
    QVERIFY(stage.start());
    QTRY_VERIFY(m_runtime.calls.filter(QStringLiteral("BeginFrame")).size() > 1);
    const QStringList all = m_runtime.calls;
    const QString window = QString::number(stage.headsetWindow()->winId());
    QVERIFY(all.contains(QStringLiteral("AttachToWindow %1 0 0").arg(window)));

    const QString left = dk1 ? QStringLiteral("1.1415/1.1415/1.0519/0.7744")
                             : QStringLiteral("1.32929/1.32929/1.05866/1.09237");
    const QString right = dk1 ? QStringLiteral("1.1415/1.1415/0.7744/1.0519")
                              : QStringLiteral("1.32929/1.32929/1.09237/1.05866");
    QStringList wanted{dk1 ? QStringLiteral("ConfigureTracking 0x30 0x0")
                           : QStringLiteral("ConfigureTracking 0x70 0x0")};
    if (enabled.isEmpty())
        wanted << QStringLiteral("GetRenderDesc 0 ") + left
               << QStringLiteral("GetRenderDesc 1 ") + right;
    else
        wanted << QStringLiteral("SetEnabledCaps ") + enabled
               << QStringLiteral("ConfigureRendering api 1 %1 samples 0 window %2 dc 1 %3 %4 %5")
                      .arg(dk1 ? QStringLiteral("320x200") : QStringLiteral("480x270"), window,
                           distortion, left, right);
    QCOMPARE(all.filter(QRegularExpression(
                 QStringLiteral("^(ConfigureT|GetRenderDesc|SetEnabled|ConfigureR)"))),
             wanted);

    // Each stands in the store now, for the user to find.
    for (const char *key :
         {"useSDK", "dynamicPrediction", "usePrediction", "timewarpNoJit", "vsync"})
        QVERIFY2(stage.state.containsSetting(QStringLiteral("application/oculus/")
                                             + QLatin1String(key)),
                 key);
}

void tst_GLWindow::anOddWidthLeavesAColumnUnused()
{
    m_runtime.headset.Resolution = {481, 271};
    HeadsetStage stage;
    QVERIFY(stage.start());
    const QString end = m_runtime.nextFrame().value(3);
    QVERIFY2(end.contains(QStringLiteral("481x271 at 0,0 240x271")), qPrintable(end));
    QVERIFY2(end.contains(QStringLiteral("481x271 at 241,0 240x271")), qPrintable(end));
}

void tst_GLWindow::aScreenOfTheDesktopGetsTheWindow()
{
    m_runtime.headset.HmdCaps = ovrHmdCap_ExtendDesktop;
    m_runtime.headset.WindowsPos = {200, 77};
    HeadsetStage stage;
    QVERIFY(stage.start());
    QVERIFY(!m_runtime.nextFrame().isEmpty());
    const qreal scale = stage.headsetWindow()->devicePixelRatioF();
    QCOMPARE(stage.headsetWindow()->geometry(),
             QRect(QPoint(200, 0), (QSizeF(480, 270) / scale).toSize()));
    QCOMPARE(m_runtime.calls.filter(QStringLiteral("AttachToWindow")), QStringList());
    const QString fullScreen = QStringLiteral("application/oculus/fullscreen");
    QVERIFY(stage.state.containsSetting(fullScreen));
    QCOMPARE(stage.state.getSetting(fullScreen).toBool(), false);

    // Where no window manager hears the wish the window has the panel's size all the same.
    stage.oculus.setActivated(false);
    stage.state.setSetting(fullScreen, true);
    stage.oculus.setActivated(true);
    QVERIFY(!m_runtime.nextFrame().isEmpty());
}

void tst_GLWindow::aWindowOfAnotherSizeStaysDark()
{
    HeadsetStage stage;
    QVERIFY(stage.start());
    QVERIFY(!m_runtime.nextFrame().isEmpty());
    const unsigned buffer = m_runtime.textures[0].TexId;
    m_runtime.calls.clear();
    stage.headsetWindow()->resize(300, 200); // what stands goes on
    QVERIFY(!m_runtime.nextFrame().isEmpty());
    QCOMPARE(m_runtime.textures[0].TexId, buffer);
    QCOMPARE(m_runtime.calls.filter(QStringLiteral("Configure")), QStringList());

    stage.oculus.setActivated(false);
    const SmallScreen screen;
    m_runtime.calls.clear();
    expectWarning(QStringLiteral("^The headset's window has \\d+ \\* \\d+ pixels in place of "
                                 "480 \\* 270 and stays dark.$"));
    stage.oculus.setActivated(true);
    QTRY_VERIFY(stage.oculus.logMessage().endsWith(QStringLiteral("stays dark.\n")));
    QCOMPARE(m_runtime.calls.filter(QRegularExpression(QStringLiteral("^(Begin|Configure)"))),
             QStringList());
}

void tst_GLWindow::withoutMediaNoFrameBegins()
{
    HeadsetStage stage;
    stage.panorama = false;
    QVERIFY(stage.start());
    QTRY_VERIFY(!m_runtime.calls.filter(QStringLiteral("ConfigureRendering")).isEmpty());
    m_runtime.calls.clear();
    QVERIFY(!QTest::qWaitFor([&] { return !m_runtime.calls.isEmpty(); }, 200));
    stage.textureProvider.setTextureId(1);
    QVERIFY(!m_runtime.nextFrame().isEmpty());
}

void tst_GLWindow::aBrokenOrientationLeavesTheView_data()
{
    QTest::addColumn<QVector4D>("broken");
    QTest::addColumn<QString>("line");
    const QString none = QStringLiteral("The headset gives no orientation.");
    QTest::newRow("zeros") << QVector4D(0, 0, 0, 0) << none;
    QTest::newRow("not a number") << QVector4D(0, 0, kNan, 1) << none;
    QTest::newRow("too long") << QVector4D(0, 6, 0, 8)
                              << QStringLiteral(
                                     "The headset gives orientations of a wrong length.");
}

void tst_GLWindow::aBrokenOrientationLeavesTheView()
{
    QFETCH(QVector4D, broken);
    QFETCH(QString, line);
    HeadsetStage stage;
    m_runtime.pose.Orientation = {0, 0.6F, 0, 0.8F};
    QVERIFY(stage.start());
    QTRY_VERIFY(stage.state.yaw() != 0);
    const float yaw = stage.state.yaw();
    m_runtime.pose.Orientation = {broken.x(), broken.y(), broken.z(), broken.w()};
    expectWarning(QLatin1Char('^') + line + QLatin1Char('$'));
    QTRY_VERIFY(stage.oculus.logMessage().endsWith(line + QLatin1Char('\n')));
    QVERIFY(!m_runtime.nextFrame().isEmpty()); // it goes on
    QVERIFY(std::abs(stage.state.yaw() - yaw) < 1e-5F);
}

void tst_GLWindow::keysReachTheScene()
{
    HeadsetStage stage;
    QVERIFY(stage.start());
    QTest::keyClick(stage.headsetWindow(), Qt::Key_Right, Qt::ControlModifier);
    QCOMPARE(
        stage.view->rootObject()->property("pressed").value<QJSValue>().toVariant().toList().mid(
            3), // behind the control key itself
        (QVariantList{int(QEvent::KeyPress), int(Qt::Key_Right), int(Qt::ControlModifier)}));
}

QTEST_MAIN(tst_GLWindow)
#include "tst_GLWindow.moc"
