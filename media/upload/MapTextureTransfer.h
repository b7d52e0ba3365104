#pragma once

#include "FrameTransfer.h"

#include <array>

/// Frames written straight into mapped textures, which are shown in turn: no copy at all. Needs the
/// extension GL_INTEL_map_texture; a texture of linear layout has packed rows.
class MapTextureTransfer : public FrameTransfer
{
public:
    explicit MapTextureTransfer(const GlEntryPoints &gl);

    GLuint create() override;
    void release() override;
    void allocate(const QSize &size) override;
    bool decodesInContext() const override { return true; }
    void *beginFrame(int buffer) override;
    void endFrame(int buffer) override;
    GLuint upload(int buffer) override;

private:
    const GlEntryPoints m_gl;
    std::array<GLuint, 2> m_textures{};
};
