#pragma once

#include <qopengl.h>

class QOpenGLContext;

/// The functions of OpenGL that carry frames, as plain pointers: a transfer calls them without a
/// look-up, and tests put recorders in their place. A function that the driver lacks is null.
struct GlEntryPoints
{
    void(QOPENGLF_APIENTRYP genTextures)(GLsizei count, GLuint *names);
    void(QOPENGLF_APIENTRYP deleteTextures)(GLsizei count, const GLuint *names);
    void(QOPENGLF_APIENTRYP bindTexture)(GLenum target, GLuint name);
    void(QOPENGLF_APIENTRYP texParameteri)(GLenum target, GLenum parameter, GLint value);
    void(QOPENGLF_APIENTRYP texParameterf)(GLenum target, GLenum parameter, GLfloat value);
    void(QOPENGLF_APIENTRYP texImage2D)(GLenum target, GLint level, GLint internalFormat,
                                        GLsizei width, GLsizei height, GLint border, GLenum format,
                                        GLenum type, const void *pixels);
    void(QOPENGLF_APIENTRYP texSubImage2D)(GLenum target, GLint level, GLint x, GLint y,
                                           GLsizei width, GLsizei height, GLenum format,
                                           GLenum type, const void *pixels);
    void(QOPENGLF_APIENTRYP activeTexture)(GLenum unit);
    void(QOPENGLF_APIENTRYP getIntegerv)(GLenum name, GLint *value);

    // Pixel buffer objects, desktop OpenGL.
    void(QOPENGLF_APIENTRYP genBuffers)(GLsizei count, GLuint *names);
    void(QOPENGLF_APIENTRYP deleteBuffers)(GLsizei count, const GLuint *names);
    void(QOPENGLF_APIENTRYP bindBuffer)(GLenum target, GLuint name);
    void(QOPENGLF_APIENTRYP bufferData)(GLenum target, qopengl_GLsizeiptr bytes, const void *data,
                                        GLenum usage);
    void *(QOPENGLF_APIENTRYP mapBuffer)(GLenum target, GLenum access);
    GLboolean(QOPENGLF_APIENTRYP unmapBuffer)(GLenum target);

    // The extension GL_INTEL_map_texture.
    void(QOPENGLF_APIENTRYP syncTexture)(GLuint name);
    void(QOPENGLF_APIENTRYP unmapTexture2D)(GLuint name, GLint level);
    void *(QOPENGLF_APIENTRYP mapTexture2D)(GLuint name, GLint level, GLbitfield access,
                                            GLint *stride, GLenum *layout);

    /// The functions of a context, which is current.
    static GlEntryPoints of(const QOpenGLContext &context);
};
