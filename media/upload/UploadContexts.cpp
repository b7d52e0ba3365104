#include "UploadContexts.h"

#include <QCoreApplication>

UploadContexts::~UploadContexts() = default;

void UploadContexts::shareWith(QOpenGLContext *scene)
{
    m_sharedContext = std::make_unique<QOpenGLContext>();
    m_sharedContext->setShareContext(scene);
    m_sharedContext->setFormat(scene->format());
    m_sharedContext->create();
}

void UploadContexts::createSurfaces()
{
    for (QOffscreenSurface *surface : {&m_decoderSurface, &m_workerSurface}) {
        surface->setFormat(m_sharedContext->format());
        surface->create();
    }
}

std::unique_ptr<QOpenGLContext> UploadContexts::newContext() const
{
    auto context = std::make_unique<QOpenGLContext>();
    context->setShareContext(m_sharedContext.get());
    context->setFormat(m_sharedContext->format());
    return context->create() ? std::move(context) : nullptr;
}

bool UploadContexts::openDecoder()
{
    if (!m_decoderContext)
        m_decoderContext = newContext();
    return m_decoderContext != nullptr;
}

bool UploadContexts::makeDecoderCurrent()
{
    return m_decoderContext && m_decoderContext->makeCurrent(&m_decoderSurface);
}

void UploadContexts::doneDecoder()
{
    m_decoderContext->doneCurrent();
}

void UploadContexts::closeDecoder()
{
    if (!m_decoderContext)
        return;
    QOpenGLContext *context = m_decoderContext.release();
    context->moveToThread(QCoreApplication::instance()->thread());
    context->deleteLater();
}

bool UploadContexts::makeWorkerCurrent()
{
    if (!m_workerContext)
        m_workerContext = newContext();
    return m_workerContext && m_workerContext->makeCurrent(&m_workerSurface);
}

void UploadContexts::doneWorker()
{
    m_workerContext->doneCurrent();
}

std::unique_ptr<QOpenGLContext> UploadContexts::makeCleanerCurrent()
{
    auto context = newContext();
    return context && context->makeCurrent(&m_workerSurface) ? std::move(context) : nullptr;
}
