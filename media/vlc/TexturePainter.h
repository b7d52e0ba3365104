#pragma once

#include <QOpenGLShaderProgram>

/// Draws a frame of libVLC over the whole target, with red and blue put right. Belongs to the
/// OpenGL context, and so to the thread, that it first draws in.
class TexturePainter
{
public:
    void draw(GLuint texture);

private:
    void build();

    QOpenGLShaderProgram m_program;
};
