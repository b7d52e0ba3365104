#pragma once

class QQuickWindow;

/// Lets a test see what becomes of a crash, in builds with the option ORBIX_CRASH_ON_PURPOSE only.
namespace CrashOnPurpose {

/// Has the program crash as the variable ORBIX_CRASH says: THREAD:WAY, with the threads "main",
/// "render" and "vlc" and the ways "null", "abort", "exception", "image", "heap" and "overflow".
/// The window's render thread crashes before its next frame, a thread of libVLC as soon as it has
/// something to say of what it opens. Without the variable nothing happens. Main thread.
void arm(QQuickWindow *window);

} // namespace CrashOnPurpose
