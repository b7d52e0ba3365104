#include "MapTextureTransfer.h"

namespace {
constexpr GLenum kTextureMemoryLayoutIntel = 0x83FF;
constexpr GLint kLayoutLinearIntel = 1;
constexpr GLbitfield kMapWriteBit = 0x0002;
} // namespace

MapTextureTransfer::MapTextureTransfer(const GlEntryPoints &gl)
    : m_gl(gl)
{}

GLuint MapTextureTransfer::create()
{
    m_gl.genTextures(2, m_textures.data());
    for (const GLuint texture : m_textures) {
        m_gl.bindTexture(GL_TEXTURE_2D, texture);
        makeFrameTexture(m_gl, kRgba8, {1, 1}, kBlackPixel);
    }
    m_gl.bindTexture(GL_TEXTURE_2D, 0);
    return m_textures[0];
}

void MapTextureTransfer::release()
{
    m_gl.deleteTextures(2, m_textures.data());
    m_textures = {};
}

void MapTextureTransfer::allocate(const QSize &size)
{
    for (const GLuint texture : m_textures) {
        m_gl.bindTexture(GL_TEXTURE_2D, texture);
        m_gl.texParameteri(GL_TEXTURE_2D, kTextureMemoryLayoutIntel, kLayoutLinearIntel);
        makeFrameTexture(m_gl, kRgba8, size);
    }
    m_gl.bindTexture(GL_TEXTURE_2D, 0);
}

void *MapTextureTransfer::beginFrame(int buffer)
{
    GLint stride = 0;
    GLenum layout = 0;
    return m_gl.mapTexture2D(m_textures[buffer], 0, kMapWriteBit, &stride, &layout);
}

void MapTextureTransfer::endFrame(int buffer)
{
    m_gl.unmapTexture2D(m_textures[buffer], 0);
}

GLuint MapTextureTransfer::upload(int buffer)
{
    const GLuint texture = m_textures[buffer];
    m_gl.activeTexture(GL_TEXTURE0);
    m_gl.bindTexture(GL_TEXTURE_2D, texture);
    m_gl.syncTexture(texture);
    m_gl.bindTexture(GL_TEXTURE_2D, 0);
    return texture;
}
