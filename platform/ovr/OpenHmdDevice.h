#pragma once

#include "HeadsetDevice.h"
#include "OpenHmdFigures.h"
#include "OrientationPrediction.h"

#include <condition_variable>
#include <mutex>
#include <thread>

struct ohmd_context;
struct ohmd_device;

/// A headset through OpenHMD.
///
/// Threads: one of its own fetches what the headset sends, from the constructor to the destructor,
/// which waits for it and then closes the headset. `m_libraryMutex` guards all calls into OpenHMD,
/// which may wait for the headset; `m_predictionMutex` the orientations, so that `pose` never does.
class OpenHmdDevice : public HeadsetDevice
{
public:
    /// See OpenHeadset.
    static std::unique_ptr<HeadsetDevice> open(std::string *error);

    /// The library's own device without hardware, whose orientation can be set; for tests. Null if
    /// the library was built without it.
    static std::unique_ptr<OpenHmdDevice> openExternal(std::string *error);

    ~OpenHmdDevice() override;

    ovrHmdDesc description() const override;
    LensModel lens() const override { return lensModel(m_figures); }
    ovrPosef pose(double aheadSeconds) override;

    /// Of the device that `openExternal` gives, any thread.
    void setOrientation(const ovrQuatf &orientation);

private:
    struct Closer
    {
        void operator()(ohmd_context *context) const;
    };
    using Context = std::unique_ptr<ohmd_context, Closer>;

    static std::unique_ptr<OpenHmdDevice> openFirst(bool (*isWanted)(ohmd_context *, int index),
                                                    std::string *error);
    OpenHmdDevice(Context context, ohmd_device *device, OpenHmdFigures figures);
    void fetch();

    const Context m_context; ///< owns the device
    ohmd_device *const m_device;
    const OpenHmdFigures m_figures;
    ovrHmdDesc m_description;

    std::mutex m_libraryMutex;
    std::condition_variable m_stopped;
    bool m_isStopping = false; ///< guarded by m_libraryMutex

    std::mutex m_predictionMutex;
    OrientationPrediction m_prediction; ///< guarded by m_predictionMutex
    std::thread m_thread;
};
