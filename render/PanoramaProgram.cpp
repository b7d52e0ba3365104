#include "PanoramaProgram.h"

#include <QLoggingCategory>
#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace {

Q_LOGGING_CATEGORY(lcRender, "orbix.render")

constexpr char kVertexShader[] = "attribute highp vec4 vertex;\n"
                                 "uniform highp mat4 matrix;\n"
                                 "void main(void)\n"
                                 "{\n"
                                 "   gl_Position = matrix * vertex;\n"
                                 "}";

/// The inputs of the colour chain that never change in a window. As constants they let the driver
/// leave out most of the chain, which is a third of the work of a pixel without a graphics
/// processor.
constexpr const char *kNeutralInputs[] = {"uBrightness",       "uContrast",        "uHue",
                                          "uSaturation",       "uVibrance",        "uTime",
                                          "uVignettingRadius", "uVignettingAmount"};

QString withNeutralInputs(QString shader)
{
    for (const char *input : kNeutralInputs)
        shader.replace(QStringLiteral("uniform float %1;").arg(QLatin1String(input)),
                       QStringLiteral("const float %1 = 0.0;").arg(QLatin1String(input)));
    return shader.replace(QStringLiteral("uniform mat4 uColorMatrix;"),
                          QStringLiteral("const mat4 uColorMatrix = mat4(1.0);"));
}

constexpr GLfloat kQuad[] = {0, 0, 0, 1, 1, 1, 1, 0};

} // namespace

bool PanoramaView::operator==(const PanoramaView &other) const
{
    return matViewInverse == other.matViewInverse && viewport == other.viewport
        && fovDeg == other.fovDeg && yawMin == other.yawMin && yawMax == other.yawMax
        && pitchMin == other.pitchMin && pitchMax == other.pitchMax && cameraYaw == other.cameraYaw
        && cameraPitch == other.cameraPitch;
}

std::unique_ptr<PanoramaProgram> PanoramaProgram::create(const QString &fragmentShader)
{
    std::unique_ptr<PanoramaProgram> made(new PanoramaProgram);
    QOpenGLShaderProgram &program = made->m_program;
    if (!program.addShaderFromSourceCode(QOpenGLShader::Vertex, kVertexShader)
        || !program.addShaderFromSourceCode(QOpenGLShader::Fragment,
                                            withNeutralInputs(fragmentShader))
        || !program.link()) {
        qCWarning(lcRender, "The panorama's shader cannot be built: %s",
                  qUtf8Printable(program.log()));
        return nullptr;
    }
    made->findLocations();
    return made;
}

void PanoramaProgram::findLocations()
{
    m_vertex = m_program.attributeLocation("vertex");
    m_matrix = m_program.uniformLocation("matrix");
    m_matViewInverse = m_program.uniformLocation("uMatViewInverse");
    m_sampler = m_program.uniformLocation("uSampler");
    m_viewportSize = m_program.uniformLocation("uViewportSize");
    m_viewportSizeMin = m_program.uniformLocation("uViewportSizeMin");
    m_viewportSizeRatio = m_program.uniformLocation("uViewportSizeRatio");
    m_viewportWidth = m_program.uniformLocation("uViewportWidth");
    m_fov = m_program.uniformLocation("uFov");
    m_yawMin = m_program.uniformLocation("uYawMin");
    m_yawMax = m_program.uniformLocation("uYawMax");
    m_pitchMin = m_program.uniformLocation("uPitchMin");
    m_pitchMax = m_program.uniformLocation("uPitchMax");
    m_cameraYaw = m_program.uniformLocation("uCameraYaw");
    m_cameraPitch = m_program.uniformLocation("uCameraPitch");

    // What never changes in a window: a quad over the whole target, and texture unit 0.
    QMatrix4x4 unitSquare;
    unitSquare.ortho(0, 1, 0, 1, -1, 1);
    m_program.bind();
    m_program.setUniformValue(m_matrix, unitSquare);
    m_program.setUniformValue(m_sampler, 0);
    m_program.release();
}

void PanoramaProgram::draw(const PanoramaView &view, GLuint texture)
{
    QOpenGLContext *context = QOpenGLContext::currentContext();
    QOpenGLFunctions *gl = context->functions();

    m_program.bind();
    m_program.setUniformValue(m_matViewInverse, view.matViewInverse);
    m_program.setUniformValue(m_viewportSize, view.viewport.size);
    m_program.setUniformValue(m_viewportSizeMin, view.viewport.sizeMin);
    m_program.setUniformValue(m_viewportSizeRatio, view.viewport.sizeRatio);
    m_program.setUniformValue(m_viewportWidth, view.viewport.width);
    m_program.setUniformValue(m_fov, view.fovDeg);
    m_program.setUniformValue(m_yawMin, view.yawMin);
    m_program.setUniformValue(m_yawMax, view.yawMax);
    m_program.setUniformValue(m_pitchMin, view.pitchMin);
    m_program.setUniformValue(m_pitchMax, view.pitchMax);
    m_program.setUniformValue(m_cameraYaw, view.cameraYaw);
    m_program.setUniformValue(m_cameraPitch, view.cameraPitch);

    if (!context->isOpenGLES()) // OpenGL ES has no such switch
        gl->glEnable(GL_TEXTURE_2D);
    gl->glActiveTexture(GL_TEXTURE0);
    gl->glBindTexture(GL_TEXTURE_2D, texture);
    gl->glClearColor(0, 0, 0, 1);
    gl->glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);

    if (texture != 0) {
        m_program.enableAttributeArray(m_vertex);
        m_program.setAttributeArray(m_vertex, kQuad, 2);
        gl->glDrawArrays(GL_TRIANGLE_FAN, 0, 4);
        m_program.disableAttributeArray(m_vertex);
    }
    m_program.release();
}
