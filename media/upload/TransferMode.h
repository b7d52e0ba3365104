#pragma once

#include <QString>

/// Where libVLC's pixels are written to.
enum TransferMode {
    TransferAuto = 0,              ///< not chosen yet
    TransferIntelMapTexture = 1,   ///< a mapped texture, two textures in turn
    TransferPixelBufferObject = 2, ///< a mapped pixel buffer, two in turn, one texture
    TransferCpu = 3                ///< main memory, two images in turn, one texture
};

/// Who copies a completed frame into the texture.
enum UploadRoute {
    RouteQueuedSlot = 0,    ///< a queued call; the caller's context is current
    RouteQueuedPaint = 1,   ///< the render thread in its next paint, in the scene's context
    RouteDecoderThread = 2, ///< the decoder thread at once, in its own context
    RouteWorkerThread = 3   ///< a thread for each frame, in a context of its own
};

/// The mode's name for users, empty while none is chosen.
QString transferModeText(TransferMode mode);

/// The mode to use when `requested` (0 to 3) was asked for. `mapsTextures`: the driver can map
/// textures; `hasDesktopFunctions`: the context has the functions of desktop OpenGL 2.1.
TransferMode chooseTransferMode(int requested, bool mapsTextures, bool hasDesktopFunctions);
