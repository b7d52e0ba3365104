#include "ProcessLevel.h"

#include <QDir>
#include <QFile>

#include <malloc.h>
#include <unistd.h>

namespace {

int entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

qint64 residentKibibytes()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return 0;
#else
    malloc_trim(0);
    QFile pages(QStringLiteral("/proc/self/statm"));
    if (!pages.open(QIODevice::ReadOnly))
        return 0;
    return pages.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE) / 1024;
#endif
}

} // namespace

ProcessLevel ProcessLevel::now()
{
    return {entries(QStringLiteral("/proc/self/fd")), entries(QStringLiteral("/proc/self/task")),
            residentKibibytes()};
}

bool ProcessLevel::isWithin(const ProcessLevel &earlier) const
{
    const auto grew = [](qint64 before, qint64 after) { return after * 20 > before * 21; };
    return !grew(earlier.files, files) && !grew(earlier.threads, threads)
        && !grew(earlier.memory, memory);
}

QString ProcessLevel::text() const
{
    return QStringLiteral("%1 files, %2 threads, %3 KiB").arg(files).arg(threads).arg(memory);
}
