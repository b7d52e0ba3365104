#pragma once

#include "HandScene.h"

#include <QPointF>
#include <QVector4D>

#include <optional>

/// The pointer that a finger moves over the window.
namespace PointerStep {

struct State
{
    /// x and y in pixels of the window, the depth from 0 to 0.9, and 1 while it shows, else -1.
    QVector4D pointer{0, 0, 0, -1};
    bool isPressed = false; ///< a press has been posted, and no release
};

/// To be posted to the window.
struct MouseEvent
{
    enum Kind { Press, Release, Move };

    Kind kind = Move;
    QPointF place; ///< pixels
};

struct Result
{
    State state;
    std::optional<MouseEvent> mouse;
};

/// Moves the pointer by the newest pointing finger of the last 20 frames, meaned over as many
/// frames as the options say; resets it if none points. A finger that enters the touch zone
/// presses, one that leaves it for hovering releases, and hovering moves.
Result step(const HandScene &scene, const State &state, bool isMenuOpen);

/// Hides the pointer and puts it into the middle of the window, where it moves the mouse while the
/// menu is open.
Result reset(const HandOptions &options, const State &state, bool isMenuOpen);

} // namespace PointerStep
