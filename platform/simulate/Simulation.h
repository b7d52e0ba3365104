#pragma once

#include <QMap>
#include <QString>

#include <optional>

/// Devices that are played from a script in place of real ones. The environment variable
/// ORBIX_SIMULATE lists them, such as "headset,hands:poses/swipe.json": names, each with the file
/// of its script where it wants one. Without the variable there is none.
namespace Simulation {

/// The devices of such a list with their scripts, as absolute paths from `folder`; an empty path
/// for a device without one. Paths hold no comma.
QMap<QString, QString> devices(const QString &list, const QString &folder);

/// The folder that relative scripts start at, the one in which the program was started. Before the
/// first `script`; main thread.
void setFolder(const QString &folder);

/// The script of a simulated device, perhaps empty; none if the device is not simulated. Any
/// thread.
std::optional<QString> script(const QString &device);

} // namespace Simulation
