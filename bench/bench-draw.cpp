// Drawing one frame of the panorama, against a plain copy of the same texture to the same target,
// with desktop OpenGL and OpenGL ES.

#include "NoisePanorama.h"
#include "OrbShaderCodeBuilder.h"
#include "RatioTable.h"

#include <QGuiApplication>
#include <QMetaEnum>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

constexpr char kCopyVertexShader[] = "attribute highp vec4 vertex;\n"
                                     "varying highp vec2 coordinate;\n"
                                     "void main()\n"
                                     "{\n"
                                     "    coordinate = vertex.xy;\n"
                                     "    gl_Position = vec4(2.0 * vertex.xy - 1.0, 0.0, 1.0);\n"
                                     "}\n";

constexpr char kCopyFragmentShader[] =
    "uniform sampler2D uSampler;\n"
    "varying highp vec2 coordinate;\n"
    "void main() { gl_FragColor = texture2D(uSampler, coordinate); }\n";

constexpr GLfloat kQuad[] = {0, 0, 0, 1, 1, 1, 1, 0};

/// A context with the panorama's texture in it.
class Canvas
{
public:
    explicit Canvas(QSurfaceFormat::RenderableType kind);
    ~Canvas();

    /// Makes the context current; false if the machine does not have this kind of OpenGL.
    bool begin();

    GLuint texture() const { return m_texture; }
    QOpenGLFunctions *functions() const { return m_context.functions(); }

private:
    QOffscreenSurface m_surface;
    QOpenGLContext m_context;
    GLuint m_texture = 0;
    QSurfaceFormat::RenderableType m_kind;
};

Canvas::Canvas(QSurfaceFormat::RenderableType kind)
    : m_kind(kind)
{
    QSurfaceFormat format;
    format.setRenderableType(kind);
    m_surface.setFormat(format);
    m_surface.create();
    m_context.setFormat(format);
    if (!m_context.create() || !begin())
        return;
    m_texture = NoisePanorama::texture();
}

Canvas::~Canvas()
{
    if (begin())
        functions()->glDeleteTextures(1, &m_texture);
}

bool Canvas::begin()
{
    return m_context.makeCurrent(&m_surface)
        && m_context.isOpenGLES() == (m_kind == QSurfaceFormat::OpenGLES);
}

/// Runs `draw` over and over into a target of `size` and waits for each frame.
template <typename Draw>
void drawFrames(benchmark::State &state, Canvas &canvas, const QSize &size, const Draw &draw)
{
    QOpenGLFramebufferObject target(size, QOpenGLFramebufferObject::CombinedDepthStencil);
    target.bind();
    canvas.functions()->glViewport(0, 0, size.width(), size.height());
    for ([[maybe_unused]] auto _ : state) {
        draw();
        canvas.functions()->glFinish();
    }
    if (canvas.functions()->glGetError() != GL_NO_ERROR)
        state.SkipWithError("OpenGL reports an error");
}

void drawPanorama(benchmark::State &state, Canvas &canvas, const QSize &size, int projection)
{
    if (!canvas.begin())
        return state.SkipWithError("There is no such OpenGL here");
    OrbShaderCodeBuilder builder;
    builder.setProjection(projection);
    const auto program = PanoramaProgram::create(builder.build(false));
    if (!program)
        return state.SkipWithError("The shader cannot be built");

    const PanoramaView view = NoisePanorama::view(size);
    drawFrames(state, canvas, size, [&] { program->draw(view, canvas.texture()); });
}

void drawCopy(benchmark::State &state, Canvas &canvas, const QSize &size)
{
    if (!canvas.begin())
        return state.SkipWithError("There is no such OpenGL here");
    QOpenGLShaderProgram program;
    if (!program.addShaderFromSourceCode(QOpenGLShader::Vertex, kCopyVertexShader)
        || !program.addShaderFromSourceCode(QOpenGLShader::Fragment, kCopyFragmentShader)
        || !program.link())
        return state.SkipWithError("The shader of the copy cannot be built");

    QOpenGLFunctions *gl = canvas.functions();
    const int vertex = program.attributeLocation("vertex");
    program.bind();
    program.setUniformValue("uSampler", 0);
    drawFrames(state, canvas, size, [&] {
        gl->glActiveTexture(GL_TEXTURE0);
        gl->glBindTexture(GL_TEXTURE_2D, canvas.texture());
        gl->glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        program.enableAttributeArray(vertex);
        program.setAttributeArray(vertex, kQuad, 2);
        gl->glDrawArrays(GL_TRIANGLE_FAN, 0, 4);
        program.disableAttributeArray(vertex);
    });
}

template <typename Run>
void addBenchmark(const std::string &name, const Run &run)
{
    benchmark::RegisterBenchmark(name.c_str(), run)->UseRealTime();
}

void addBenchmarks(Canvas &canvas, const std::string &kind, const QSize &size)
{
    const std::string target = "/" + kind + "/" + std::to_string(size.width()) + "x"
        + std::to_string(size.height());
    const std::string copy = "copy" + target;
    const auto projections = QMetaEnum::fromType<OrbShaderCodeBuilder::ShaderProjection>();
    for (int i = 0; i < OrbShaderCodeBuilder::LAST_VALUE_PROJECTION; ++i) {
        const std::string projection =
            QByteArray(projections.valueToKey(i)).toLower().toStdString();
        addBenchmark(projection + target, [&canvas, size, i, copy](benchmark::State &state) {
            drawPanorama(state, canvas, size, i);
            state.SetLabel(copy);
        });
    }
    addBenchmark(copy, [&canvas, size](benchmark::State &state) { drawCopy(state, canvas, size); });
}

} // namespace

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    Canvas desktop(QSurfaceFormat::OpenGL);
    Canvas embedded(QSurfaceFormat::OpenGLES);
    for (const QSize size : {QSize(1000, 600), QSize(1920, 1080)}) {
        addBenchmarks(desktop, "gl", size);
        addBenchmarks(embedded, "es", size);
    }
    return runBenchmarks(argc, argv);
}
