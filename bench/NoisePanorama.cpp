#include "NoisePanorama.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

#include <vector>

namespace {
constexpr QSize kSize(4096, 2048);
constexpr float kPi = 3.14159265F;
} // namespace

GLuint NoisePanorama::texture()
{
    std::vector<quint32> pixels(size_t(kSize.width()) * size_t(kSize.height()));
    quint32 value = 1;
    for (quint32 &pixel : pixels) {
        value = value * 1664525U + 1013904223U;
        pixel = value >> 8U | 0xff000000U;
    }
    QOpenGLFunctions *gl = QOpenGLContext::currentContext()->functions();
    GLuint texture = 0;
    gl->glGenTextures(1, &texture);
    gl->glBindTexture(GL_TEXTURE_2D, texture);
    gl->glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    gl->glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl->glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, kSize.width(), kSize.height(), 0, GL_RGBA,
                     GL_UNSIGNED_BYTE, pixels.data());
    return texture;
}

PanoramaView NoisePanorama::view(const QSize &size)
{
    PanoramaView view;
    view.viewport = Viewport::ofTarget(size);
    view.yawMin = -kPi;
    view.yawMax = kPi;
    view.pitchMin = -kPi / 2;
    view.pitchMax = kPi / 2;
    return view;
}
