#include "PanoramaStage.h"

#include "TestPanorama.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <iterator>
#include <vector>

PanoramaStage::PanoramaStage(const QSize &pixels)
    : m_settings(QStringLiteral("orbix-tests"), QStringLiteral("render"))
    , m_videoPlugin(&m_settings)
    , state(&m_settings, &m_videoPlugin)
    , textureProvider(&window, &m_settings)
{
    QSurfaceFormat format = window.requestedFormat();
    format.setRenderableType(wantsOpenGlEs() ? QSurfaceFormat::OpenGLES : QSurfaceFormat::OpenGL);
    window.setFormat(format);
    window.setFlags(Qt::FramelessWindowHint);
    window.setColor(Qt::magenta); // a colour that no picture has, where the item leaves a hole
    window.resize((QSizeF(pixels) / wantedScale()).toSize());
    QObject::connect(
        &window, &QQuickWindow::beforeSynchronizing, &textureProvider,
        [this] {
            if (textureProvider.textureId() == 0)
                makeTexture();
        },
        Qt::DirectConnection);
    QObject::connect(
        &window, &QQuickWindow::sceneGraphInvalidated, &textureProvider,
        [this] { textureProvider.setTextureId(0); }, Qt::DirectConnection);
    view.setSize(window.size());
    view.setParentItem(window.contentItem());
}

PanoramaStage::~PanoramaStage()
{
    window.hide(); // the render thread is done with the members when this returns
}

bool PanoramaStage::start()
{
    view.init(&builder, &state, &textureProvider);
    return show() && view.waitForPaint();
}

bool PanoramaStage::show()
{
    window.show();
    return QTest::qWaitForWindowExposed(&window);
}

QImage PanoramaStage::picture()
{
    return view.waitForPaint() ? grab() : QImage();
}

QImage PanoramaStage::grab()
{
    return window.grabWindow().convertToFormat(QImage::Format_RGB888);
}

bool PanoramaStage::wantsOwnThread()
{
    return qgetenv("QSG_RENDER_LOOP") != "basic";
}

bool PanoramaStage::wantsOpenGlEs()
{
    return qgetenv("TEST_OPENGL") == "es";
}

qreal PanoramaStage::wantedScale()
{
    const QByteArray scale = qgetenv("QT_SCALE_FACTOR");
    return scale.isEmpty() ? 1 : scale.toDouble();
}

void PanoramaStage::makeTexture()
{
    QOpenGLContext *context = QOpenGLContext::currentContext();
    m_ownThread = QThread::currentThread() != window.thread();
    m_openGlEs = context->isOpenGLES();

    const QImage image = testPanorama();
    std::vector<float> channels;
    channels.reserve(std::size_t(image.sizeInBytes()));
    std::transform(image.constBits(), image.constBits() + image.sizeInBytes(),
                   std::back_inserter(channels), [](uchar value) { return value / 255.0F; });

    QOpenGLFunctions *gl = context->functions();
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
    textureProvider.setTextureId(static_cast<int>(texture));
}
