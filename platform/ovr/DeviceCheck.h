#pragma once

#include "HeadsetDevice.h"

/// Whether what a device says of itself can be worked with.
namespace DeviceCheck {

/// Whether all tangents lie between 0.01 and 100.
bool isUsable(const ovrFovPort &fov);

/// For users, why a headset cannot be used; empty if it can.
std::string complaint(const HeadsetDevice &device);

} // namespace DeviceCheck
