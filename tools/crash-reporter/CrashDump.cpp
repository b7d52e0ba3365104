#include "CrashDump.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace CrashDump {

namespace {

constexpr char kSignature[] = "MDMP";

bool isFull(const QString &folder, qint64 leastRoom)
{
    // QStorageInfo knows nothing of folders whose mount is out of sight, as in a chroot.
    struct statvfs disk = {};
    if (::statvfs(QFile::encodeName(folder).constData(), &disk) != 0)
        return false;
    return quint64(disk.f_bavail) * disk.f_frsize < quint64(leastRoom);
}

} // namespace

Found look(const QString &path, qint64 leastRoom)
{
    const QFileInfo file(path);
    const QFileInfo folder(file.absolutePath());
    if (const std::unique_ptr<QFile> dump = open(path)) {
        const qint64 bytes = dump->size();
        if (dump->read(4) == kSignature)
            return {State::Intact, bytes};
        return {isFull(folder.filePath(), leastRoom) ? State::DiskFull : State::Damaged, bytes};
    }
    if (file.exists() || file.isSymLink())
        return {State::Unreadable};
    if (!folder.isDir())
        return {State::FolderMissing};
    if (!folder.isWritable())
        return {State::FolderReadOnly};
    return {isFull(folder.filePath(), leastRoom) ? State::DiskFull : State::Gone};
}

/// Without waiting for whoever might write into a pipe of that name.
std::unique_ptr<QFile> open(const QString &path)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(),
                                  O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    struct stat status = {};
    auto file = std::make_unique<QFile>();
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)
        || !file->open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        return nullptr;
    }
    return file;
}

QString problem(State state)
{
    const auto text = [](const char *source) {
        return QCoreApplication::translate("CrashDump", source);
    };
    switch (state) {
    case State::Intact:
        return {};
    case State::Damaged:
        return text(QT_TRANSLATE_NOOP("CrashDump", "The crash file is damaged."));
    case State::Unreadable:
        return text(QT_TRANSLATE_NOOP("CrashDump", "The crash file cannot be read."));
    case State::FolderMissing:
        return text(
            QT_TRANSLATE_NOOP("CrashDump",
                              "No crash file could be written: its folder does not exist."));
    case State::FolderReadOnly:
        return text(
            QT_TRANSLATE_NOOP("CrashDump",
                              "No crash file could be written: its folder is write-protected."));
    case State::DiskFull:
        return text(QT_TRANSLATE_NOOP(
            "CrashDump", "The crash file is missing or damaged: the disk of its folder is full."));
    case State::Gone:
        return text(QT_TRANSLATE_NOOP("CrashDump", "There is no crash file."));
    }
    return {};
}

} // namespace CrashDump
