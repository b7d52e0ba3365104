#pragma once

#include <QOffscreenSurface>
#include <QOpenGLContext>

#include <memory>

/// The OpenGL contexts that frames travel through, all in the share group of the scene's. A context
/// belongs to one thread, so the threads have one each, and the parent of all is current nowhere.
///
/// Threads: each function names its own. The surfaces exist before any context uses them.
class UploadContexts
{
public:
    ~UploadContexts();

    /// Render thread, the scene's context current.
    void shareWith(QOpenGLContext *scene);

    /// Main thread, which alone may create surfaces, after `shareWith`.
    void createSurfaces();

    /// Decoder thread: a context for this stream; false if there is none to be had.
    bool openDecoder();
    bool makeDecoderCurrent();
    void doneDecoder();

    /// Decoder thread, at the end of its stream. The context dies on the main thread, since the
    /// decoder's thread handles no events.
    void closeDecoder();

    /// Worker thread: its context, made at the first call.
    bool makeWorkerCurrent();
    void doneWorker();

    /// Main thread, when the decoder and the worker have ended: a context for cleaning up; null if
    /// there is none to be had. `createSurfaces` has been called.
    std::unique_ptr<QOpenGLContext> makeCleanerCurrent();

private:
    std::unique_ptr<QOpenGLContext> newContext() const;

    std::unique_ptr<QOpenGLContext> m_sharedContext;
    std::unique_ptr<QOpenGLContext> m_decoderContext;
    std::unique_ptr<QOpenGLContext> m_workerContext;
    QOffscreenSurface m_decoderSurface;
    QOffscreenSurface m_workerSurface;
};
