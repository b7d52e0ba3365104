#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

/// An open regular file; a pipe, folder or device is not opened and does not block.
class RegularFile
{
public:
    /// For reading.
    static std::optional<RegularFile> open(const std::string &path);

    /// For reading and writing; made where there is none, left as it is where there is one.
    static std::optional<RegularFile> create(const std::string &path);

    RegularFile(RegularFile &&other) noexcept;
    RegularFile &operator=(RegularFile &&other) = delete;
    ~RegularFile();

    /// False if something that was written has been lost. Closed in any case.
    bool close();

    int descriptor() const { return m_descriptor; }
    std::uint64_t size() const { return m_size; }

private:
    static std::optional<RegularFile> open(const std::string &path, int flags);

    RegularFile(int descriptor, std::uint64_t size)
        : m_descriptor(descriptor)
        , m_size(size)
    {}

    int m_descriptor;
    std::uint64_t m_size; ///< bytes
};

/// A part of a file that outlives it, for reading.
class FileSlice
{
public:
    explicit FileSlice(const RegularFile &file)
        : FileSlice(file.descriptor(), 0, file.size())
    {}

    /// The part from `start`, `size` bytes or what there is of them.
    FileSlice part(std::uint64_t start, std::uint64_t size) const;

    std::uint64_t size() const { return m_size; }

    /// False, with `bytes` undefined, if the part does not hold all of it.
    bool read(std::uint64_t offset, void *bytes, std::size_t count) const;

private:
    FileSlice(int descriptor, std::uint64_t start, std::uint64_t size)
        : m_descriptor(descriptor)
        , m_start(start)
        , m_size(size)
    {}

    int m_descriptor;
    std::uint64_t m_start;
    std::uint64_t m_size;
};
