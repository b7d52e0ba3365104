#include "TexturePainter.h"

#include <QLoggingCategory>
#include <QMatrix4x4>
#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace {

Q_LOGGING_CATEGORY(lcMedia, "orbix.media")

constexpr char kVertexShader[] = "attribute highp vec4 vertex;\n"
                                 "attribute highp vec4 texture;\n"
                                 "uniform highp mat4 matrix;\n"
                                 "varying highp vec4 texCoord;\n"
                                 "void main(void)\n"
                                 "{\n"
                                 "   gl_Position = matrix * vertex;\n"
                                 "   texCoord = texture;\n"
                                 "}\n";

constexpr char kFragmentShader[] = "uniform sampler2D src;\n"
                                   "varying highp vec4 texCoord;\n"
                                   "void main() {\n"
                                   "highp vec4 color = texture2D(src,texCoord.xy);\n"
                                   "gl_FragColor = vec4(color.b,color.g,color.r,color.a);\n"
                                   "}\n";

constexpr GLfloat kQuad[] = {0, 0, 0, 1, 1, 1, 1, 0};

} // namespace

void TexturePainter::build()
{
    if (!m_program.addShaderFromSourceCode(QOpenGLShader::Vertex, kVertexShader)
        || !m_program.addShaderFromSourceCode(QOpenGLShader::Fragment, kFragmentShader)
        || !m_program.link())
        qCWarning(lcMedia, "The shader of the video item cannot be built: %s",
                  qUtf8Printable(m_program.log()));
}

void TexturePainter::draw(GLuint texture)
{
    if (m_program.shaders().isEmpty())
        build();
    if (!m_program.isLinked())
        return;
    QOpenGLFunctions *gl = QOpenGLContext::currentContext()->functions();
    gl->glActiveTexture(GL_TEXTURE0);
    gl->glBindTexture(GL_TEXTURE_2D, texture);
    m_program.bind();
    QMatrix4x4 unitSquare;
    unitSquare.ortho(QRect(QPoint(0, 0), QPoint(0, 0)));
    m_program.setUniformValue("matrix", unitSquare);
    m_program.setUniformValue("src", 0);
    const int vertex = m_program.attributeLocation("vertex");
    const int coordinate = m_program.attributeLocation("texture");
    for (const int attribute : {vertex, coordinate}) {
        m_program.enableAttributeArray(attribute);
        m_program.setAttributeArray(attribute, kQuad, 2);
    }
    gl->glClearColor(0, 0, 0, 0);
    gl->glClear(GL_COLOR_BUFFER_BIT);
    gl->glDrawArrays(GL_TRIANGLE_FAN, 0, 4);
    for (const int attribute : {vertex, coordinate})
        m_program.disableAttributeArray(attribute);
    m_program.release();
    gl->glBindTexture(GL_TEXTURE_2D, 0);
}
