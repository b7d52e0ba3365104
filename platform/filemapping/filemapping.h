#pragma once

#include <cstddef>
#include <cstdint>

// Named blocks of memory that processes share: POSIX shared memory under the names of Windows' file
// mappings. All functions may be called on any thread.

/// A number of this process for an object that was opened; 0 is none. It is no file descriptor, so
/// a number that came from another process does no harm: nothing stands behind it.
using HANDLE = std::uint32_t;

/// Reading and writing, the one access that these functions give.
constexpr std::uint32_t FILE_MAP_ALL_ACCESS = 0xF001F; // NOLINT(readability-identifier-naming)

/// Opens the block "/`name`" of POSIX shared memory. 0 if there is none, it may not be read and
/// written, or `access` is another. `inherit` has to be false.
HANDLE OpenFileMappingA(std::uint32_t access, bool inherit, const char *name);

/// Maps the whole block as large as it is now: offset and length have to be 0. Null if it is empty
/// or cannot be mapped. The handle of a block that is mapped is used up: nothing of the system is
/// held for it any more, and it may be closed or not.
///
/// Whoever else has the block may cut it short at any time, and a touch of what is gone raises
/// SIGBUS: GuardedMemory.h reads and writes such memory.
void *MapViewOfFile(HANDLE mapping, std::uint32_t access, std::uint32_t offsetHigh,
                    std::uint32_t offsetLow, std::size_t length);

/// Length in bytes that a view was mapped with, 0 for what is no view.
std::size_t viewLength(const void *view);

/// False for what is no view.
bool UnmapViewOfFile(void *view);

/// False, and nothing happens, for a number that stands for nothing.
bool CloseHandle(HANDLE handle);
