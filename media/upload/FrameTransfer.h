#pragma once

#include "GlEntryPoints.h"
#include "TransferMode.h"

#include <QSize>

#include <memory>

/// The road of a frame's pixels from the decoder's memory to a texture, in one of three modes.
/// Frames are tightly packed rows of 32-bit pixels. There are two buffers, 0 and 1: the decoder
/// fills one while the other may be uploaded.
///
/// Threads: the functions are grouped by the thread that calls them; no two calls of one group run
/// at once, and the two groups never work on the same buffer. `allocate` and `release` do not run
/// beside any other.
class FrameTransfer
{
public:
    virtual ~FrameTransfer() = default;

    /// Makes the OpenGL names. Any context of the share group is current.
    virtual void create() = 0;

    /// Deletes what `create` made. Any context of the share group is current.
    virtual void release() = 0;

    // --- decoder thread ---

    /// Makes room for frames of this size. The decoder's context is current.
    virtual void allocate(const QSize &size) = 0;

    /// Whether `beginFrame` and `endFrame` need the decoder's context to be current.
    virtual bool decodesInContext() const = 0;

    /// Where to write a frame into this buffer; null if the driver gives no memory, and then no
    /// `endFrame` follows.
    virtual void *beginFrame(int buffer) = 0;

    /// The frame is written.
    virtual void endFrame(int buffer) = 0;

    // --- uploading thread ---

    /// Brings a buffer's frame into the texture whose name is given back. A context of the share
    /// group is current.
    virtual GLuint upload(int buffer) = 0;

    /// The transfer of a mode that has been chosen.
    static std::unique_ptr<FrameTransfer> make(TransferMode mode, const GlEntryPoints &gl);
};

/// Linear filtering and clamped edges for the texture that is bound, as the panorama reads it.
void setFrameTextureParameters(const GlEntryPoints &gl);
