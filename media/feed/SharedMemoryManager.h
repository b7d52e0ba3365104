#pragma once

#include "FeedReader.h"

#include <QObject>
#include <QOffscreenSurface>
#include <qopengl.h>

#include <atomic>
#include <memory>

class QImage;
class QOpenGLFunctions_3_2_Core;
class QOpenGLTexture;
class SharedMemoryThread;

/// The live feed: frames that another program writes into shared memory, as a texture. The feed
/// thread copies a frame into one of two pixel buffers, and the render thread moves it from there
/// into the texture when it paints; a frame that is not fetched until the next one is there is
/// dropped with it.
///
/// Threads: the object lives on the main thread, which alone may create a surface and so starts the
/// feed thread. `currentTexture` and `contents` belong to the render thread, with the scene's
/// context current; what has FEED beside it below to the feed thread, which runs from the first of
/// these calls until that context goes or this object does, whichever is first. Between the two
/// stand atomics and no lock: the render thread sees neither texture nor buffers before the texture
/// is stored, `writeIndex` and `consumedToggle` tell it of a filled buffer, and `transferred` keeps
/// the feed thread from a buffer that the render thread is handing to OpenGL.
class SharedMemoryManager : public QObject
{
    Q_OBJECT

public:
    explicit SharedMemoryManager(QObject *parent = nullptr);

    /// Of a block with this name.
    explicit SharedMemoryManager(const QByteArray &name, QObject *parent = nullptr);

    /// Waits for the feed thread, which is told to leave.
    ~SharedMemoryManager() override;

    /// OpenGL name of the texture that holds the feed's newest frame, 0 before the first. Has the
    /// feed started. Without a context, as on the main thread, it only tells the name.
    int currentTexture();

    /// The same name, and nothing but that. Any thread.
    int textureName() const;

    /// A number that changes with what the texture shows.
    int contents() const { return m_contents; }

signals:
    /// A frame waits to be shown. Emitted by the feed thread.
    void frameArrived();

public slots:
    /// FEED, its context current: brings the next frame on its way, if there is one.
    void checkTexture();

private:
    friend class SharedMemoryThread;

    void prepare(QOpenGLContext *scene);
    void start(const QSurfaceFormat &format);
    void stop();
    void fetchFunctions();
    void createBuffers(qsizetype bytes);
    bool hasSizeOfFeed(const FeedFormat::SharedFrameRecord &frame);
    void warnOnce(const FeedFormat::SharedFrameRecord &frame, const char *reason);
    QImage copied(const FeedFormat::SharedFrameRecord &frame) const;
    void createTexture(const FeedFormat::SharedFrameRecord &frame);
    void fillBuffer(const FeedFormat::SharedFrameRecord &frame);
    void replaceTexture(const FeedFormat::SharedFrameRecord &frame);
    void transferFilledBuffer(QOpenGLTexture *texture);
    void releaseFeed();

    FeedReader m_reader;         ///< FEED
    QOffscreenSurface m_surface; ///< for the context of the feed thread
    std::unique_ptr<SharedMemoryThread> m_thread;

    /// Of the feed's context; null if it has none.
    QOpenGLFunctions_3_2_Core *m_feedFunctions = nullptr;
    GLuint m_feedBuffers[2] = {};
    std::atomic<QOpenGLTexture *> m_feedTexture{nullptr};

    std::atomic<int> m_writeIndex{0};   ///< the buffer that the next frame fills
    int m_consumedToggle = 1;           ///< of the render thread
    std::atomic<int> m_transferred{-1}; ///< the buffer that the render thread reads, -1 for none
    std::atomic<int> m_contents{0};
    bool m_hasWarned = false; ///< FEED
};
