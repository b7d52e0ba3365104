#pragma once

#include <QString>
#include <QSurfaceFormat>

/// Which kind of OpenGL the program renders with. The headset and libVLC's frame upload need
/// desktop OpenGL; everything else runs on OpenGL ES.
///
/// `forceOpenGl` is the user's setting, `headsetMode` whether the program starts for a headset,
/// `videoPlugin` the id of the current video backend.
QSurfaceFormat::RenderableType openGLFlavour(bool headsetMode, bool forceOpenGl,
                                             const QString &videoPlugin);
