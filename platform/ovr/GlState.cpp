#include "GlState.h"

namespace {

constexpr std::array<GLenum, 5> kSwitches = {GL_DEPTH_TEST, GL_STENCIL_TEST, GL_SCISSOR_TEST,
                                             GL_CULL_FACE, GL_BLEND};

} // namespace

GlState::GlState(QOpenGLFunctions *gl)
    : m_gl(gl)
{
    for (std::size_t i = 0; i < m_attributes.size(); ++i) {
        const auto index = static_cast<GLuint>(i);
        Attribute &kept = m_attributes.at(i);
        gl->glGetVertexAttribiv(index, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &kept.enabled);
        gl->glGetVertexAttribiv(index, GL_VERTEX_ATTRIB_ARRAY_SIZE, &kept.size);
        gl->glGetVertexAttribiv(index, GL_VERTEX_ATTRIB_ARRAY_TYPE, &kept.type);
        gl->glGetVertexAttribiv(index, GL_VERTEX_ATTRIB_ARRAY_NORMALIZED, &kept.normalised);
        gl->glGetVertexAttribiv(index, GL_VERTEX_ATTRIB_ARRAY_STRIDE, &kept.stride);
        gl->glGetVertexAttribiv(index, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING, &kept.buffer);
        gl->glGetVertexAttribPointerv(index, GL_VERTEX_ATTRIB_ARRAY_POINTER, &kept.pointer);
    }
    for (std::size_t i = 0; i < kSwitches.size(); ++i) {
        m_switches.at(i) = gl->glIsEnabled(kSwitches.at(i));
        gl->glDisable(kSwitches.at(i));
    }
    gl->glGetBooleanv(GL_COLOR_WRITEMASK, m_colourMask.data());
    gl->glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    m_program = integer(GL_CURRENT_PROGRAM);
    m_vertices = integer(GL_ARRAY_BUFFER_BINDING);
    m_indices = integer(GL_ELEMENT_ARRAY_BUFFER_BINDING);
    m_textureUnit = integer(GL_ACTIVE_TEXTURE);
    gl->glActiveTexture(GL_TEXTURE0);
    m_texture = integer(GL_TEXTURE_BINDING_2D);
}

GlState::~GlState()
{
    m_gl->glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(m_texture));
    m_gl->glActiveTexture(static_cast<GLenum>(m_textureUnit));
    for (std::size_t i = 0; i < m_attributes.size(); ++i) {
        const auto index = static_cast<GLuint>(i);
        const Attribute &kept = m_attributes.at(i);
        m_gl->glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(kept.buffer));
        m_gl->glVertexAttribPointer(index, kept.size, static_cast<GLenum>(kept.type),
                                    static_cast<GLboolean>(kept.normalised), kept.stride,
                                    kept.pointer);
        if (kept.enabled != 0)
            m_gl->glEnableVertexAttribArray(index);
        else
            m_gl->glDisableVertexAttribArray(index);
    }
    m_gl->glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(m_vertices));
    m_gl->glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLuint>(m_indices));
    m_gl->glUseProgram(static_cast<GLuint>(m_program));
    m_gl->glColorMask(m_colourMask[0], m_colourMask[1], m_colourMask[2], m_colourMask[3]);
    for (std::size_t i = 0; i < kSwitches.size(); ++i)
        if (m_switches.at(i) != GL_FALSE)
            m_gl->glEnable(kSwitches.at(i));
}

GLint GlState::integer(GLenum name) const
{
    GLint value = 0;
    m_gl->glGetIntegerv(name, &value);
    return value;
}
