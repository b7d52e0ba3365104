#include "CrashOnPurpose.h"

#include "OrbException.h"
#include "VlcInstance.h"

#include <QQuickWindow>
#include <QThread>
#include <QTimer>

#include <vlc/vlc.h>

#include <cstdlib>
#include <stdexcept>

// Reports of crashes hold these names. None is inlined, or it would not stand in them.

[[gnu::noinline]] void crashByNullWrite()
{
    volatile int *volatile nowhere = nullptr;
    *nowhere = 1;
}

[[gnu::noinline]] void crashByAbort()
{
    std::abort();
}

[[gnu::noinline]] void crashByException()
{
    throw std::runtime_error("an exception on purpose");
}

[[gnu::noinline]] void crashByImageException()
{
    throw OrbException(QStringLiteral("a picture on purpose"));
}

// The C library finds it out, and aborts, while it holds the lock of the heap.
[[gnu::noinline]] void crashByDoubleFree()
{
    constexpr std::size_t kBytes = 100000; // neither cached nor mapped on its own
    void *volatile first = std::malloc(kBytes);
    void *volatile second = std::malloc(kBytes); // or the first would be added to what lies behind
    std::free(first);
    std::free(first); // NOLINT(clang-analyzer-unix.Malloc)
    std::free(second);
}

[[gnu::noinline]] int crashByOverflow(int depth)
{
    volatile char weight[4096];
    weight[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : crashByOverflow(depth + 1) + weight[0];
}

namespace {

QByteArray &way()
{
    static QByteArray value;
    return value;
}

void crash()
{
    if (way() == "null")
        crashByNullWrite();
    else if (way() == "abort")
        crashByAbort();
    else if (way() == "exception")
        crashByException();
    else if (way() == "image")
        crashByImageException();
    else if (way() == "heap")
        crashByDoubleFree();
    else if (way() == "overflow")
        crashByOverflow(0);
    else
        qFatal("There is no such crash: %s", way().constData());
}

void onVlcMessage(void *mainThread, int, const libvlc_log_t *, const char *, va_list)
{
    if (QThread::currentThread() != mainThread)
        crash();
}

} // namespace

void CrashOnPurpose::arm(QQuickWindow *window)
{
    const QList<QByteArray> words = qgetenv("ORBIX_CRASH").split(':');
    if (words.size() != 2)
        return;
    way() = words.at(1);
    if (words.at(0) == "main") {
        QTimer::singleShot(0, window, crash);
    } else if (words.at(0) == "render") {
        // As our painting: past it Qt would catch the exception and end the program,
        // with nothing left of where it came from.
        // NOLINTNEXTLINE(bugprone-exception-escape)
        const auto crashHere = []() noexcept { crash(); };
        QObject::connect(window, &QQuickWindow::beforeRendering, window, crashHere,
                         Qt::DirectConnection);
    } else if (words.at(0) == "vlc") {
        libvlc_log_set(vlcInstance(), onVlcMessage, QThread::currentThread());
    }
}
