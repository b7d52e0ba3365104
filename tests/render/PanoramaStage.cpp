#include "PanoramaStage.h"

#include "PanoramaTexture.h"

#include <QOpenGLContext>
#include <QTest>
#include <QThread>

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

    textureProvider.setTextureId(static_cast<int>(panoramaTexture()));
}
