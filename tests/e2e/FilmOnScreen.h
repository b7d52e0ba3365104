#pragma once

#include "ClipWriter.h"

class Player;

/// What can be seen of a film while the program fills the screen with a view of 90 degrees to the
/// film's middle.
namespace FilmOnScreen {

/// Watches until several frames of the clip have been seen, each later in it than the one before
/// and with its colours within 6 of 255. What was on the screen before the first of them may be
/// anything. Returns what was wrong, empty if nothing was.
QString watch(const Clip &clip);

/// Starts the program with `arguments`, filling the screen, and waits for its first picture.
void start(Player &player, const QStringList &arguments = {});

/// Ends the program and tells how, as Player::ending does.
QString end(Player &player);

} // namespace FilmOnScreen
