#include "FrameUpload.h"

#include <QLoggingCategory>
#include <QOpenGLFunctions_2_1>

#include <cstring>

namespace {
Q_LOGGING_CATEGORY(lcMedia, "orbix.media")
} // namespace

FrameUpload::FrameUpload(int requestedMode)
    : m_workerThread(this)
    , m_requestedMode(requestedMode)
{}

FrameUpload::~FrameUpload()
{
    m_workerThread.wait();
    if (!m_transfer)
        return;
    // The scene may have gone before the event that followed its first frame. Nobody is told then:
    // those who listen may be half destroyed.
    if (!m_surfacesExist)
        m_contexts.createSurfaces();
    if (const auto context = m_contexts.makeCleanerCurrent()) {
        m_transfer->release();
        context->doneCurrent();
    }
}

void FrameUpload::start(QOpenGLContext *scene)
{
    const GlEntryPoints gl = GlEntryPoints::of(*scene);
    m_contexts.shareWith(scene);
    const bool desktop = scene->versionFunctions<QOpenGLFunctions_2_1>() != nullptr;
    m_mode = chooseTransferMode(m_requestedMode, gl.mapTexture2D != nullptr, desktop);
    m_route = m_forcedRoute.value_or(scene->isOpenGLES() ? RouteQueuedPaint : RouteWorkerThread);
    gl.getIntegerv(GL_MAX_TEXTURE_SIZE, &m_maxTextureSize);
    m_transfer = FrameTransfer::make(m_mode, gl);
    m_textureId = static_cast<int>(m_transfer->create());
    QMetaObject::invokeMethod(this, &FrameUpload::finishStart, Qt::QueuedConnection);
}

void FrameUpload::finishStart()
{
    if (m_surfacesExist)
        return;
    m_contexts.createSurfaces();
    m_surfacesExist = true;
    m_gate.open();
    emit started();
}

bool FrameUpload::openStream(QSize &size)
{
    if (!m_gate.wait())
        return false;
    if (size.width() > m_maxTextureSize || size.height() > m_maxTextureSize)
        size.scale(m_maxTextureSize, m_maxTextureSize, Qt::KeepAspectRatio);
    m_streamSize = size.expandedTo({1, 1});
    m_stream = Stream::Announced;
    size = m_streamSize;
    return true;
}

/// libVLC tries several formats at the start of a stream, of which one brings frames: contexts and
/// textures wait for its first.
bool FrameUpload::allocateStream()
{
    const std::lock_guard noUpload(m_uploadLock);
    const std::lock_guard lock(frameLock);
    m_turn.forget();
    m_frameBytes = std::size_t(m_streamSize.width()) * std::size_t(m_streamSize.height()) * 4;
    m_aside = {};
    m_standing = {};
    if (!m_contexts.openDecoder() || !m_contexts.makeDecoderCurrent()) {
        m_contexts.closeDecoder();
        qCWarning(lcMedia, "There is no OpenGL context for the video's frames.");
        return false;
    }
    m_transfer->allocate(m_streamSize);
    m_contexts.doneDecoder();
    return true;
}

void FrameUpload::closeStream()
{
    {
        const std::lock_guard noUpload(m_uploadLock);
        const std::lock_guard lock(frameLock);
        m_turn.forget();
        m_textureId = 0;
        m_contexts.closeDecoder();
    }
    emit textureIdChanged();
}

void *FrameUpload::mapBuffer()
{
    m_fillBuffer = m_turn.beginFrame();
    if (!m_transfer->decodesInContext())
        return m_transfer->beginFrame(m_fillBuffer);
    if (!m_contexts.makeDecoderCurrent())
        return nullptr;
    void *pixels = m_transfer->beginFrame(m_fillBuffer);
    m_contexts.doneDecoder();
    return pixels;
}

void FrameUpload::unmapBuffer()
{
    if (!m_transfer->decodesInContext()) {
        m_transfer->endFrame(m_fillBuffer);
    } else if (m_contexts.makeDecoderCurrent()) {
        m_transfer->endFrame(m_fillBuffer);
        m_contexts.doneDecoder();
    }
}

void *FrameUpload::beginFrame()
{
    if (m_stream == Stream::Announced)
        m_stream = allocateStream() ? Stream::Open : Stream::Failed;
    void *pixels = m_paused || m_stream == Stream::Failed ? nullptr : mapBuffer();
    m_setAside = !pixels;
    if (m_setAside) {
        m_aside.resize(m_frameBytes);
        return m_aside.data();
    }
    m_aside = {};
    m_standing = {};
    return pixels;
}

/// Moves the frame that was set aside into a buffer; false if it is the one before, or there is
/// still no room.
bool FrameUpload::takeFromAside()
{
    if (m_stream == Stream::Failed || m_aside == m_standing)
        return false;
    void *pixels = mapBuffer();
    if (!pixels)
        return false;
    std::memcpy(pixels, m_aside.data(), m_frameBytes);
    m_standing.swap(m_aside);
    return true;
}

void FrameUpload::endFrame()
{
    if (m_setAside && !takeFromAside())
        return;
    unmapBuffer();
    bool uploadNeeded = false;
    {
        const std::lock_guard lock(frameLock);
        uploadNeeded = m_turn.endFrame();
    }
    if (!uploadNeeded)
        return;
    switch (m_route) {
    case RouteQueuedSlot:
    case RouteQueuedPaint:
        emit uploadWanted();
        break;
    case RouteDecoderThread:
        upload();
        break;
    case RouteWorkerThread:
        m_workerThread.wait(); // it has uploaded, and is on its way out
        m_workerThread.start(QThread::InheritPriority);
        break;
    }
}

void FrameUpload::upload()
{
    bool again = true;
    while (again) {
        {
            const std::lock_guard unchangedStream(m_uploadLock);
            const std::optional<int> buffer = m_turn.beginUpload();
            if (!buffer)
                return;
            const std::optional<GLuint> texture = uploadBuffer(*buffer);
            again = m_turn.endUpload();
            if (!texture)
                return;
            m_textureId = static_cast<int>(*texture);
        }
        emit textureIdChanged();
    }
}

std::optional<GLuint> FrameUpload::uploadBuffer(int buffer)
{
    std::optional<GLuint> texture;
    switch (m_route) {
    case RouteQueuedSlot:
    case RouteQueuedPaint:
        texture = m_transfer->upload(buffer);
        break;
    case RouteDecoderThread:
        if (m_contexts.makeDecoderCurrent()) {
            texture = m_transfer->upload(buffer);
            m_contexts.doneDecoder();
        }
        break;
    case RouteWorkerThread:
        if (m_contexts.makeWorkerCurrent()) {
            texture = m_transfer->upload(buffer);
            m_contexts.doneWorker();
        }
        break;
    }
    return texture;
}
