#include "FileSlice.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

std::optional<RegularFile> RegularFile::open(const std::string &path)
{
    return open(path, O_RDONLY);
}

std::optional<RegularFile> RegularFile::create(const std::string &path)
{
    return open(path, O_RDWR | O_CREAT);
}

std::optional<RegularFile> RegularFile::open(const std::string &path, int flags)
{
    // A pipe would be waited for without O_NONBLOCK.
    const int descriptor = ::open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC, 0600);
    if (descriptor < 0)
        return std::nullopt;
    struct stat status = {};
    const bool isRegular = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    RegularFile file(descriptor, isRegular ? std::uint64_t(status.st_size) : 0);
    if (!isRegular)
        return std::nullopt;
    return file;
}

RegularFile::RegularFile(RegularFile &&other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1))
    , m_size(other.m_size)
{}

RegularFile::~RegularFile()
{
    close();
}

bool RegularFile::close()
{
    const int descriptor = std::exchange(m_descriptor, -1);
    return descriptor < 0 || ::close(descriptor) == 0;
}

FileSlice FileSlice::part(std::uint64_t start, std::uint64_t size) const
{
    const std::uint64_t from = std::min(start, m_size);
    return {m_descriptor, m_start + from, std::min(size, m_size - from)};
}

bool FileSlice::read(std::uint64_t offset, void *bytes, std::size_t count) const
{
    if (offset > m_size || count > m_size - offset)
        return false;
    return pread(m_descriptor, bytes, count, off_t(m_start + offset)) == ssize_t(count);
}
