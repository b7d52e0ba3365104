#pragma once

#include "FrameTransfer.h"

#include <array>

/// Frames in mapped pixel buffer objects, which the driver copies into one texture. Desktop OpenGL.
class PixelBufferTransfer : public FrameTransfer
{
public:
    explicit PixelBufferTransfer(const GlEntryPoints &gl);

    GLuint create() override;
    void release() override;
    void allocate(const QSize &size) override;
    bool decodesInContext() const override { return true; }
    void *beginFrame(int buffer) override;
    void endFrame(int buffer) override;
    GLuint upload(int buffer) override;

private:
    qopengl_GLsizeiptr bytes() const;

    const GlEntryPoints m_gl;
    GLuint m_texture = 0;
    std::array<GLuint, 2> m_pixelBuffers{};
    QSize m_size;
};
