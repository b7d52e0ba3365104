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

    /// Makes the OpenGL names, each texture one black pixel: the driver prepares for drawing from
    /// it while the decoder starts. Gives the name of the first. Any context of the share group is
    /// current.
    virtual GLuint create() = 0;

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

constexpr unsigned char kBlackPixel[] = {0, 0, 0, 255};
constexpr GLint kRgba8 = 0x8058; ///< GL_RGBA8, which headers of OpenGL ES 2 do not name

/// Gives the texture that is bound room for frames of this size, filled or not, and linear
/// filtering and clamped edges, as the panorama reads it. `internalFormat` is OpenGL's.
void makeFrameTexture(const GlEntryPoints &gl, GLint internalFormat, const QSize &size,
                      const void *pixels = nullptr);
