#pragma once

#include <QString>

#include <memory>

class QFile;

/// The file that the player wrote of its crash, or meant to.
namespace CrashDump {

enum class State {
    Intact, ///< begins as a minidump does
    Damaged,
    Unreadable, ///< something of its name is there; a link is not followed
    FolderMissing,
    FolderReadOnly,
    DiskFull, ///< and the file missing or damaged
    Gone      ///< and nothing tells why
};

struct Found
{
    State state = State::Gone;
    qint64 bytes = -1; ///< -1 where there is no file to read
};

constexpr qint64 kLeastRoom = 1 << 20; ///< in bytes; a disk with less counts as full

Found look(const QString &path, qint64 leastRoom = kLeastRoom);

/// Null unless there is a regular file of this very name that can be read.
std::unique_ptr<QFile> open(const QString &path);

/// What is wrong, in plain words; empty for an intact dump.
QString problem(State state);

} // namespace CrashDump
