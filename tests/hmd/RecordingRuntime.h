#pragma once

#include "ovr.h"

#include <QImage>
#include <QStringList>

#include <functional>

/// The headset runtime's functions as seen from the player, in place of the layer: they write down
/// who calls them, with what, and give what the test has put here. Main thread, but for the search.
struct RecordingRuntime
{
    ovrHmdDesc headset;
    bool present = true;
    QByteArray error; ///< why a headset cannot be used
    ovrPosef pose;
    bool notice = false;
    QStringList calls;                   ///< in order, without those of the search
    ovrGLTexture textures[ovrEye_Count]; ///< of the last frame
    std::function<void()> onEndFrame;    ///< with the window's context current

    /// What a DK1 and a DK2 tell of themselves, at a smaller resolution.
    static ovrHmdDesc dk1();
    static ovrHmdDesc dk2();

    /// Forgets what was called.
    void clear();

    /// The calls of the next whole frame of the headset's window, from its begin to its end; empty
    /// if none comes.
    QStringList nextFrame();

    /// What the headset's window presents in the next frame: the buffer with both eyes, or its own
    /// picture where the runtime does not present. Null if none comes.
    QImage nextPicture();

    static RecordingRuntime &instance();
};
