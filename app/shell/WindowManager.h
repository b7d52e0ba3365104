#pragma once

/// True if something manages the windows of this desktop: always but on an X server on which no
/// window manager runs, as on a wall of screens. Main thread, after the application exists.
bool hasWindowManager();
