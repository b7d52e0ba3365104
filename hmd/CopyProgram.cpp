#include "CopyProgram.h"

#include <QLoggingCategory>
#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace {

Q_LOGGING_CATEGORY(lcHmd, "orbix.hmd")

constexpr char kVertexShader[] = "attribute highp vec4 vertex;\n"
                                 "attribute highp vec4 texture;\n"
                                 "uniform highp mat4 matrix;\n"
                                 "void main(void)\n"
                                 "{\n"
                                 "   gl_Position = matrix * vertex;\n"
                                 "}";

constexpr char kFragmentShader[] = "#ifdef GL_ES \n"
                                   "precision highp float; \n"
                                   "#endif \n"
                                   "uniform sampler2D src;\n"
                                   "uniform vec2 uViewportSize;\n"
                                   "void main() {\n"
                                   "   vec2 pixel;\n"
                                   "   pixel.x = gl_FragCoord.x/uViewportSize.x;\n"
                                   "   pixel.y = gl_FragCoord.y/uViewportSize.y;"
                                   "   highp vec4 color = texture2D(src,pixel);\n"
                                   "   gl_FragColor = vec4(color.r,color.g,color.b,color.a);\n"
                                   "}\n";

constexpr GLfloat kQuad[] = {0, 0, 0, 1, 1, 1, 1, 0};

} // namespace

std::unique_ptr<CopyProgram> CopyProgram::create()
{
    std::unique_ptr<CopyProgram> made(new CopyProgram);
    QOpenGLShaderProgram &program = made->m_program;
    if (!program.addShaderFromSourceCode(QOpenGLShader::Vertex, kVertexShader)
        || !program.addShaderFromSourceCode(QOpenGLShader::Fragment, kFragmentShader)
        || !program.link()) {
        qCWarning(lcHmd, "The program that shows the frame cannot be built: %s",
                  qUtf8Printable(program.log()));
        return nullptr;
    }
    made->m_vertex = program.attributeLocation("vertex");
    made->m_viewportSize = program.uniformLocation("uViewportSize");
    QMatrix4x4 unitSquare;
    unitSquare.ortho(QRect(0, 0, 1, 1));
    program.bind();
    program.setUniformValue("matrix", unitSquare);
    program.setUniformValue("src", 0);
    program.release();
    return made;
}

void CopyProgram::draw(const QSize &pixels)
{
    m_program.bind();
    m_program.setUniformValue(m_viewportSize, pixels);
    m_program.enableAttributeArray(m_vertex);
    m_program.setAttributeArray(m_vertex, kQuad, 2);
    QOpenGLContext::currentContext()->functions()->glDrawArrays(GL_TRIANGLE_FAN, 0, 4);
    m_program.disableAttributeArray(m_vertex);
    m_program.release();
}
