#include "SharedMemoryManager.h"

#include "SharedMemoryThread.h"

#include <QImage>
#include <QLoggingCategory>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QOpenGLFunctions_3_2_Core>
#include <QOpenGLTexture>

#include <algorithm>

using FeedFormat::SharedFrameRecord;

namespace {

Q_LOGGING_CATEGORY(lcMedia, "orbix.media")

/// Of the pixels without what may stand between the lines.
qsizetype pixelBytes(const SharedFrameRecord &frame)
{
    return qsizetype(frame.frameWidth) * frame.frameHeight * FeedFormat::kBytesPerPixel;
}

/// So that other contexts of the group see what this one has done.
void finish()
{
    QOpenGLContext::currentContext()->functions()->glFinish();
}

} // namespace

SharedMemoryManager::SharedMemoryManager(QObject *parent)
    : SharedMemoryManager(FeedFormat::kName, parent)
{}

SharedMemoryManager::SharedMemoryManager(const QByteArray &name, QObject *parent)
    : QObject(parent)
    , m_reader(name)
{}

SharedMemoryManager::~SharedMemoryManager()
{
    stop();
}

void SharedMemoryManager::stop()
{
    if (m_thread)
        m_thread->leave();
    m_thread.reset();
}

int SharedMemoryManager::currentTexture()
{
    QOpenGLContext *context = QOpenGLContext::currentContext();
    if (context && !m_thread)
        prepare(context);
    QOpenGLTexture *texture = m_feedTexture;
    if (!texture)
        return 0;
    if (context && m_feedFunctions)
        transferFilledBuffer(texture);
    return int(texture->textureId());
}

int SharedMemoryManager::textureName() const
{
    const QOpenGLTexture *texture = m_feedTexture;
    return texture ? int(texture->textureId()) : 0;
}

void SharedMemoryManager::prepare(QOpenGLContext *scene)
{
    m_thread = std::make_unique<SharedMemoryThread>(this, scene);
    // What the feed shares with the context it cannot have without it.
    connect(scene, &QOpenGLContext::aboutToBeDestroyed, this, &SharedMemoryManager::stop,
            static_cast<Qt::ConnectionType>(Qt::DirectConnection | Qt::UniqueConnection));
    QMetaObject::invokeMethod(
        this, [this, format = scene->format()] { start(format); }, Qt::QueuedConnection);
}

void SharedMemoryManager::start(const QSurfaceFormat &format)
{
    if (!m_thread)
        return; // the context has gone meanwhile
    m_surface.setFormat(format);
    m_surface.create();
    m_thread->start(QThread::InheritPriority);
}

void SharedMemoryManager::transferFilledBuffer(QOpenGLTexture *texture)
{
    const int filled = 1 - m_writeIndex;
    if (filled != m_consumedToggle)
        return;
    m_transferred = filled;
    // If the feed thread has gone on meanwhile, it may not have seen that.
    if (1 - m_writeIndex == filled) {
        m_feedFunctions->glBindBuffer(GL_PIXEL_UNPACK_BUFFER, m_feedBuffers[filled]);
        texture->bind();
        texture->setData(QOpenGLTexture::RGBA, QOpenGLTexture::UInt8,
                         static_cast<const void *>(nullptr));
        texture->release();
        m_feedFunctions->glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
        m_consumedToggle = 1 - m_consumedToggle;
        ++m_contents;
    }
    m_transferred = -1;
}

void SharedMemoryManager::checkTexture()
{
    if (m_transferred == m_writeIndex)
        return; // the frame keeps
    const std::optional<SharedFrameRecord> frame = m_reader.takeFrame();
    if (!frame || !hasSizeOfFeed(*frame))
        return;
    if (!m_feedTexture)
        createTexture(*frame);
    else if (m_feedFunctions)
        fillBuffer(*frame);
    else
        replaceTexture(*frame);
}

void SharedMemoryManager::fetchFunctions()
{
    const QOpenGLContext *context = QOpenGLContext::currentContext();
    if (!context->isOpenGLES())
        m_feedFunctions = context->versionFunctions<QOpenGLFunctions_3_2_Core>();
    if (m_feedFunctions && !m_feedFunctions->initializeOpenGLFunctions())
        m_feedFunctions = nullptr;
}

/// The first frame's size is that of the feed. One that is too large for a texture is none.
bool SharedMemoryManager::hasSizeOfFeed(const SharedFrameRecord &frame)
{
    bool isRight = false;
    if (const QOpenGLTexture *texture = m_feedTexture) {
        isRight = texture->width() == frame.frameWidth && texture->height() == frame.frameHeight;
    } else {
        GLint largest = 0;
        QOpenGLContext::currentContext()->functions()->glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
        isRight = std::max(frame.frameWidth, frame.frameHeight) <= largest;
    }
    if (!isRight)
        warnOnce(frame, m_feedTexture ? "it began with another size" : "no texture is that large");
    return isRight;
}

void SharedMemoryManager::warnOnce(const SharedFrameRecord &frame, const char *reason)
{
    if (!m_hasWarned)
        qCWarning(lcMedia, "The live feed holds frames of %dx%d pixels, which are not shown: %s.",
                  frame.frameWidth, frame.frameHeight, reason);
    m_hasWarned = true;
}

void SharedMemoryManager::createBuffers(qsizetype bytes)
{
    m_feedFunctions->glGenBuffers(2, m_feedBuffers);
    for (const GLuint buffer : m_feedBuffers) {
        m_feedFunctions->glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffer);
        m_feedFunctions->glBufferData(GL_PIXEL_UNPACK_BUFFER, bytes, nullptr, GL_STREAM_DRAW);
    }
    m_feedFunctions->glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
}

QImage SharedMemoryManager::copied(const SharedFrameRecord &frame) const
{
    QImage image(frame.frameWidth, frame.frameHeight, QImage::Format_RGBA8888);
    if (image.isNull() || !m_reader.copyPixels(frame, image.bits()))
        return {};
    return image;
}

void SharedMemoryManager::createTexture(const SharedFrameRecord &frame)
{
    const QImage image = copied(frame);
    if (image.isNull())
        return;
    if (m_feedFunctions && m_feedBuffers[0] == 0)
        createBuffers(pixelBytes(frame));
    auto texture = std::make_unique<QOpenGLTexture>(image, QOpenGLTexture::DontGenerateMipMaps);
    if (!texture->isStorageAllocated()) {
        warnOnce(frame, "OpenGL has no room for them");
        return;
    }
    texture->setMinMagFilters(QOpenGLTexture::Linear, QOpenGLTexture::Linear);
    finish();
    ++m_contents;
    m_feedTexture = texture.release();
    emit frameArrived();
}

void SharedMemoryManager::fillBuffer(const SharedFrameRecord &frame)
{
    m_feedFunctions->glBindBuffer(GL_PIXEL_UNPACK_BUFFER, m_feedBuffers[m_writeIndex]);
    m_feedFunctions->glBufferData(GL_PIXEL_UNPACK_BUFFER, pixelBytes(frame), nullptr,
                                  GL_STREAM_DRAW);
    void *pixels = m_feedFunctions->glMapBuffer(GL_PIXEL_UNPACK_BUFFER, GL_WRITE_ONLY);
    const bool isCopied = pixels && m_reader.copyPixels(frame, static_cast<uchar *>(pixels));
    const bool isKept = pixels && m_feedFunctions->glUnmapBuffer(GL_PIXEL_UNPACK_BUFFER);
    m_feedFunctions->glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    if (!pixels)
        warnOnce(frame, "OpenGL has no room for them");
    if (!isCopied || !isKept)
        return;
    finish();
    m_writeIndex = 1 - m_writeIndex;
    emit frameArrived();
}

void SharedMemoryManager::replaceTexture(const SharedFrameRecord &frame)
{
    const QImage image = copied(frame);
    if (image.isNull())
        return;
    QOpenGLTexture *texture = m_feedTexture;
    texture->bind();
    texture->setData(0, 0, QOpenGLTexture::RGBA, QOpenGLTexture::UInt8, image.constBits());
    texture->release();
    finish();
    ++m_contents;
    emit frameArrived();
}

void SharedMemoryManager::releaseFeed()
{
    if (m_feedBuffers[0] != 0)
        m_feedFunctions->glDeleteBuffers(2, m_feedBuffers);
    m_feedBuffers[0] = m_feedBuffers[1] = 0;
    delete m_feedTexture.exchange(nullptr);
    m_feedFunctions = nullptr;
}
