#pragma once

#include "Viewport.h"

#include <QMatrix4x4>
#include <QOpenGLShaderProgram>

#include <memory>

class OrbGlobalObject;

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

    /// What the camera sees now in a target of this viewport.
    static PanoramaView of(const OrbGlobalObject &state, const Viewport &viewport);

    bool operator==(const PanoramaView &other) const;
};

/// What it is given beside for a target that holds both eyes of a headset, side by side.
struct EyesView
{
    QMatrix4x4 matViewInverseLeft; ///< as `matViewInverse`, of an eye
    QMatrix4x4 matViewInverseRight;
    QVector2D lensCenterLeft; ///< these four in fractions of the target
    QVector2D lensCenterRight;
    QVector2D screenCenterLeft;
    QVector2D screenCenterRight;
    QVector2D scale;
    QVector2D scaleIn;
    QVector4D hmdWarpParam;
    float scaleCorrector = 1; ///< vertical to horizontal field of view
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

    /// The same with a shader that was written for a headset: each eye into its half of the target.
    /// `view.viewport` is that of one eye, and `view.matViewInverse` counts for nothing.
    void drawEyes(const PanoramaView &view, const EyesView &eyes, GLuint texture);

private:
    PanoramaProgram() = default;
    void findLocations();
    void begin(const PanoramaView &view, GLuint texture);
    void drawQuad(const GLfloat *corners);

    struct EyesLocations
    {
        int left = -1;
        int lensCenterLeft = -1;
        int lensCenterRight = -1;
        int screenCenterLeft = -1;
        int screenCenterRight = -1;
        int scale = -1;
        int scaleIn = -1;
        int hmdWarpParam = -1;
        int scaleCorrector = -1;
    };

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
    EyesLocations m_eyes;
};
