#include "RecordingRuntime.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QTest>

#include <algorithm>

namespace {

constexpr double kScanoutMidpoint = 42.5;

void record(const QString &call)
{
    RecordingRuntime::instance().calls.append(call);
}

QString hex(unsigned value)
{
    return QStringLiteral("0x") + QString::number(value, 16);
}

QString text(const ovrFovPort &fov)
{
    return QStringLiteral("%1/%2/%3/%4")
        .arg(double(fov.UpTan))
        .arg(double(fov.DownTan))
        .arg(double(fov.LeftTan))
        .arg(double(fov.RightTan));
}

QString text(const ovrRecti &rect)
{
    return QStringLiteral("%1,%2 %3x%4")
        .arg(rect.Pos.x)
        .arg(rect.Pos.y)
        .arg(rect.Size.w)
        .arg(rect.Size.h);
}

ovrEyeRenderDesc renderDesc(ovrEyeType eye, const ovrFovPort &fov)
{
    ovrEyeRenderDesc desc;
    desc.Eye = eye;
    desc.Fov = fov;
    return desc;
}

int indexOf(const QStringList &calls, const QString &name, int from)
{
    const auto isOf = [&name](const QString &call) { return call.startsWith(name); };
    const auto found = std::find_if(calls.begin() + from, calls.end(), isOf);
    return found == calls.end() ? -1 : int(found - calls.begin());
}

/// What stands in a texture, or in the window for 0. Its context is current.
QImage read(GLuint texture, const QSize &size)
{
    QOpenGLFunctions *gl = QOpenGLContext::currentContext()->functions();
    GLuint buffer = 0;
    if (texture) {
        gl->glGenFramebuffers(1, &buffer);
        gl->glBindFramebuffer(GL_FRAMEBUFFER, buffer);
        gl->glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    }
    QImage image(size, QImage::Format_RGBX8888);
    gl->glReadPixels(0, 0, size.width(), size.height(), GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
    if (texture) {
        gl->glBindFramebuffer(GL_FRAMEBUFFER,
                              QOpenGLContext::currentContext()->defaultFramebufferObject());
        gl->glDeleteFramebuffers(1, &buffer);
    }
    return image.mirrored().convertToFormat(QImage::Format_RGB888);
}

} // namespace

RecordingRuntime &RecordingRuntime::instance()
{
    static RecordingRuntime runtime;
    return runtime;
}

ovrHmdDesc RecordingRuntime::dk1()
{
    ovrHmdDesc desc;
    desc.Type = ovrHmd_DK1;
    desc.ProductName = "Test DK1";
    desc.Resolution = {320, 200};
    desc.TrackingCaps = 0x30;
    desc.DefaultEyeFov[0] = {1.1415F, 1.1415F, 1.0519F, 0.7744F};
    desc.DefaultEyeFov[1] = {1.1415F, 1.1415F, 0.7744F, 1.0519F};
    return desc;
}

ovrHmdDesc RecordingRuntime::dk2()
{
    ovrHmdDesc desc;
    desc.Type = ovrHmd_DK2;
    desc.ProductName = "Test DK2";
    desc.Resolution = {480, 270};
    desc.TrackingCaps = 0x70;
    desc.DistortionCaps = 0x180;
    desc.DefaultEyeFov[0] = {1.32928634F, 1.32928634F, 1.05865765F, 1.09236801F};
    desc.DefaultEyeFov[1] = {1.32928634F, 1.32928634F, 1.09236801F, 1.05865765F};
    return desc;
}

void RecordingRuntime::clear()
{
    calls.clear();
}

QStringList RecordingRuntime::nextFrame()
{
    calls.clear();
    QStringList frame;
    const auto isWhole = [&] {
        const int begin = indexOf(calls, QStringLiteral("BeginFrame"), 0);
        const int end = begin < 0 ? -1 : indexOf(calls, QStringLiteral("EndFrame"), begin);
        if (end >= 0)
            frame = calls.mid(begin, end - begin + 1);
        return end >= 0;
    };
    return QTest::qWaitFor(isWhole) ? frame : QStringList();
}

QImage RecordingRuntime::nextPicture()
{
    QImage picture;
    onEndFrame = [&] {
        if (picture.isNull())
            picture = read(textures[0].TexId, {headset.Resolution.w, headset.Resolution.h});
    };
    const bool came = QTest::qWaitFor([&picture] { return !picture.isNull(); });
    onEndFrame = nullptr;
    return came ? picture : QImage();
}

void ovr_NoteScreens() {}

ovrBool ovr_Initialize()
{
    return true;
}

void ovr_Shutdown()
{
    record(QStringLiteral("Shutdown"));
}

const char *ovr_GetVersionString()
{
    return "0.4.4";
}

ovrHmd ovrHmd_Create(int index)
{
    RecordingRuntime &runtime = RecordingRuntime::instance();
    return index == 0 && runtime.present ? &runtime.headset : nullptr;
}

const char *ovrHmd_GetLastError()
{
    const QByteArray &error = RecordingRuntime::instance().error;
    return error.isEmpty() ? nullptr : error.constData();
}

void ovrHmd_Destroy(ovrHmd hmd)
{
    record(QStringLiteral("Destroy %1").arg(hmd != nullptr));
}

ovrBool ovrHmd_AttachToWindow(ovrHmd, unsigned long long window, const ovrRecti *destination,
                              const ovrRecti *source)
{
    record(QStringLiteral("AttachToWindow %1 %2 %3")
               .arg(window)
               .arg(destination != nullptr)
               .arg(source != nullptr));
    return true;
}

ovrBool ovrHmd_ConfigureTracking(ovrHmd, unsigned supported, unsigned required)
{
    record(QStringLiteral("ConfigureTracking %1 %2").arg(hex(supported), hex(required)));
    return true;
}

ovrEyeRenderDesc ovrHmd_GetRenderDesc(ovrHmd, ovrEyeType eye, ovrFovPort fov)
{
    record(QStringLiteral("GetRenderDesc %1 %2").arg(eye).arg(text(fov)));
    return renderDesc(eye, fov);
}

void ovrHmd_SetEnabledCaps(ovrHmd, unsigned caps)
{
    record(QStringLiteral("SetEnabledCaps %1").arg(hex(caps)));
}

ovrBool ovrHmd_ConfigureRendering(ovrHmd, const ovrGLConfig *configuration, unsigned distortionCaps,
                                  const ovrFovPort fov[ovrEye_Count],
                                  ovrEyeRenderDesc out[ovrEye_Count])
{
    record(QStringLiteral("ConfigureRendering api %1 %2x%3 samples %4 window %5 dc %6 %7 %8 %9")
               .arg(configuration->API)
               .arg(configuration->RTSize.w)
               .arg(configuration->RTSize.h)
               .arg(configuration->Multisample)
               .arg(configuration->Window)
               .arg(configuration->DC != 0)
               .arg(hex(distortionCaps), text(fov[0]), text(fov[1])));
    for (const ovrEyeType eye : {ovrEye_Left, ovrEye_Right})
        out[eye] = renderDesc(eye, fov[eye]);
    return true;
}

ovrFrameTiming ovrHmd_BeginFrame(ovrHmd, unsigned frameIndex)
{
    record(QStringLiteral("BeginFrame %1").arg(frameIndex));
    ovrFrameTiming timing;
    timing.ScanoutMidpointSeconds = kScanoutMidpoint;
    return timing;
}

ovrFrameTiming ovrHmd_BeginFrameTiming(ovrHmd, unsigned frameIndex)
{
    record(QStringLiteral("BeginFrameTiming %1").arg(frameIndex));
    ovrFrameTiming timing;
    timing.ScanoutMidpointSeconds = kScanoutMidpoint;
    return timing;
}

void ovrHmd_GetHSWDisplayState(ovrHmd, ovrHSWDisplayState *display)
{
    record(QStringLiteral("GetHSWDisplayState"));
    display->Displayed = RecordingRuntime::instance().notice;
}

ovrBool ovrHmd_DismissHSWDisplay(ovrHmd)
{
    record(QStringLiteral("DismissHSWDisplay"));
    return true;
}

ovrPosef ovrHmd_GetHmdPosePerEye(ovrHmd, ovrEyeType eye)
{
    record(QStringLiteral("GetHmdPosePerEye %1").arg(eye));
    return RecordingRuntime::instance().pose;
}

ovrTrackingState ovrHmd_GetTrackingState(ovrHmd, double absoluteSeconds)
{
    record(QStringLiteral("GetTrackingState %1").arg(absoluteSeconds));
    ovrTrackingState state;
    state.HeadPose.ThePose = RecordingRuntime::instance().pose;
    return state;
}

void ovrHmd_EndFrame(ovrHmd, const ovrPosef poses[ovrEye_Count],
                     const ovrGLTexture textures[ovrEye_Count])
{
    RecordingRuntime &runtime = RecordingRuntime::instance();
    QStringList eyes;
    for (const int eye : {0, 1}) {
        const ovrGLTexture &texture = textures[eye];
        runtime.textures[eye] = texture;
        eyes += QStringLiteral("api %1 %2x%3 at %4 turned %5")
                    .arg(texture.API)
                    .arg(texture.TextureSize.w)
                    .arg(texture.TextureSize.h)
                    .arg(text(texture.RenderViewport))
                    .arg(double(poses[eye].Orientation.w));
    }
    record(QStringLiteral("EndFrame %1; %2").arg(eyes.at(0), eyes.at(1)));
    if (runtime.onEndFrame)
        runtime.onEndFrame();
    QOpenGLContext *context = QOpenGLContext::currentContext();
    context->swapBuffers(context->surface());
}

void ovrHmd_EndFrameTiming(ovrHmd)
{
    RecordingRuntime &runtime = RecordingRuntime::instance();
    record(QStringLiteral("EndFrameTiming"));
    if (runtime.onEndFrame)
        runtime.onEndFrame();
}

ovrMatrix4f ovrMatrix4f_Projection(ovrFovPort fov, float near, float far, ovrBool)
{
    const float width = fov.LeftTan + fov.RightTan;
    const float height = fov.UpTan + fov.DownTan;
    return {{{2 / width, 0, (fov.RightTan - fov.LeftTan) / width, 0},
             {0, 2 / height, (fov.UpTan - fov.DownTan) / height, 0},
             {0, 0, -(far + near) / (far - near), -2 * far * near / (far - near)},
             {0, 0, -1, 0}}};
}
