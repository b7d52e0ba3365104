#include "CpuTransfer.h"

CpuTransfer::CpuTransfer(const GlEntryPoints &gl)
    : m_gl(gl)
{}

GLuint CpuTransfer::create()
{
    m_gl.genTextures(1, &m_texture);
    m_gl.bindTexture(GL_TEXTURE_2D, m_texture);
    makeFrameTexture(m_gl, GL_RGBA, {1, 1}, kBlackPixel);
    m_gl.bindTexture(GL_TEXTURE_2D, 0);
    return m_texture;
}

void CpuTransfer::release()
{
    m_gl.deleteTextures(1, &m_texture);
    m_texture = 0;
}

void CpuTransfer::allocate(const QSize &size)
{
    for (std::size_t i = 0; i < m_images.size(); ++i) {
        m_images[i] = QImage(size, QImage::Format_ARGB32);
        m_images[i].fill(Qt::black);
        m_bits[i] = m_images[i].bits();
    }
    m_gl.bindTexture(GL_TEXTURE_2D, m_texture);
    makeFrameTexture(m_gl, GL_RGBA, size);
    m_gl.bindTexture(GL_TEXTURE_2D, 0);
}

void *CpuTransfer::beginFrame(int buffer)
{
    return m_bits[buffer];
}

GLuint CpuTransfer::upload(int buffer)
{
    m_gl.activeTexture(GL_TEXTURE0);
    m_gl.bindTexture(GL_TEXTURE_2D, m_texture);
    m_gl.texSubImage2D(GL_TEXTURE_2D, 0, 0, 0, m_images[buffer].width(), m_images[buffer].height(),
                       GL_RGBA, GL_UNSIGNED_BYTE, m_bits[buffer]);
    m_gl.bindTexture(GL_TEXTURE_2D, 0);
    return m_texture;
}
