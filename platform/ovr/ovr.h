#pragma once

/// The headset runtime as the player calls it: a function interface over a real headset, or over a
/// simulated one where the environment asks for it. A caller cannot tell which it has.
///
/// Threads: `ovr_Initialize` and `ovrHmd_Create` may run on any thread, one after the other; what
/// is called with a handle belongs to one thread, and what draws to the thread of the OpenGL
/// context that was current in `ovrHmd_ConfigureRendering`.

using ovrBool = char;

struct ovrVector2i
{
    int x = 0;
    int y = 0;
};

struct ovrSizei
{
    int w = 0;
    int h = 0;
};

struct ovrRecti
{
    ovrVector2i Pos;
    ovrSizei Size;
};

struct ovrVector2f
{
    float x = 0;
    float y = 0;
};

struct ovrVector3f
{
    float x = 0;
    float y = 0;
    float z = 0;
};

/// The turn from the headset's axes into the world's: x to the right, y up, z to the back.
struct ovrQuatf
{
    float x = 0;
    float y = 0;
    float z = 0;
    float w = 1;
};

constexpr bool operator==(const ovrQuatf &a, const ovrQuatf &b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
}

/// Row r and column c at M[r][c], for column vectors.
struct ovrMatrix4f
{
    float M[4][4] = {};
};

struct ovrPosef
{
    ovrQuatf Orientation;
    ovrVector3f Position; ///< metres
};

struct ovrPoseStatef
{
    ovrPosef ThePose;
    double TimeInSeconds = 0; ///< what the pose is predicted for
};

/// Tangents of the half angles of an eye's view, all positive for a view around the axis.
struct ovrFovPort
{
    float UpTan = 0;
    float DownTan = 0;
    float LeftTan = 0;
    float RightTan = 0;
};

enum ovrHmdType {
    ovrHmd_None = 0,
    ovrHmd_DK1 = 3,
    ovrHmd_DK2 = 6,
    ovrHmd_Other = 7,
};

enum ovrEyeType {
    ovrEye_Left = 0,
    ovrEye_Right = 1,
    ovrEye_Count = 2,
};

/// Of the headset, `ovrHmdDesc::HmdCaps`, and to be enabled, `ovrHmd_SetEnabledCaps`.
enum ovrHmdCaps : unsigned {
    ovrHmdCap_ExtendDesktop = 0x8, ///< its panel is a screen of the desktop
    ovrHmdCap_DisplayOff = 0x40,
    ovrHmdCap_LowPersistence = 0x80,
    ovrHmdCap_DynamicPrediction = 0x200,
    ovrHmdCap_NoVSync = 0x1000,
    ovrHmdCap_NoMirrorToWindow = 0x2000,
};

enum ovrTrackingCaps : unsigned {
    ovrTrackingCap_Orientation = 0x10,
    ovrTrackingCap_MagYawCorrection = 0x20,
    ovrTrackingCap_Position = 0x40,
};

enum ovrDistortionCaps : unsigned {
    ovrDistortionCap_Chromatic = 0x1, ///< each colour is bent by its own amount
    ovrDistortionCap_TimeWarp = 0x2,  ///< accepted, without effect
    ovrDistortionCap_Vignette = 0x8,  ///< the picture's edges fade to black
    ovrDistortionCap_SRGB = 0x40,
    ovrDistortionCap_Overdrive = 0x80,
    ovrDistortionCap_HqDistortion = 0x100, ///< a finer mesh
    ovrDistortionCap_ComputeShader = 0x400,
    ovrDistortionCap_ProfileNoTimewarpSpinWaits = 0x10000,
};

/// A headset that is in use. It stays where it is, unchanged, until `ovrHmd_Destroy`.
struct ovrHmdDesc
{
    ovrHmdType Type = ovrHmd_None;
    const char *ProductName = ""; ///< UTF-8
    unsigned HmdCaps = 0;
    unsigned TrackingCaps = 0;
    unsigned DistortionCaps = 0;
    ovrFovPort DefaultEyeFov[ovrEye_Count];
    ovrSizei Resolution;    ///< of the whole panel, both eyes side by side, in pixels
    ovrVector2i WindowsPos; ///< the panel's upper left on the desktop, in pixels of the desktop
};

using ovrHmd = const ovrHmdDesc *;

struct ovrEyeRenderDesc
{
    ovrEyeType Eye = ovrEye_Left;
    ovrFovPort Fov;
    ovrRecti DistortedViewport; ///< the eye's part of the panel
    ovrVector2f PixelsPerTanAngleAtCenter;
    ovrVector3f HmdToEyeViewOffset; ///< metres
};

/// Seconds of the runtime's own clock, which starts above 0.
struct ovrFrameTiming
{
    float DeltaSeconds = 0; ///< since the frame before
    double ThisFrameSeconds = 0;
    double TimewarpPointSeconds = 0;
    double NextFrameSeconds = 0;
    double ScanoutMidpointSeconds = 0; ///< when the middle of the frame lights up
    double EyeScanoutSeconds[ovrEye_Count] = {};
};

struct ovrTrackingState
{
    ovrPoseStatef HeadPose;
    unsigned StatusFlags = 0;
};

/// The notice on health and safety that a runtime shows over the picture.
struct ovrHSWDisplayState
{
    ovrBool Displayed = 0;
};

enum ovrRenderAPIType {
    ovrRenderAPI_None = 0,
    ovrRenderAPI_OpenGL = 1,
};

struct ovrGLConfig
{
    ovrRenderAPIType API = ovrRenderAPI_None;
    ovrSizei RTSize;
    int Multisample = 0;
    unsigned long long Window = 0; ///< of the window system
    unsigned long long DC = 0;     ///< the drawable that is presented; 0: the current one
};

struct ovrGLTexture
{
    ovrRenderAPIType API = ovrRenderAPI_None;
    ovrSizei TextureSize;
    ovrRecti RenderViewport; ///< the eye's part of the texture, from its lower left
    unsigned TexId = 0;      ///< name in OpenGL
};

/// Takes down which screens the desktop has, for finding a headset's panel among them. On the main
/// thread, before `ovr_Initialize`; without it a headset does not extend the desktop.
void ovr_NoteScreens();

/// Prepares the runtime; to be called once, before what follows.
ovrBool ovr_Initialize();

/// Closes the runtime. Handles that still stand are destroyed.
void ovr_Shutdown();

const char *ovr_GetVersionString();

/// Opens the first headset for the index 0. Null if there is none, or if it cannot be used.
ovrHmd ovrHmd_Create(int index);

/// In words, why the last `ovrHmd_Create` gave no headset although there is one; null otherwise.
const char *ovrHmd_GetLastError();

/// Null is allowed.
void ovrHmd_Destroy(ovrHmd hmd);

/// Binds the output of a headset that does not extend the desktop to a window. The two rectangles
/// are the parts of panel and window, null for all.
ovrBool ovrHmd_AttachToWindow(ovrHmd hmd, unsigned long long window, const ovrRecti *destination,
                              const ovrRecti *source);

/// Starts tracking by what is supported; false if something of `required` is missing.
ovrBool ovrHmd_ConfigureTracking(ovrHmd hmd, unsigned supported, unsigned required);

ovrEyeRenderDesc ovrHmd_GetRenderDesc(ovrHmd hmd, ovrEyeType eye, ovrFovPort fov);

void ovrHmd_SetEnabledCaps(ovrHmd hmd, unsigned caps);

/// Sets up the distortion in the current context, and tells how each eye is to be rendered. False
/// if it cannot be drawn; `ovrHmd_EndFrame` then leaves the window as it is.
ovrBool ovrHmd_ConfigureRendering(ovrHmd hmd, const ovrGLConfig *configuration,
                                  unsigned distortionCaps, const ovrFovPort fov[ovrEye_Count],
                                  ovrEyeRenderDesc out[ovrEye_Count]);

ovrFrameTiming ovrHmd_BeginFrame(ovrHmd hmd, unsigned frameIndex);

/// The same for a caller that presents by itself.
ovrFrameTiming ovrHmd_BeginFrameTiming(ovrHmd hmd, unsigned frameIndex);

void ovrHmd_GetHSWDisplayState(ovrHmd hmd, ovrHSWDisplayState *display);
ovrBool ovrHmd_DismissHSWDisplay(ovrHmd hmd);

/// The head's pose as predicted for the frame that was begun.
ovrPosef ovrHmd_GetHmdPosePerEye(ovrHmd hmd, ovrEyeType eye);

/// The pose predicted for this time of the runtime's clock; as it is now for 0.
ovrTrackingState ovrHmd_GetTrackingState(ovrHmd hmd, double absoluteSeconds);

/// Draws both eyes through the lenses' distortion into the window's back buffer, and swaps. The
/// poses are those that the eyes were rendered with.
void ovrHmd_EndFrame(ovrHmd hmd, const ovrPosef poses[ovrEye_Count],
                     const ovrGLTexture textures[ovrEye_Count]);

void ovrHmd_EndFrameTiming(ovrHmd hmd);

/// The perspective of an eye, for view space with x to the right and y up; depths from `near` to
/// `far` come out from -1 to 1. `rightHanded` looks along -z, else along z.
ovrMatrix4f ovrMatrix4f_Projection(ovrFovPort fov, float near, float far, ovrBool rightHanded);
