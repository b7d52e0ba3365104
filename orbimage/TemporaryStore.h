#pragma once

#include <QDir>
#include <QStringList>

#include <tbb/concurrent_vector.h>

#include <atomic>
#include <functional>
#include <mutex>

/// Names for files in the temporary folders, in directories that this copy of the program makes for
/// itself: <folder>/ORBIX.<process id>.<number>/<number>, at most 1024 files in each. A directory
/// is for its owner alone, is never one that was there before, and is locked while the store lives,
/// so that another copy can tell it from what a crash has left.
///
/// All functions may be called from any thread. What clear removes must be out of use; the files
/// are asked for again after it as before.
class TemporaryStore
{
public:
    using FreeSpace = std::function<qint64(const QString &folder)>; ///< in bytes
    using IsRemovable = std::function<bool(const QString &folder)>;

    explicit TemporaryStore(QStringList folders = {QDir::tempPath()},
                            FreeSpace freeSpace = freeSpaceOfDisk,
                            IsRemovable isRemovable = isOnRemovableDrive);
    ~TemporaryStore();
    TemporaryStore(const TemporaryStore &) = delete;
    TemporaryStore &operator=(const TemporaryStore &) = delete;

    /// The path of a new file for so many pixels, which the caller makes; empty where no folder has
    /// room for them and 100 MiB more. One with 1 GiB more is preferred. Folders on removable
    /// drives are left out.
    QString fileFor(int width, int height, int bitsPerPixel);

    /// Removes the directories of copies of the program that no longer run.
    void removeLeftovers() const;

    /// Removes the directories made and all files in them.
    void clear();

    /// Since the start.
    int directoriesMade() const { return m_directoriesMade; }

    static qint64 freeSpaceOfDisk(const QString &folder);
    static bool isOnRemovableDrive(const QString &folder);

private:
    struct Directory
    {
        QString path;
        int lock = -1; ///< The directory, open and locked.
    };

    QString newFile(const QString &folder);
    bool use(const QString &path);

    const QStringList m_folders;
    const FreeSpace m_freeSpace;
    const IsRemovable m_isRemovable;
    std::atomic<quint64> m_files{0};
    std::atomic<int> m_directoriesMade{0};
    std::mutex m_making; ///< Guards what is added to m_directories.
    /// Its items stay where they are while others are added.
    tbb::concurrent_vector<Directory> m_directories;
    std::atomic<const Directory *> m_last{nullptr}; ///< One of m_directories.
};
