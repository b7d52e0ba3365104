#include "PanoramaProgram.h"

#include "OrbGlobalObject.h"

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

/// Which eye a pixel belongs to, and with it the matrix, the same for the whole of a draw in place
/// of found out for each pixel, which is a fifth of its work without a graphics processor.
QString withEyeOfTheDraw(QString shader)
{
    const QString matrix = QStringLiteral(
        "(step(uViewportWidth,gl_FragCoord.x)*uMatViewInverseRight) + "
        "(step(-uViewportWidth,-gl_FragCoord.x)*uMatViewInverseLeft)");
    const QString left = QStringLiteral("step(uViewportWidth,gl_FragCoord.x)*uViewportWidth");
    const QString declaration = QStringLiteral("uniform mat4 uMatViewInverse;");
    if (!shader.contains(matrix))
        return shader;
    return shader.replace(declaration, declaration + QStringLiteral("uniform float uEyeLeft;"))
        .replace(matrix, QStringLiteral("uMatViewInverse"))
        .replace(left, QStringLiteral("uEyeLeft"));
}

constexpr GLfloat kQuad[] = {0, 0, 0, 1, 1, 1, 1, 0};
constexpr GLfloat kLeftHalf[] = {0, 0, 0, 1, 0.5, 1, 0.5, 0};
constexpr GLfloat kRightHalf[] = {0.5, 0, 0.5, 1, 1, 1, 1, 0};

} // namespace

PanoramaView PanoramaView::of(const OrbGlobalObject &state, const Viewport &viewport)
{
    PanoramaView view;
    view.matViewInverse = state.rotationMatrix();
    view.viewport = viewport;
    view.fovDeg = state.fov();
    view.yawMin = state.yawMin();
    view.yawMax = state.yawMax();
    view.pitchMin = state.pitchMin();
    view.pitchMax = state.pitchMax();
    view.cameraYaw = state.yaw();
    view.cameraPitch = state.pitch();
    return view;
}

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
                                            withEyeOfTheDraw(withNeutralInputs(fragmentShader)))
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
    m_eyes.left = m_program.uniformLocation("uEyeLeft");
    m_eyes.lensCenterLeft = m_program.uniformLocation("uLensCenterLeft");
    m_eyes.lensCenterRight = m_program.uniformLocation("uLensCenterRight");
    m_eyes.screenCenterLeft = m_program.uniformLocation("uScreenCenterLeft");
    m_eyes.screenCenterRight = m_program.uniformLocation("uScreenCenterRight");
    m_eyes.scale = m_program.uniformLocation("uScale");
    m_eyes.scaleIn = m_program.uniformLocation("uScaleIn");
    m_eyes.hmdWarpParam = m_program.uniformLocation("uHmdWarpParam");
    m_eyes.scaleCorrector = m_program.uniformLocation("uScaleCorrector");

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
    begin(view, texture);
    if (texture != 0) {
        m_program.setUniformValue(m_matViewInverse, view.matViewInverse);
        drawQuad(kQuad);
    }
    m_program.release();
}

void PanoramaProgram::drawEyes(const PanoramaView &view, const EyesView &eyes, GLuint texture)
{
    begin(view, texture);
    if (texture != 0) {
        m_program.setUniformValue(m_eyes.lensCenterLeft, eyes.lensCenterLeft);
        m_program.setUniformValue(m_eyes.lensCenterRight, eyes.lensCenterRight);
        m_program.setUniformValue(m_eyes.screenCenterLeft, eyes.screenCenterLeft);
        m_program.setUniformValue(m_eyes.screenCenterRight, eyes.screenCenterRight);
        m_program.setUniformValue(m_eyes.scale, eyes.scale);
        m_program.setUniformValue(m_eyes.scaleIn, eyes.scaleIn);
        m_program.setUniformValue(m_eyes.hmdWarpParam, eyes.hmdWarpParam);
        m_program.setUniformValue(m_eyes.scaleCorrector, eyes.scaleCorrector);
        m_program.setUniformValue(m_matViewInverse, eyes.matViewInverseLeft);
        m_program.setUniformValue(m_eyes.left, 0.0F);
        drawQuad(kLeftHalf);
        m_program.setUniformValue(m_matViewInverse, eyes.matViewInverseRight);
        m_program.setUniformValue(m_eyes.left, view.viewport.width);
        drawQuad(kRightHalf);
    }
    m_program.release();
}

/// Sets all that does not differ between eyes, and clears.
void PanoramaProgram::begin(const PanoramaView &view, GLuint texture)
{
    QOpenGLContext *context = QOpenGLContext::currentContext();
    QOpenGLFunctions *gl = context->functions();

    m_program.bind();
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
}

void PanoramaProgram::drawQuad(const GLfloat *corners)
{
    m_program.enableAttributeArray(m_vertex);
    m_program.setAttributeArray(m_vertex, corners, 2);
    QOpenGLContext::currentContext()->functions()->glDrawArrays(GL_TRIANGLE_FAN, 0, 4);
    m_program.disableAttributeArray(m_vertex);
}
