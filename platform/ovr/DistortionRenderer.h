#pragma once

#include "DistortionMesh.h"

#include <QOpenGLBuffer>
#include <QOpenGLShaderProgram>

#include <array>
#include <memory>

/// Draws the pictures of both eyes through the meshes of a headset, with OpenGL 2.1 or OpenGL ES 2.
/// Belongs to the context, and so to the thread, that it was made in; it may be destroyed with any
/// context or none current, before or after its own, for Qt keeps what it holds until its own is
/// current again or ends.
class DistortionRenderer
{
public:
    /// The part of a picture, at each edge, over which the vignette fades it to black, each
    /// colour where that one ends.
    static constexpr double kVignetteWidth = 0.0125;

    /// Null if the driver refuses, with its words in the log.
    static std::unique_ptr<DistortionRenderer> create(const std::array<DistortionMesh, 2> &eyes,
                                                      bool vignette);

    /// Fills the bound framebuffer's viewport. What no eye has seen becomes black, as does all of
    /// an eye whose texture is 0 or has no size. Leaves the context's state as it was.
    void draw(const ovrGLTexture textures[ovrEye_Count]);

private:
    struct Eye
    {
        QOpenGLBuffer vertices{QOpenGLBuffer::VertexBuffer};
        QOpenGLBuffer indices{QOpenGLBuffer::IndexBuffer};
        int indexCount = 0;
    };

    DistortionRenderer() = default;
    bool link(bool vignette);
    bool upload(const std::array<DistortionMesh, 2> &eyes);
    void drawEye(Eye &eye, const ovrGLTexture &texture);

    QOpenGLShaderProgram m_program;
    std::array<Eye, 2> m_eyes;
    int m_part = -1;
    int m_outermostTexels = -1;
};
