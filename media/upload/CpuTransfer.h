#pragma once

#include "FrameTransfer.h"

#include <QImage>

#include <array>

/// Frames in main memory, copied into one texture.
class CpuTransfer : public FrameTransfer
{
public:
    explicit CpuTransfer(const GlEntryPoints &gl);

    GLuint create() override;
    void release() override;
    void allocate(const QSize &size) override;
    bool decodesInContext() const override { return false; }
    void *beginFrame(int buffer) override;
    void endFrame(int) override {}
    GLuint upload(int buffer) override;

private:
    const GlEntryPoints m_gl;
    GLuint m_texture = 0;
    std::array<QImage, 2> m_images;
    std::array<uchar *, 2> m_bits{}; ///< the images' pixels; asking an image could copy it
};
