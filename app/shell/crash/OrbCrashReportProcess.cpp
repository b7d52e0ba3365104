#include "OrbCrashReportProcess.h"

#include <QCoreApplication>
#include <QFile>

#include <linux/close_range.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>

namespace {

constexpr int kIdArgument = 6; ///< counted from 0

constexpr char kEndOfComplaint[] = ".dmp, if it could be written.\n";

// Bare system calls: the C library's own may act on a cancellation of the thread, which would then
// leave the handler of its crash.

/// As fork(), without what libraries do at a fork: they take locks that a crash may have left
/// taken.
pid_t forkWithoutHandlers()
{
    return static_cast<pid_t>(::syscall(SYS_clone, SIGCHLD, nullptr, nullptr, nullptr, nullptr));
}

void waitForEnd(pid_t child)
{
    while (::syscall(SYS_wait4, child, nullptr, 0, nullptr) < 0 && errno == EINTR) {
    }
}

} // namespace

OrbCrashReportProcess::OrbCrashReportProcess(const QString &applicationName, const QString &version,
                                             const QString &localeName,
                                             const QString &extraArgument)
    : m_program(QStringLiteral("OrbCrashReporter"))
    , m_workingDirectory(QStringLiteral("."))
    , m_applicationName(applicationName)
    , m_version(version)
    , m_localeName(localeName)
    , m_extraArgument(extraArgument)
{}

void OrbCrashReportProcess::prepare(const QString &dumpFolder)
{
    m_file = QFile::encodeName(QCoreApplication::applicationDirPath() + QLatin1Char('/')
                               + m_program);
    m_folder = QFile::encodeName(m_workingDirectory);
    m_texts = {m_applicationName.toLocal8Bit(),
               m_version.toLocal8Bit(),
               m_userArgument.toLocal8Bit(),
               m_localeName.toLocal8Bit(),
               m_extraArgument.toLocal8Bit(),
               QFile::encodeName(dumpFolder),
               QByteArray(),
               m_comment.toLocal8Bit(),
               QByteArray::number(m_send)};

    m_arguments.front() = m_file.data();
    std::transform(m_texts.begin(), m_texts.end(), m_arguments.begin() + 1,
                   [](QByteArray &text) { return text.data(); });
    m_arguments.at(1 + kIdArgument) = m_id.data();

    m_complaint = "The crash reporter " + m_file + " cannot be started. The report is "
        + m_texts[kIdArgument - 1] + '/';
    const int head = m_complaint.size();
    m_complaint.resize(head + kMaxIdLength + int(sizeof(kEndOfComplaint)));
    m_complaintEnd = m_complaint.data() + head;
}

void OrbCrashReportProcess::run(const QString &, const QString &minidump_id)
{
    if (!m_arguments.front())
        return;
    const int length = std::min(minidump_id.size(), kMaxIdLength);
    for (int i = 0; i < length; ++i)
        m_id[static_cast<std::size_t>(i)] = minidump_id.at(i).toLatin1();
    m_id[static_cast<std::size_t>(length)] = '\0';

    const pid_t child = forkWithoutHandlers();
    if (child == 0) {
        startReporter();
        ::_exit(0);
    }
    if (child > 0)
        waitForEnd(child);
    else
        complain();
}

/// From a process that ends at once, so that nobody has to wait for the reporter's end.
void OrbCrashReportProcess::startReporter()
{
    const pid_t child = forkWithoutHandlers();
    if (child == 0)
        becomeReporter();
    if (child < 0)
        complain();
}

void OrbCrashReportProcess::becomeReporter()
{
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr); // the handler of a crash has blocked some
    ::signal(SIGPIPE, SIG_DFL);
    ::setsid();
    ::syscall(SYS_close_range, STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    if (::chdir(m_folder.constData()) == 0)
        ::execve(m_file.constData(), m_arguments.data(), environ);
    complain();
    ::_exit(127);
}

void OrbCrashReportProcess::complain()
{
    const char *begin = m_complaint.constData();
    const char *end = ::stpcpy(::stpcpy(m_complaintEnd, m_id.data()), kEndOfComplaint);
    ::syscall(SYS_write, STDERR_FILENO, begin, end - begin);
}
