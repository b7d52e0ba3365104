#include "ovr.h"

#include "DesktopScreens.h"
#include "DeviceCheck.h"
#include "HeadsetDevice.h"
#include "HeadsetOutput.h"
#include "OpenHmdDevice.h"
#include "SimulatedDevice.h"
#include "Simulation.h"
#include "SteadyClock.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <vector>

namespace {

constexpr float kHalfEyeDistance = 0.032F; // metres
constexpr double kLongestPrediction = 0.1; // seconds

/// What stands behind a handle.
struct Headset : ovrHmdDesc
{
    struct State
    {
        std::unique_ptr<HeadsetDevice> device;
        HeadsetOutput output;
        bool isTracking = false;
        ovrFrameTiming frame;
    };

    explicit Headset(std::unique_ptr<HeadsetDevice> device)
        : ovrHmdDesc(device->description())
        , state(new State)
    {
        state->device = std::move(device);
    }

    const std::unique_ptr<State> state;
};

/// The runtime's own state. The list is guarded, since a headset may be made while another is in
/// use; the rest is touched before and in `ovrHmd_Create` alone.
struct Runtime
{
    OpenHeadset open;
    std::string error;
    std::mutex mutex;
    std::vector<std::unique_ptr<const Headset>> headsets;
};

Runtime &runtime()
{
    static Runtime it;
    return it;
}

Headset::State *stateOf(ovrHmd hmd)
{
    return hmd != nullptr ? static_cast<const Headset *>(hmd)->state.get() : nullptr;
}

std::unique_ptr<HeadsetDevice> openFirst(std::string *error)
{
    if (const std::optional<QString> script = Simulation::script(QStringLiteral("headset")))
        return SimulatedDevice::open(*script, error);
    return OpenHmdDevice::open(error);
}

/// The head's pose at a time of the clock; 0 has always passed.
ovrPoseStatef poseAt(Headset::State &state, double seconds)
{
    const double start = steadySeconds();
    const double ahead = std::min(std::max(0.0, seconds - start), kLongestPrediction);
    return {state.isTracking ? state.device->pose(ahead) : ovrPosef(), start + ahead};
}

} // namespace

void ovr_SetDevice(OpenHeadset open)
{
    runtime().open = std::move(open);
}

void ovr_NoteScreens()
{
    DesktopScreens::note();
}

ovrBool ovr_Initialize()
{
    return true;
}

void ovr_Shutdown()
{
    const std::lock_guard lock(runtime().mutex);
    runtime().headsets.clear();
}

const char *ovr_GetVersionString()
{
    return "0.4.4";
}

ovrHmd ovrHmd_Create(int index)
{
    Runtime &it = runtime();
    it.error.clear();
    if (index != 0)
        return nullptr;
    std::unique_ptr<HeadsetDevice> device = it.open ? it.open(&it.error) : openFirst(&it.error);
    if (device == nullptr)
        return nullptr;
    it.error = DeviceCheck::complaint(*device);
    if (!it.error.empty())
        return nullptr;
    const std::lock_guard lock(it.mutex);
    return it.headsets.emplace_back(std::make_unique<const Headset>(std::move(device))).get();
}

const char *ovrHmd_GetLastError()
{
    return runtime().error.empty() ? nullptr : runtime().error.c_str();
}

void ovrHmd_Destroy(ovrHmd hmd)
{
    Runtime &it = runtime();
    const std::lock_guard lock(it.mutex);
    it.headsets.erase(std::remove_if(it.headsets.begin(), it.headsets.end(),
                                     [hmd](const auto &headset) { return headset.get() == hmd; }),
                      it.headsets.end());
}

ovrBool ovrHmd_AttachToWindow(ovrHmd hmd, unsigned long long window, const ovrRecti *,
                              const ovrRecti *)
{
    // The panel is a screen of the desktop here, and what is current is presented: there is nothing
    // to bind.
    return hmd != nullptr && window != 0;
}

ovrBool ovrHmd_ConfigureTracking(ovrHmd hmd, unsigned supported, unsigned required)
{
    Headset::State *state = stateOf(hmd);
    if (state == nullptr || (required & ~hmd->TrackingCaps) != 0)
        return false;
    state->isTracking = ((supported | required) & hmd->TrackingCaps & ovrTrackingCap_Orientation)
        != 0;
    return true;
}

ovrEyeRenderDesc ovrHmd_GetRenderDesc(ovrHmd hmd, ovrEyeType eye, ovrFovPort fov)
{
    ovrEyeRenderDesc desc;
    if (hmd == nullptr || !DeviceCheck::isUsable(fov))
        return desc;
    const bool isRight = eye == ovrEye_Right;
    const ovrSizei panel = hmd->Resolution;
    desc.Eye = eye;
    desc.Fov = fov;
    const ovrSizei half{panel.w / 2, panel.h};
    desc.DistortedViewport = {{isRight ? (panel.w + 1) / 2 : 0, 0}, half};
    desc.PixelsPerTanAngleAtCenter = {static_cast<float>(half.w) / (fov.LeftTan + fov.RightTan),
                                      static_cast<float>(panel.h) / (fov.UpTan + fov.DownTan)};
    desc.HmdToEyeViewOffset.x = isRight ? -kHalfEyeDistance : kHalfEyeDistance;
    return desc;
}

void ovrHmd_SetEnabledCaps(ovrHmd hmd, unsigned caps)
{
    if (Headset::State *state = stateOf(hmd))
        state->output.setVerticalSync((caps & ovrHmdCap_NoVSync) == 0);
}

ovrBool ovrHmd_ConfigureRendering(ovrHmd hmd, const ovrGLConfig *configuration,
                                  unsigned distortionCaps, const ovrFovPort fov[ovrEye_Count],
                                  ovrEyeRenderDesc out[ovrEye_Count])
{
    Headset::State *state = stateOf(hmd);
    if (state == nullptr)
        return false;
    if (configuration == nullptr || fov == nullptr || out == nullptr
        || !DeviceCheck::isUsable(fov[ovrEye_Left]) || !DeviceCheck::isUsable(fov[ovrEye_Right])) {
        state->output.close();
        return false;
    }
    const bool chromatic = (distortionCaps & ovrDistortionCap_Chromatic) != 0;
    const int cells = (distortionCaps & ovrDistortionCap_HqDistortion) != 0 ? kFineMeshCells
                                                                            : kMeshCells;
    std::array<DistortionMesh, ovrEye_Count> meshes;
    for (const ovrEyeType eye : {ovrEye_Left, ovrEye_Right}) {
        out[eye] = ovrHmd_GetRenderDesc(hmd, eye, fov[eye]);
        meshes.at(eye) = distortionMesh(state->device->lens(), eye, fov[eye], chromatic, cells);
    }
    return state->output.configure(*configuration, meshes,
                                   (distortionCaps & ovrDistortionCap_Vignette) != 0);
}

ovrFrameTiming ovrHmd_BeginFrame(ovrHmd hmd, unsigned frameIndex)
{
    return ovrHmd_BeginFrameTiming(hmd, frameIndex);
}

ovrFrameTiming ovrHmd_BeginFrameTiming(ovrHmd hmd, unsigned)
{
    Headset::State *state = stateOf(hmd);
    if (state == nullptr)
        return {};
    const double before = state->frame.ThisFrameSeconds;
    const double period = 1.0 / (hmd->Type == ovrHmd_DK1 ? 60 : 75); // the panel's, in seconds
    const double start = steadySeconds();
    ovrFrameTiming &frame = state->frame;
    frame.DeltaSeconds = before > 0 ? static_cast<float>(start - before) : 0;
    frame.ThisFrameSeconds = start;
    frame.NextFrameSeconds = start + period;
    frame.TimewarpPointSeconds = frame.NextFrameSeconds;
    frame.ScanoutMidpointSeconds = start + 1.5 * period;
    std::fill_n(frame.EyeScanoutSeconds, ovrEye_Count, frame.ScanoutMidpointSeconds);
    return frame;
}

void ovrHmd_GetHSWDisplayState(ovrHmd hmd, ovrHSWDisplayState *display)
{
    const Headset::State *state = stateOf(hmd);
    if (display != nullptr)
        display->Displayed = state != nullptr && state->device->showsNotice();
}

ovrBool ovrHmd_DismissHSWDisplay(ovrHmd hmd)
{
    Headset::State *state = stateOf(hmd);
    if (state != nullptr)
        state->device->dismissNotice();
    return state != nullptr;
}

ovrPosef ovrHmd_GetHmdPosePerEye(ovrHmd hmd, ovrEyeType)
{
    Headset::State *state = stateOf(hmd);
    return state != nullptr ? poseAt(*state, state->frame.ScanoutMidpointSeconds).ThePose
                            : ovrPosef();
}

ovrTrackingState ovrHmd_GetTrackingState(ovrHmd hmd, double absoluteSeconds)
{
    ovrTrackingState tracking;
    if (Headset::State *state = stateOf(hmd))
        tracking.HeadPose = poseAt(*state, absoluteSeconds);
    return tracking;
}

void ovrHmd_EndFrame(ovrHmd hmd, const ovrPosef[ovrEye_Count],
                     const ovrGLTexture textures[ovrEye_Count])
{
    Headset::State *state = stateOf(hmd);
    if (state != nullptr && textures != nullptr)
        state->output.present(textures);
}

void ovrHmd_EndFrameTiming(ovrHmd) {}

ovrMatrix4f ovrMatrix4f_Projection(ovrFovPort fov, float near, float far, ovrBool rightHanded)
{
    const float width = fov.LeftTan + fov.RightTan;
    const float height = fov.UpTan + fov.DownTan;
    const float forward = rightHanded ? -1.0F : 1.0F; // the sign of z in front of the eye
    ovrMatrix4f matrix;
    matrix.M[0][0] = 2 / width;
    matrix.M[0][2] = forward * (fov.LeftTan - fov.RightTan) / width;
    matrix.M[1][1] = 2 / height;
    matrix.M[1][2] = forward * (fov.DownTan - fov.UpTan) / height;
    matrix.M[2][2] = forward * (far + near) / (far - near);
    matrix.M[2][3] = -2 * far * near / (far - near);
    matrix.M[3][2] = forward;
    return matrix;
}
