#pragma once

#include <QOpenGLShaderProgram>

#include <memory>

/// Shows a frame as it stands: copies the texture that is bound to unit 0 over the whole target,
/// pixel by pixel. Belongs to the OpenGL context that it was made in.
class CopyProgram
{
public:
    /// Null if the driver refuses it, with the driver's words in the log.
    static std::unique_ptr<CopyProgram> create();

    /// `pixels` is the size of the target.
    void draw(const QSize &pixels);

private:
    CopyProgram() = default;

    QOpenGLShaderProgram m_program;
    int m_vertex = -1;
    int m_viewportSize = -1;
};
