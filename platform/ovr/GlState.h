#pragma once

#include <QOpenGLFunctions>

#include <array>

/// What drawing by vertex attributes 0 to 3, with a texture in unit 0, changes of the current
/// context's state. Kept from the constructor on, and put back by the destructor. In between unit 0
/// is active, and nothing keeps a fragment from the target: no depth, stencil or scissor test, no
/// culling, blending or mask.
class GlState
{
public:
    explicit GlState(QOpenGLFunctions *gl);
    GlState(const GlState &) = delete;
    GlState &operator=(const GlState &) = delete;
    ~GlState();

private:
    struct Attribute
    {
        GLint enabled = 0;
        GLint size = 4;
        GLint type = GL_FLOAT;
        GLint normalised = 0;
        GLint stride = 0;
        GLint buffer = 0;
        void *pointer = nullptr;
    };

    GLint integer(GLenum name) const;

    QOpenGLFunctions *m_gl;
    std::array<Attribute, 4> m_attributes;
    std::array<GLboolean, 5> m_switches{};
    std::array<GLboolean, 4> m_colourMask{};
    GLint m_program = 0;
    GLint m_vertices = 0;
    GLint m_indices = 0;
    GLint m_textureUnit = 0;
    GLint m_texture = 0;
};
