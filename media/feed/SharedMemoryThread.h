#pragma once

#include <QOpenGLContext>
#include <QSemaphore>
#include <QThread>

class SharedMemoryManager;

/// The thread of the live feed: waits for the writer, then looks for its frames by a timer, with a
/// context of its own in the share group of the scene's. Made on the render thread; once `leave`
/// has returned it may be deleted on any.
class SharedMemoryThread : public QThread
{
    Q_OBJECT

public:
    /// `scene` is current. Neither argument is owned.
    SharedMemoryThread(SharedMemoryManager *manager, QOpenGLContext *scene);

    /// Ends the thread, whatever it waits for, and returns when it has ended. Any other thread.
    void leave();

protected:
    void run() override;

private:
    void poll(int intervalMs);

    SharedMemoryManager *m_manager;
    QOpenGLContext m_context;
    QSemaphore m_leave;
};
