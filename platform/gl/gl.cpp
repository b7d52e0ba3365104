#include "gl.h"

#include <string>

// Last, for the macros of the X headers.
#include <EGL/egl.h>
#include <GL/glx.h>

namespace {

bool isByEgl()
{
    return eglGetCurrentContext() != EGL_NO_CONTEXT;
}

bool listed(const char *extensions, const std::string &name)
{
    return (' ' + std::string(extensions != nullptr ? extensions : "") + ' ').find(' ' + name + ' ')
        != std::string::npos;
}

/// The function of an extension; null unless the context's screen has the extension, for a library
/// gives addresses of functions that do not work as well.
template <typename Function>
Function glxFunction(Display *display, const char *extension, const char *name)
{
    int screen = 0;
    glXQueryContext(display, glXGetCurrentContext(), GLX_SCREEN, &screen);
    if (!listed(glXQueryExtensionsString(display, screen), extension))
        return nullptr;
    return reinterpret_cast<Function>(glXGetProcAddress(reinterpret_cast<const GLubyte *>(name)));
}

} // namespace

gl::CurrentSurface gl::currentSurface()
{
    if (isByEgl())
        return {eglGetCurrentDisplay(),
                reinterpret_cast<unsigned long long>(eglGetCurrentSurface(EGL_DRAW))};
    return {glXGetCurrentDisplay(), glXGetCurrentDrawable()};
}

bool gl::setSwapInterval(int refreshes)
{
    if (refreshes < 0)
        return false;
    if (isByEgl())
        return eglSwapInterval(eglGetCurrentDisplay(), refreshes) == EGL_TRUE;

    Display *display = glXGetCurrentDisplay();
    if (display == nullptr)
        return false;
    if (const auto set = glxFunction<PFNGLXSWAPINTERVALEXTPROC>(display, "GLX_EXT_swap_control",
                                                                "glXSwapIntervalEXT")) {
        set(display, glXGetCurrentDrawable(), refreshes);
        return true;
    }
    if (const auto set = glxFunction<PFNGLXSWAPINTERVALMESAPROC>(display, "GLX_MESA_swap_control",
                                                                 "glXSwapIntervalMESA"))
        return set(static_cast<unsigned>(refreshes)) == 0;
    return false;
}
