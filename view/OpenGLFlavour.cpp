#include "OpenGLFlavour.h"

QSurfaceFormat::RenderableType openGLFlavour(bool headsetMode, bool forceOpenGl,
                                             const QString &videoPlugin)
{
    const bool libVlc = videoPlugin == QLatin1String("vlc")
        || videoPlugin == QLatin1String("vlc_hw");
    return headsetMode || forceOpenGl || libVlc ? QSurfaceFormat::OpenGL : QSurfaceFormat::OpenGLES;
}
