#include "filemapping.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <mutex>
#include <string>

namespace {

struct Table
{
    std::mutex lock;
    std::map<HANDLE, int> descriptors;           ///< of what is opened and not mapped yet
    std::map<const void *, std::size_t> lengths; ///< of the views, in bytes
    HANDLE last = 0;
};

Table &table()
{
    static Table ofProcess;
    return ofProcess;
}

/// Length of a regular file in bytes; 0 for all else, which cannot be mapped.
std::size_t lengthOf(int descriptor)
{
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return 0;
    return static_cast<std::size_t>(status.st_size);
}

} // namespace

HANDLE OpenFileMappingA(std::uint32_t access, bool inherit, const char *name)
{
    if (access != FILE_MAP_ALL_ACCESS || inherit)
        return 0;
    const int descriptor = ::shm_open(('/' + std::string(name)).c_str(), O_RDWR, 0);
    if (descriptor < 0)
        return 0;
    Table &all = table();
    const std::lock_guard lock(all.lock);
    do
        ++all.last;
    while (all.last == 0 || all.descriptors.count(all.last) != 0);
    all.descriptors.emplace(all.last, descriptor);
    return all.last;
}

void *MapViewOfFile(HANDLE mapping, std::uint32_t access, std::uint32_t offsetHigh,
                    std::uint32_t offsetLow, std::size_t length)
{
    if (access != FILE_MAP_ALL_ACCESS || offsetHigh != 0 || offsetLow != 0 || length != 0)
        return nullptr;
    Table &all = table();
    const std::lock_guard lock(all.lock);
    const auto found = all.descriptors.find(mapping);
    if (found == all.descriptors.end())
        return nullptr;
    const std::size_t whole = lengthOf(found->second);
    void *view = whole == 0
        ? MAP_FAILED
        : ::mmap(nullptr, whole, PROT_READ | PROT_WRITE, MAP_SHARED, found->second, 0);
    if (view == MAP_FAILED)
        return nullptr;
    ::close(found->second);
    all.descriptors.erase(found);
    all.lengths.emplace(view, whole);
    return view;
}

std::size_t viewLength(const void *view)
{
    Table &all = table();
    const std::lock_guard lock(all.lock);
    const auto found = all.lengths.find(view);
    return found == all.lengths.end() ? 0 : found->second;
}

bool UnmapViewOfFile(void *view)
{
    Table &all = table();
    const std::lock_guard lock(all.lock);
    const auto found = all.lengths.find(view);
    if (found == all.lengths.end())
        return false;
    ::munmap(view, found->second);
    all.lengths.erase(found);
    return true;
}

bool CloseHandle(HANDLE handle)
{
    Table &all = table();
    const std::lock_guard lock(all.lock);
    const auto found = all.descriptors.find(handle);
    if (found == all.descriptors.end())
        return false;
    ::close(found->second);
    all.descriptors.erase(found);
    return true;
}
