#include "DesktopScreens.h"

#include <QGuiApplication>
#include <QScreen>

#include <cmath>
#include <mutex>
#include <vector>

namespace {

/// Screens tell their sizes roughly.
constexpr double kLargestMisfit = 1.5;

struct Screen
{
    QPoint corner;
    QSize pixels;
    double width = 0; ///< metres; 0 if it does not tell
};

struct Noted
{
    std::mutex mutex;
    std::vector<Screen> screens;
};

Noted &noted()
{
    static Noted it;
    return it;
}

} // namespace

void DesktopScreens::note()
{
    constexpr double kMmPerMetre = 1000;
    std::vector<Screen> found;
    const QList<QScreen *> screens = QGuiApplication::screens();
    found.reserve(std::size_t(screens.size()));
    for (const QScreen *screen : screens)
        found.push_back({screen->geometry().topLeft(),
                         (QSizeF(screen->size()) * screen->devicePixelRatio()).toSize(),
                         screen->physicalSize().width() / kMmPerMetre});
    const std::lock_guard lock(noted().mutex);
    noted().screens = std::move(found);
}

std::optional<QPoint> DesktopScreens::panel(const QSize &pixels, double width)
{
    const std::lock_guard lock(noted().mutex);
    const Screen *best = nullptr;
    for (const Screen &screen : noted().screens) {
        const bool fits = screen.pixels == pixels && screen.width <= width * kLargestMisfit;
        const auto misfit = [width](const Screen &s) { return std::abs(s.width - width); };
        if (fits && (!best || misfit(screen) < misfit(*best)))
            best = &screen;
    }
    return best ? std::optional<QPoint>(best->corner) : std::nullopt;
}
