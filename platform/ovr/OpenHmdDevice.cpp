#include "OpenHmdDevice.h"

#include "DesktopScreens.h"
#include "HeadsetModel.h"
#include "SteadyClock.h"

#include <openhmd/openhmd.h>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kFetchPause{2};

/// A headset that was unplugged: the library says so in a line at each fetch.
constexpr std::chrono::milliseconds kFetchPauseStill{250};
constexpr double kStillSeconds = 2; ///< a sensor at rest still trembles

int listed(ohmd_context *context, int index, ohmd_int_value value)
{
    int number = 0;
    ohmd_list_geti(context, index, value, &number);
    return number;
}

std::string listed(ohmd_context *context, int index, ohmd_string_value value)
{
    const char *text = ohmd_list_gets(context, index, value);
    return text ? text : "";
}

std::string productName(ohmd_context *context, int index)
{
    return listed(context, index, OHMD_VENDOR) + ' ' + listed(context, index, OHMD_PRODUCT);
}

/// Library devices that stand for no hardware bear its own name as that of their maker.
bool isHeadset(ohmd_context *context, int index)
{
    return listed(context, index, OHMD_DEVICE_CLASS) == OHMD_DEVICE_CLASS_HMD
        && !(listed(context, index, OHMD_DEVICE_FLAGS) & OHMD_DEVICE_FLAGS_NULL_DEVICE)
        && listed(context, index, OHMD_VENDOR) != "OpenHMD";
}

bool isExternal(ohmd_context *context, int index)
{
    return listed(context, index, OHMD_PRODUCT) == "External Device";
}

ohmd_device *openListed(ohmd_context *context, int index)
{
    ohmd_device_settings *settings = ohmd_device_settings_create(context);
    if (!settings)
        return nullptr;
    const int isAutomatic = 0;
    ohmd_device_settings_seti(settings, OHMD_IDS_AUTOMATIC_UPDATE, &isAutomatic);
    ohmd_device *device = ohmd_list_open_device_s(context, index, settings);
    ohmd_device_settings_destroy(settings);
    return device;
}

OpenHmdFigures figuresOf(ohmd_device *device, std::string product)
{
    OpenHmdFigures figures;
    figures.product = std::move(product);
    ohmd_device_geti(device, OHMD_SCREEN_HORIZONTAL_RESOLUTION, &figures.resolution.w);
    ohmd_device_geti(device, OHMD_SCREEN_VERTICAL_RESOLUTION, &figures.resolution.h);
    const auto get = [device](ohmd_float_value value, float *out) {
        ohmd_device_getf(device, value, out);
    };
    get(OHMD_LEFT_EYE_GL_PROJECTION_MATRIX, figures.projections[ovrEye_Left].data());
    get(OHMD_RIGHT_EYE_GL_PROJECTION_MATRIX, figures.projections[ovrEye_Right].data());
    get(OHMD_SCREEN_HORIZONTAL_SIZE, &figures.panelWidth);
    get(OHMD_SCREEN_VERTICAL_SIZE, &figures.panelHeight);
    get(OHMD_LENS_HORIZONTAL_SEPARATION, &figures.lensSeparation);
    get(OHMD_LENS_VERTICAL_POSITION, &figures.lensHeight);
    get(OHMD_UNIVERSAL_DISTORTION_K, figures.distortion.data());
    get(OHMD_UNIVERSAL_ABERRATION_K, figures.aberration.data());
    return figures;
}

ovrHmdDesc describe(const OpenHmdFigures &figures)
{
    ovrHmdDesc description;
    description.Type = headsetType(figures.product);
    description.ProductName = figures.product.c_str();
    description.Resolution = figures.resolution;
    description.HmdCaps = kRuntimeHmdCaps;
    description.TrackingCaps = kRuntimeTrackingCaps;
    description.DistortionCaps = kRuntimeDistortionCaps | ovrDistortionCap_HqDistortion;
    for (const ovrEyeType eye : {ovrEye_Left, ovrEye_Right})
        description.DefaultEyeFov[eye] = fieldOfView(figures.projections[eye]);
    const QSize pixels(figures.resolution.w, figures.resolution.h);
    if (const auto corner = DesktopScreens::panel(pixels, double(figures.panelWidth))) {
        description.HmdCaps |= ovrHmdCap_ExtendDesktop;
        description.WindowsPos = {corner->x(), corner->y()};
    }
    return description;
}

} // namespace

void OpenHmdDevice::Closer::operator()(ohmd_context *context) const
{
    ohmd_ctx_destroy(context);
}

std::unique_ptr<HeadsetDevice> OpenHmdDevice::open(std::string *error)
{
    return openFirst(&isHeadset, error);
}

std::unique_ptr<OpenHmdDevice> OpenHmdDevice::openExternal(std::string *error)
{
    return openFirst(&isExternal, error);
}

std::unique_ptr<OpenHmdDevice> OpenHmdDevice::openFirst(bool (*isWanted)(ohmd_context *, int),
                                                        std::string *error)
{
    error->clear();
    Context context(ohmd_ctx_create());
    if (!context) {
        *error = "OpenHMD, which drives headsets, cannot be started.";
        return nullptr;
    }
    const int count = ohmd_ctx_probe(context.get());
    int index = 0;
    while (index < count && !isWanted(context.get(), index))
        ++index;
    if (index >= count)
        return nullptr;

    const std::string product = productName(context.get(), index);
    ohmd_device *device = openListed(context.get(), index);
    if (!device) {
        const char *reason = ohmd_ctx_get_error(context.get());
        *error = "The headset " + product + " cannot be opened. Install the rules for access to "
            + "it (60-orbixsight-headset.rules, see the README) and plug it in again. ("
            + (reason ? reason : "") + ')';
        return nullptr;
    }
    OpenHmdFigures figures = figuresOf(device, product);
    if (!isUsable(figures)) {
        *error = "The headset " + product + " does not tell the sizes of its panel and lenses.";
        return nullptr;
    }
    return std::unique_ptr<OpenHmdDevice>(
        new OpenHmdDevice(std::move(context), device, std::move(figures)));
}

OpenHmdDevice::OpenHmdDevice(Context context, ohmd_device *device, OpenHmdFigures figures)
    : m_context(std::move(context))
    , m_device(device)
    , m_figures(std::move(figures))
    , m_description(describe(m_figures))
    , m_thread(&OpenHmdDevice::fetch, this)
{}

OpenHmdDevice::~OpenHmdDevice()
{
    {
        const std::lock_guard<std::mutex> lock(m_libraryMutex);
        m_isStopping = true;
    }
    m_stopped.notify_one();
    m_thread.join();
}

ovrHmdDesc OpenHmdDevice::description() const
{
    return m_description;
}

ovrPosef OpenHmdDevice::pose(double aheadSeconds)
{
    const std::lock_guard<std::mutex> lock(m_predictionMutex);
    return {m_prediction.at(steadySeconds(), aheadSeconds), {}};
}

void OpenHmdDevice::setOrientation(const ovrQuatf &orientation)
{
    const std::array<float, 4> values{orientation.x, orientation.y, orientation.z, orientation.w};
    const std::lock_guard<std::mutex> lock(m_libraryMutex);
    ohmd_device_setf(m_device, OHMD_ROTATION_QUAT, values.data());
}

void OpenHmdDevice::fetch()
{
    std::unique_lock<std::mutex> library(m_libraryMutex);
    std::array<float, 4> last{};
    double lastTurned = steadySeconds();
    while (!m_isStopping) {
        ohmd_ctx_update(m_context.get());
        std::array<float, 4> q{};
        ohmd_device_getf(m_device, OHMD_ROTATION_QUAT, q.data());
        const double now = steadySeconds();
        {
            const std::lock_guard<std::mutex> samples(m_predictionMutex);
            m_prediction.add({now, {q[0], q[1], q[2], q[3]}});
        }
        if (q != last)
            lastTurned = now;
        last = q;
        m_stopped.wait_for(library,
                           now - lastTurned < kStillSeconds ? kFetchPause : kFetchPauseStill);
    }
}
