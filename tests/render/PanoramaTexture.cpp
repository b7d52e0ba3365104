#include "PanoramaTexture.h"

#include "TestPanorama.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

#include <algorithm>
#include <iterator>
#include <vector>

GLuint panoramaTexture()
{
    const QImage image = testPanorama();
    std::vector<float> channels;
    channels.reserve(std::size_t(image.sizeInBytes()));
    std::transform(image.constBits(), image.constBits() + image.sizeInBytes(),
                   std::back_inserter(channels), [](uchar value) { return value / 255.0F; });

    QOpenGLFunctions *gl = QOpenGLContext::currentContext()->functions();
    GLuint texture = 0;
    gl->glGenTextures(1, &texture);
    gl->glBindTexture(GL_TEXTURE_2D, texture);
    gl->glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    gl->glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl->glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl->glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    // A software renderer filters eight-bit channels in eight-bit steps, which some effects
    // enlarge.
    constexpr GLint kHalfFloats = 0x881A; // GL_RGBA16F, not named in headers of OpenGL ES 2
    gl->glTexImage2D(GL_TEXTURE_2D, 0, kHalfFloats, image.width(), image.height(), 0, GL_RGBA,
                     GL_FLOAT, channels.data());
    gl->glBindTexture(GL_TEXTURE_2D, 0);
    return texture;
}
