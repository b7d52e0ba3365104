#include "FrameTransfer.h"

#include "CpuTransfer.h"
#include "MapTextureTransfer.h"
#include "PixelBufferTransfer.h"

std::unique_ptr<FrameTransfer> FrameTransfer::make(TransferMode mode, const GlEntryPoints &gl)
{
    switch (mode) {
    case TransferIntelMapTexture:
        return std::make_unique<MapTextureTransfer>(gl);
    case TransferPixelBufferObject:
        return std::make_unique<PixelBufferTransfer>(gl);
    case TransferAuto:
    case TransferCpu:
        break;
    }
    return std::make_unique<CpuTransfer>(gl);
}

void makeFrameTexture(const GlEntryPoints &gl, GLint internalFormat, const QSize &size,
                      const void *pixels)
{
    gl.texImage2D(GL_TEXTURE_2D, 0, internalFormat, size.width(), size.height(), 0, GL_RGBA,
                  GL_UNSIGNED_BYTE, pixels);
    gl.texParameterf(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    gl.texParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl.texParameterf(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl.texParameterf(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}
