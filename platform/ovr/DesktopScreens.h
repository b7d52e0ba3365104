#pragma once

#include <QPoint>
#include <QSize>

#include <optional>

/// The screens of the desktop as they were when they were noted, for other threads: those of Qt
/// come and go on the main thread.
namespace DesktopScreens {

/// Main thread.
void note();

/// The upper left, in the desktop's coordinates, of the screen that is a panel of so many pixels
/// and this width in metres; none if no screen fits. Monitors may have as many pixels, but are
/// larger. Any thread.
std::optional<QPoint> panel(const QSize &pixels, double width);

} // namespace DesktopScreens
