#pragma once

#include "Viewport.h"

#include <QMatrix4x4>
#include <QOpenGLShaderProgram>

#include <memory>

/// What the panorama's shader is given for one frame.
struct PanoramaView
{
    QMatrix4x4 matViewInverse; ///< turns a screen ray into the world
    Viewport viewport;
    float fovDeg = 90;
    float yawMin = 0; ///< edges of the source in longitude and latitude, radians
    float yawMax = 0;
    float pitchMin = 0;
    float pitchMax = 0;
    float cameraYaw = 0; ///< radians
    float cameraPitch = 0;

    bool operator==(const PanoramaView &other) const;
};

/// The linked program that draws the panorama over the whole target. Belongs to the OpenGL context,
/// and so to the thread, that it was made in.
class PanoramaProgram
{
public:
    /// Compiles and links; null if the driver refuses the text, with the driver's words in the log.
    static std::unique_ptr<PanoramaProgram> create(const QString &fragmentShader);

    /// Clears the target to black and draws the texture of this OpenGL name; 0 leaves it black.
    void draw(const PanoramaView &view, GLuint texture);

private:
    PanoramaProgram() = default;
    void findLocations();

    QOpenGLShaderProgram m_program;
    int m_vertex = -1;
    int m_matrix = -1;
    int m_matViewInverse = -1;
    int m_sampler = -1;
    int m_viewportSize = -1;
    int m_viewportSizeMin = -1;
    int m_viewportSizeRatio = -1;
    int m_viewportWidth = -1;
    int m_fov = -1;
    int m_yawMin = -1;
    int m_yawMax = -1;
    int m_pitchMin = -1;
    int m_pitchMax = -1;
    int m_cameraYaw = -1;
    int m_cameraPitch = -1;
};
