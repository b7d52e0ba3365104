#pragma once

#include "LensModel.h"
#include "ovr.h"

#include <functional>
#include <memory>
#include <string>

/// What a headset has to give; the runtime's functions do the rest. An object is made on one
/// thread and then belongs to another, alone.
class HeadsetDevice
{
public:
    HeadsetDevice() = default;
    HeadsetDevice(const HeadsetDevice &) = delete;
    HeadsetDevice &operator=(const HeadsetDevice &) = delete;
    virtual ~HeadsetDevice() = default;

    /// Stays the same, and its text where it is, for the life of the object.
    virtual ovrHmdDesc description() const = 0;
    virtual LensModel lens() const = 0;

    /// The orientation `aheadSeconds` from now, 0 for the last one known. What a device gives
    /// before its first sample, or when it is broken, may be anything.
    virtual ovrPosef pose(double aheadSeconds) = 0;

    virtual bool showsNotice() const { return false; }
    virtual void dismissNotice() {}
};

/// Opens the first headset; null if there is none. If there is one that cannot be used, `error`
/// says why, for users.
using OpenHeadset = std::function<std::unique_ptr<HeadsetDevice>(std::string *error)>;

/// Takes the place of the search for a headset from the next `ovrHmd_Create` on; for tests and
/// measurements.
void ovr_SetDevice(OpenHeadset open);
