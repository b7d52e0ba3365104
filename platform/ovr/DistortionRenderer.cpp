#include "DistortionRenderer.h"

#include "GlState.h"

#include <QLoggingCategory>
#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace {

Q_LOGGING_CATEGORY(lcOvr, "orbix.ovr")

constexpr char kVertexShader[] = R"(
attribute highp vec2 position;
attribute highp vec2 redAt;
attribute highp vec2 greenAt;
attribute highp vec2 blueAt;
varying highp vec2 red;
varying highp vec2 green;
varying highp vec2 blue;

void main()
{
    red = redAt;
    green = greenAt;
    blue = blueAt;
    gl_Position = vec4(position, 0.0, 1.0);
}
)";

// The other eye's picture may lie beside this one's in the texture: what is read is held within the
// eye's outermost texels, so that the filter takes nothing from beyond them.
constexpr char kFragmentShader[] = R"(
uniform sampler2D picture;
uniform highp vec4 part;
uniform highp vec4 outermostTexels;
varying highp vec2 red;
varying highp vec2 green;
varying highp vec2 blue;

lowp vec4 seen(highp vec2 at)
{
    highp vec2 within = step(vec2(0.0), at) * step(at, vec2(1.0));
    highp vec2 texel = clamp(part.xy + at * part.zw, outermostTexels.xy, outermostTexels.zw);
    highp float weight = within.x * within.y;
#ifdef VIGNETTE_WIDTH
    highp vec2 edge = min(at, 1.0 - at);
    weight *= clamp(min(edge.x, edge.y) / VIGNETTE_WIDTH, 0.0, 1.0);
#endif
    return texture2D(picture, texel) * weight;
}

void main()
{
    gl_FragColor = vec4(seen(red).r, seen(green).g, seen(blue).b, 1.0);
}
)";

constexpr std::array<const char *, 4> kAttributes = {"position", "redAt", "greenAt", "blueAt"};

/// How the caller wants its texture filtered is kept while it is drawn.
class TextureFilter
{
public:
    explicit TextureFilter(QOpenGLFunctions *gl)
        : m_gl(gl)
    {
        for (std::size_t i = 0; i < kParameters.size(); ++i) {
            gl->glGetTexParameteriv(GL_TEXTURE_2D, kParameters.at(i), &m_kept.at(i));
            gl->glTexParameteri(GL_TEXTURE_2D, kParameters.at(i), GL_LINEAR);
        }
    }
    TextureFilter(const TextureFilter &) = delete;
    TextureFilter &operator=(const TextureFilter &) = delete;
    ~TextureFilter()
    {
        for (std::size_t i = 0; i < kParameters.size(); ++i)
            m_gl->glTexParameteri(GL_TEXTURE_2D, kParameters.at(i), m_kept.at(i));
    }

private:
    static constexpr std::array<GLenum, 2> kParameters = {GL_TEXTURE_MIN_FILTER,
                                                          GL_TEXTURE_MAG_FILTER};

    QOpenGLFunctions *m_gl;
    std::array<GLint, 2> m_kept{};
};

} // namespace

std::unique_ptr<DistortionRenderer>
DistortionRenderer::create(const std::array<DistortionMesh, 2> &eyes, bool vignette)
{
    std::unique_ptr<DistortionRenderer> made(new DistortionRenderer);
    const GlState callers(QOpenGLContext::currentContext()->functions());
    if (!made->link(vignette)) {
        qCWarning(lcOvr, "The shader of the lenses' distortion cannot be built: %s",
                  qUtf8Printable(made->m_program.log()));
        return nullptr;
    }
    if (!made->upload(eyes)) {
        qCWarning(lcOvr, "The graphics memory has no room for the lenses' distortion.");
        return nullptr;
    }
    return made;
}

bool DistortionRenderer::link(bool vignette)
{
    const QByteArray head = vignette
        ? "#define VIGNETTE_WIDTH " + QByteArray::number(kVignetteWidth, 'f', 6) + '\n'
        : QByteArray();
    for (std::size_t i = 0; i < kAttributes.size(); ++i)
        m_program.bindAttributeLocation(kAttributes.at(i), static_cast<int>(i));
    if (!m_program.addShaderFromSourceCode(QOpenGLShader::Vertex, kVertexShader)
        || !m_program.addShaderFromSourceCode(QOpenGLShader::Fragment, head + kFragmentShader)
        || !m_program.link())
        return false;
    m_part = m_program.uniformLocation("part");
    m_outermostTexels = m_program.uniformLocation("outermostTexels");
    m_program.bind();
    m_program.setUniformValue("picture", 0);
    return true;
}

bool DistortionRenderer::upload(const std::array<DistortionMesh, 2> &eyes)
{
    for (std::size_t i = 0; i < eyes.size(); ++i) {
        const DistortionMesh &mesh = eyes.at(i);
        Eye &eye = m_eyes.at(i);
        if (!eye.vertices.create() || !eye.indices.create() || !eye.vertices.bind()
            || !eye.indices.bind())
            return false;
        eye.vertices.allocate(mesh.vertices.data(),
                              static_cast<int>(mesh.vertices.size() * sizeof(DistortionVertex)));
        eye.indices.allocate(mesh.indices.data(),
                             static_cast<int>(mesh.indices.size() * sizeof(std::uint16_t)));
        eye.indexCount = static_cast<int>(mesh.indices.size());
    }
    return true;
}

void DistortionRenderer::draw(const ovrGLTexture textures[ovrEye_Count])
{
    const GlState callers(QOpenGLContext::currentContext()->functions());
    m_program.bind();
    for (std::size_t i = 0; i < m_eyes.size(); ++i)
        drawEye(m_eyes.at(i), textures[i]);
}

void DistortionRenderer::drawEye(Eye &eye, const ovrGLTexture &texture)
{
    QOpenGLFunctions *gl = QOpenGLContext::currentContext()->functions();
    eye.vertices.bind();
    eye.indices.bind();
    for (std::size_t i = 0; i < kAttributes.size(); ++i) {
        m_program.enableAttributeArray(static_cast<int>(i));
        m_program.setAttributeBuffer(static_cast<int>(i), GL_FLOAT,
                                     static_cast<int>(i * sizeof(PictureCoordinate)), 2,
                                     sizeof(DistortionVertex));
    }

    const auto width = static_cast<float>(texture.TextureSize.w);
    const auto height = static_cast<float>(texture.TextureSize.h);
    const bool hasPicture = texture.TexId != 0 && width > 0 && height > 0;
    gl->glBindTexture(GL_TEXTURE_2D, hasPicture ? texture.TexId : 0);
    if (!hasPicture) {
        gl->glDrawElements(GL_TRIANGLES, eye.indexCount, GL_UNSIGNED_SHORT, nullptr);
        return;
    }
    const TextureFilter linear(gl);
    const auto x = static_cast<float>(texture.RenderViewport.Pos.x);
    const auto y = static_cast<float>(texture.RenderViewport.Pos.y);
    const auto w = static_cast<float>(texture.RenderViewport.Size.w);
    const auto h = static_cast<float>(texture.RenderViewport.Size.h);
    m_program.setUniformValue(m_part, x / width, y / height, w / width, h / height);
    m_program.setUniformValue(m_outermostTexels, (x + 0.5F) / width, (y + 0.5F) / height,
                              (x + w - 0.5F) / width, (y + h - 0.5F) / height);
    gl->glDrawElements(GL_TRIANGLES, eye.indexCount, GL_UNSIGNED_SHORT, nullptr);
}
