#include "SharedMemoryThread.h"

#include "SharedMemoryManager.h"

#include <QLoggingCategory>
#include <QTimer>

namespace {
Q_LOGGING_CATEGORY(lcMedia, "orbix.media")
} // namespace

SharedMemoryThread::SharedMemoryThread(SharedMemoryManager *manager, QOpenGLContext *scene)
    : m_manager(manager)
{
    QSurfaceFormat format = scene->format();
    format.setProfile(QSurfaceFormat::CoreProfile);
    format.setVersion(2, 0);
    m_context.setFormat(format);
    m_context.setShareContext(scene);
    m_context.moveToThread(this);
}

void SharedMemoryThread::leave()
{
    m_leave.release();
    exit(0);
    wait();
}

void SharedMemoryThread::run()
{
    const auto pause = [this](std::chrono::milliseconds time) {
        if (!m_leave.tryAcquire(1, int(time.count())))
            return true;
        m_leave.release(); // for whatever waits next
        return false;
    };
    if (m_manager->m_reader.connectToWriter(pause)) {
        if (const std::optional<int> interval = m_manager->m_reader.computePollInterval(pause))
            poll(*interval);
    }
    m_manager->m_reader.release();
}

void SharedMemoryThread::poll(int intervalMs)
{
    if (!(m_context.isValid() || m_context.create())
        || !m_context.makeCurrent(&m_manager->m_surface)) {
        qCWarning(lcMedia, "The live feed has no OpenGL context.");
        return;
    }
    m_manager->fetchFunctions();
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, m_manager, &SharedMemoryManager::checkTexture,
            Qt::DirectConnection);
    timer.start(intervalMs);
    QThread::run();
    timer.stop();
    m_manager->releaseFeed();
    m_context.doneCurrent();
}
