#include "PixelBufferTransfer.h"

namespace {
constexpr GLenum kPixelUnpackBuffer = 0x88EC;
constexpr GLenum kStreamDraw = 0x88E0;
constexpr GLenum kWriteOnly = 0x88B9;
constexpr int kBytesAPixel = 4;
} // namespace

PixelBufferTransfer::PixelBufferTransfer(const GlEntryPoints &gl)
    : m_gl(gl)
{}

GLuint PixelBufferTransfer::create()
{
    m_gl.genTextures(1, &m_texture);
    m_gl.bindTexture(GL_TEXTURE_2D, m_texture);
    makeFrameTexture(m_gl, kRgba8, {1, 1}, kBlackPixel);
    m_gl.bindTexture(GL_TEXTURE_2D, 0);
    m_gl.genBuffers(2, m_pixelBuffers.data());
    return m_texture;
}

void PixelBufferTransfer::release()
{
    m_gl.deleteTextures(1, &m_texture);
    m_gl.deleteBuffers(2, m_pixelBuffers.data());
    m_texture = 0;
    m_pixelBuffers = {};
}

void PixelBufferTransfer::allocate(const QSize &size)
{
    m_size = size;
    m_gl.bindTexture(GL_TEXTURE_2D, m_texture);
    makeFrameTexture(m_gl, kRgba8, size);
    for (const GLuint pixelBuffer : m_pixelBuffers) {
        m_gl.bindBuffer(kPixelUnpackBuffer, pixelBuffer);
        m_gl.bufferData(kPixelUnpackBuffer, bytes(), nullptr, kStreamDraw);
    }
    m_gl.bindBuffer(kPixelUnpackBuffer, 0);
    m_gl.bindTexture(GL_TEXTURE_2D, 0);
}

void *PixelBufferTransfer::beginFrame(int buffer)
{
    m_gl.bindBuffer(kPixelUnpackBuffer, m_pixelBuffers[buffer]);
    // Fresh storage: mapping does not wait for a copy that is still going on.
    m_gl.bufferData(kPixelUnpackBuffer, bytes(), nullptr, kStreamDraw);
    return m_gl.mapBuffer(kPixelUnpackBuffer, kWriteOnly);
}

void PixelBufferTransfer::endFrame(int)
{
    m_gl.unmapBuffer(kPixelUnpackBuffer);
    m_gl.bindBuffer(kPixelUnpackBuffer, 0);
}

GLuint PixelBufferTransfer::upload(int buffer)
{
    m_gl.activeTexture(GL_TEXTURE0);
    m_gl.bindTexture(GL_TEXTURE_2D, m_texture);
    m_gl.bindBuffer(kPixelUnpackBuffer, m_pixelBuffers[buffer]);
    m_gl.texSubImage2D(GL_TEXTURE_2D, 0, 0, 0, m_size.width(), m_size.height(), GL_RGBA,
                       GL_UNSIGNED_BYTE, nullptr);
    m_gl.bindBuffer(kPixelUnpackBuffer, 0);
    m_gl.bindTexture(GL_TEXTURE_2D, 0);
    return m_texture;
}

qopengl_GLsizeiptr PixelBufferTransfer::bytes() const
{
    return qopengl_GLsizeiptr(m_size.width()) * m_size.height() * kBytesAPixel;
}
