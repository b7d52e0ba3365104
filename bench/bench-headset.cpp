// The headset's frames: from the head's pose to the frame that was submitted, and what drawing both
// eyes costs against one view of the same size.
//
// A simulated DK2 in this process, 1920 × 1080, a noisy panorama of 4096 × 2048. The time of a pose
// is taken when the runtime asks the headset for it, that of the frame when its window's update has
// returned, which includes the distortion and the swap. Drawing alone ends with glFinish.

#include "AimTable.h"
#include "GLWindow.h"
#include "NoisePanorama.h"
#include "OrbGlobalObject.h"
#include "OrbOculus.h"
#include "OrbQQuickView.h"
#include "OrbSettingsManager.h"
#include "OrbShaderCodeBuilder.h"
#include "OrbTextureProvider.h"
#include "OrbVideoPlugin.h"
#include "SimulatedDevice.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {

constexpr QSize kPanel(1920, 1080);
constexpr int kFrames = 200;
constexpr int kDraws = 60;
constexpr int kStartMs = 10000;

using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// A simulated headset that keeps when it was last asked where the head is.
class TimedDevice : public HeadsetDevice
{
public:
    TimedDevice(std::unique_ptr<HeadsetDevice> device, Clock::time_point *asked)
        : m_device(std::move(device))
        , m_asked(asked)
    {}

    ovrHmdDesc description() const override { return m_device->description(); }
    LensModel lens() const override { return m_device->lens(); }
    ovrPosef pose(double aheadSeconds) override
    {
        *m_asked = Clock::now();
        return m_device->pose(aheadSeconds);
    }

private:
    std::unique_ptr<HeadsetDevice> m_device;
    Clock::time_point *m_asked;
};

GLWindow *headsetWindow()
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        if (auto *window = qobject_cast<GLWindow *>(widget))
            return window;
    }
    return nullptr;
}

/// Milliseconds of a draw into the bound target.
template <typename Draw>
double msOf(const Draw &draw)
{
    const auto start = Clock::now();
    draw();
    QOpenGLContext::currentContext()->functions()->glFinish();
    return msSince(start);
}

/// The two take turns, so that what else the machine does meets both.
void measureDraws(AimTable &table, const OrbShaderCodeBuilder &builder, const OrbOculus &oculus,
                  GLuint texture)
{
    const auto mono = PanoramaProgram::create(builder.build(false));
    const auto stereo = PanoramaProgram::create(builder.build(true));
    if (!mono || !stereo)
        return table.fail(QStringLiteral("both eyes"), QStringLiteral("a shader does not link"));
    EyesView eyes;
    eyes.matViewInverseLeft = oculus.getRotationMatrixLeft();
    eyes.matViewInverseRight = oculus.getRotationMatrixRight();
    eyes.scaleCorrector = oculus.scaleCorrector();
    const PanoramaView whole = NoisePanorama::view(kPanel);
    const PanoramaView ofEye = NoisePanorama::view(QSize(kPanel.width() / 2, kPanel.height()));

    QOpenGLFramebufferObject target(kPanel, QOpenGLFramebufferObject::CombinedDepthStencil);
    target.bind();
    QOpenGLContext::currentContext()->functions()->glViewport(0, 0, kPanel.width(),
                                                              kPanel.height());
    for (int i = 0; i < kDraws; ++i) {
        const QString drawing = QStringLiteral("drawing");
        table.add(drawing, QStringLiteral("one view"), msOf([&] { mono->draw(whole, texture); }));
        table.add(drawing, QStringLiteral("both eyes"),
                  msOf([&] { stereo->drawEyes(ofEye, eyes, texture); }));
    }
    target.release();
}

void measureFrames(AimTable &table, GLWindow &window, const Clock::time_point &asked)
{
    std::vector<double> latencies;
    latencies.reserve(kFrames);
    for (int i = 0; i < kFrames; ++i) {
        window.updateGL();
        latencies.push_back(msSince(asked));
    }
    std::sort(latencies.begin(), latencies.end());
    const QString measure = QStringLiteral("pose to submitted frame");
    table.add(measure, QStringLiteral("median"), latencies[kFrames / 2]);
    table.add(measure, QStringLiteral("99th of 100"), latencies[kFrames * 99 / 100]);
}

} // namespace

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    const QApplication application(argc, argv);
    OrbSettingsManager settings(QStringLiteral("orbix-bench"), QStringLiteral("headset"));
    settings.write(QStringLiteral("application/oculusmode"), true);
    settings.write(QStringLiteral("application/oculus/vsync"), false);

    Clock::time_point asked;
    ovr_SetDevice([&asked](std::string *error) {
        return std::make_unique<TimedDevice>(SimulatedDevice::open({}, error), &asked);
    });
    OrbVideoPlugin plugin(&settings);
    OrbGlobalObject state(&settings, &plugin);
    OrbShaderCodeBuilder builder;
    auto view = std::make_unique<OrbQQuickView>(&settings, true);
    OrbTextureProvider provider(view.get(), &settings);
    OrbOculus oculus(view.get(), &state, &builder, &provider);
    QObject::connect(
        view.get(), &QQuickWindow::afterRendering, &provider,
        [&provider] {
            if (provider.textureId() == 0)
                provider.setTextureId(int(NoisePanorama::texture()));
        },
        Qt::DirectConnection);
    view->resize(64, 64);
    view->show();
    QElapsedTimer waiting;
    waiting.start();
    while (!(oculus.fps() > 0) && waiting.elapsed() < kStartMs)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    GLWindow *window = headsetWindow();
    if (!window || oculus.fps() == 0) {
        std::printf("The headset does not start: %s\n", qPrintable(oculus.logMessage()));
        return 1;
    }

    AimTable table;
    for (int i = 0; i < AimTable::repetitions(); ++i) {
        measureFrames(table, *window, asked);
        window->makeCurrent();
        measureDraws(table, builder, oculus, GLuint(provider.shownTextureId()));
    }
    AimTable::printHead();
    const QString poseToFrame = QStringLiteral("pose to submitted frame");
    table.printRow(poseToFrame, "ms", QStringLiteral("median"), {}, {});
    table.printRow(poseToFrame, "ms", QStringLiteral("99th of 100"), {}, {});
    table.printRow(QStringLiteral("drawing"), "ms", QStringLiteral("both eyes"),
                   QStringLiteral("one view"), {AimTable::Aim::AtMost, 1.15});
    view.reset();
    return table.isComplete() ? 0 : 1;
}
