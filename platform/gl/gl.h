#pragma once

/// What the window system holds of the OpenGL context that is current on the calling thread, by GLX
/// or by EGL.
namespace gl {

struct CurrentSurface
{
    void *display = nullptr;         ///< Display or EGLDisplay; null without a current context
    unsigned long long drawable = 0; ///< GLXDrawable or EGLSurface
};

/// The surface that the current context draws into.
CurrentSurface currentSurface();

/// How many refreshes of the screen the current surface's swaps wait for at least; 0 for none.
/// False where the window system offers no choice.
bool setSwapInterval(int refreshes);

} // namespace gl
