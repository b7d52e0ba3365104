#include "OrbExceptionHandler.h"

#include <QFile>

#include <unistd.h>

#include <csignal>
#include <cstring>

namespace {

constexpr int kIdLength = 36; ///< 8-4-4-8-8 hexadecimal digits
constexpr unsigned kMostSeconds = 10;

google_breakpad::MinidumpDescriptor descriptorIn(const QString &folder)
{
    return google_breakpad::MinidumpDescriptor(QFile::encodeName(folder).toStdString());
}

void endByAlarm()
{
    sigset_t alarm;
    ::sigemptyset(&alarm);
    ::sigaddset(&alarm, SIGALRM);
    ::signal(SIGALRM, SIG_DFL);
    ::pthread_sigmask(SIG_UNBLOCK, &alarm, nullptr);
    ::alarm(kMostSeconds);
}

} // namespace

OrbExceptionHandler::OrbExceptionHandler(const QString &dumpFolder, void *context)
    // NOLINTNEXTLINE(bugprone-throw-keyword-missing): a handler of exceptions is none
    : ExceptionHandler(descriptorIn(dumpFolder), nullptr, onDumped, this, true, -1)
    , m_context(context)
    , m_dumpPath(dumpFolder)
    , m_minidumpId(kIdLength, QLatin1Char('0'))
    , m_idLetters(m_minidumpId.data())
{}

bool OrbExceptionHandler::write()
{
    m_succeeded = false;
    m_writer = ::gettid();
    const bool isRun = WriteMinidump();                // true whenever it came to the callback
    set_minidump_descriptor(descriptorIn(m_dumpPath)); // a crash after this has a file of its own
    m_writer = 0;
    return isRun && m_succeeded;
}

bool OrbExceptionHandler::onDumped(const google_breakpad::MinidumpDescriptor &descriptor,
                                   void *handler, bool succeeded)
{
    auto *self = static_cast<OrbExceptionHandler *>(handler);
    const pid_t writer = self->m_writer;
    if (writer != ::gettid()) {
        // Threads crash one after the other here, all into the file of the first.
        if (self->m_hasCrashed.test_and_set())
            return true;
        endByAlarm();
    }
    // What the disk had no room for is no dump. With a writer, it or a crash has the file's name.
    if (!succeeded && writer == 0)
        ::unlink(descriptor.path());
    self->m_succeeded = succeeded;

    const char *letter = std::strrchr(descriptor.path(), '/') + 1;
    for (int i = 0; i < kIdLength && *letter; ++i, ++letter)
        self->m_idLetters[i] = QLatin1Char(*letter);
    emit self->crash_report_dumped(self->m_dumpPath, self->m_minidumpId, self->m_context,
                                   succeeded);
    return true;
}
