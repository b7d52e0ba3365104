#include "TemporaryStore.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

#include <algorithm>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString kPrefix = QStringLiteral("ORBIX");
constexpr quint64 kFilesInDirectory = 1024;
constexpr qint64 kMiB = qint64(1) << 20;

/// How many names that someone else has taken are passed over for one file.
constexpr int kAttempts = 64;

struct DirectoryCloser
{
    void operator()(DIR *directory) const { closedir(directory); }
};
using OpenDirectory = std::unique_ptr<DIR, DirectoryCloser>;

/// For listing; `parent` stays open.
OpenDirectory openDirectory(int parent, const char *name)
{
    const int file = openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (file < 0)
        return nullptr;
    OpenDirectory directory(fdopendir(file));
    if (!directory)
        close(file);
    return directory;
}

bool isNumber(const QByteArray &text)
{
    return !text.isEmpty()
        && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// Whether a directory is called as one that some copy has made.
bool isStoreName(const QByteArray &name)
{
    const QList<QByteArray> parts = name.split('.');
    return parts.size() == 3 && parts[0] == kPrefix.toLatin1() && isNumber(parts[1])
        && isNumber(parts[2]);
}

bool isOurDirectory(int file, struct stat *status)
{
    return fstat(file, status) == 0 && S_ISDIR(status->st_mode) && status->st_uid == geteuid();
}

/// Removes the files that are named as those of the store.
void removeFiles(int directory)
{
    const OpenDirectory listing = openDirectory(directory, ".");
    if (!listing)
        return;
    while (const dirent *entry = readdir(listing.get())) {
        struct stat status = {};
        if (isNumber(entry->d_name)
            && fstatat(directory, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0
            && S_ISREG(status.st_mode))
            unlinkat(directory, entry->d_name, 0);
    }
}

/// Makes a directory for us alone and locks it; -1 where that name is taken.
int makeLocked(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    if (mkdir(name.constData(), 0700) != 0)
        return -1;
    const int file = open(name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (file < 0)
        return -1;
    // Another copy that looks for leftovers may have come before the lock and removed it.
    struct stat locked = {};
    struct stat named = {};
    if (isOurDirectory(file, &locked) && flock(file, LOCK_EX | LOCK_NB) == 0
        && lstat(name.constData(), &named) == 0 && named.st_ino == locked.st_ino
        && named.st_dev == locked.st_dev)
        return file;
    close(file);
    return -1;
}

} // namespace

TemporaryStore::TemporaryStore(QStringList folders, FreeSpace freeSpace, IsRemovable isRemovable)
    : m_folders(std::move(folders))
    , m_freeSpace(std::move(freeSpace))
    , m_isRemovable(std::move(isRemovable))
{}

TemporaryStore::~TemporaryStore()
{
    clear();
}

QString TemporaryStore::fileFor(int width, int height, int bitsPerPixel)
{
    qint64 bits = 0;
    if (width <= 0 || height <= 0 || bitsPerPixel <= 0
        || __builtin_mul_overflow(qint64(width) * height, qint64(bitsPerPixel), &bits))
        return {};
    for (const qint64 margin : {1024 * kMiB, 100 * kMiB}) {
        for (const QString &folder : m_folders) {
            if (m_isRemovable(folder) || m_freeSpace(folder) < bits / 8 + margin)
                continue;
            const QString file = newFile(folder);
            if (!file.isEmpty())
                return file;
        }
    }
    return {};
}

QString TemporaryStore::newFile(const QString &folder)
{
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const quint64 file = m_files++;
        const quint64 number = file / kFilesInDirectory;
        const QString path = folder + QDir::separator() + kPrefix + QLatin1Char('.')
            + QString::number(QCoreApplication::applicationPid()) + QLatin1Char('.')
            + QString::number(number);
        if (use(path))
            return path + QDir::separator() + QString::number(file % kFilesInDirectory);
        const quint64 next = (number + 1) * kFilesInDirectory;
        quint64 files = m_files;
        while (files < next && !m_files.compare_exchange_weak(files, next)) {
        }
    }
    return {};
}

/// Whether the directory is ours; makes it where it is not there.
bool TemporaryStore::use(const QString &path)
{
    const Directory *last = m_last;
    if (last && last->path == path)
        return true;
    const std::lock_guard<std::mutex> lock(m_making);
    auto directory = std::find_if(m_directories.begin(), m_directories.end(),
                                  [&path](const Directory &made) { return made.path == path; });
    if (directory == m_directories.end()) {
        const int file = makeLocked(path);
        if (file < 0)
            return false;
        directory = m_directories.push_back({path, file});
        ++m_directoriesMade;
    }
    m_last = &*directory;
    return true;
}

void TemporaryStore::removeLeftovers() const
{
    for (const QString &folder : m_folders) {
        const OpenDirectory listing =
            openDirectory(AT_FDCWD, QFile::encodeName(folder + QLatin1Char('/')).constData());
        if (!listing)
            continue;
        const int parent = dirfd(listing.get());
        while (const dirent *entry = readdir(listing.get())) {
            if (!isStoreName(entry->d_name))
                continue;
            const OpenDirectory found = openDirectory(parent, entry->d_name);
            struct stat status = {};
            if (!found || !isOurDirectory(dirfd(found.get()), &status)
                || flock(dirfd(found.get()), LOCK_EX | LOCK_NB) != 0)
                continue;
            removeFiles(dirfd(found.get()));
            unlinkat(parent, entry->d_name, AT_REMOVEDIR);
        }
    }
}

void TemporaryStore::clear()
{
    const std::lock_guard<std::mutex> lock(m_making);
    m_last = nullptr;
    for (const Directory &directory : m_directories) {
        removeFiles(directory.lock);
        rmdir(QFile::encodeName(directory.path).constData());
        close(directory.lock);
    }
    m_directories.clear();
}

qint64 TemporaryStore::freeSpaceOfDisk(const QString &folder)
{
    return QStorageInfo(folder).bytesAvailable();
}

/// As the kernel says it of the disk, or of the disk that a partition belongs to.
bool TemporaryStore::isOnRemovableDrive(const QString &folder)
{
    const QString device = QString::fromLocal8Bit(QStorageInfo(folder).device());
    const QString name = QFileInfo(QFileInfo(device).canonicalFilePath()).fileName();
    if (name.isEmpty())
        return false;
    for (const char *place :
         {"/sys/class/block/%1/removable", "/sys/class/block/%1/../removable"}) {
        QFile file(QString::fromLatin1(place).arg(name));
        if (file.open(QIODevice::ReadOnly))
            return file.readAll().trimmed() == "1";
    }
    return false;
}
