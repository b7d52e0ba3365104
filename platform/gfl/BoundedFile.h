#pragma once

#include <exiv2/basicio.hpp>

#include <string>

/// A file for Exiv2 that ends early for whoever reads or seeks without end.
class BoundedFile : public Exiv2::FileIo
{
public:
    explicit BoundedFile(const std::string &path)
        : FileIo(path)
    {}

    using FileIo::read;
    long read(Exiv2::byte *bytes, long count) override;
    int getb() override;
    using FileIo::seek;
    int seek(long offset, Position position) override;
    bool eof() const override { return m_left <= 0 || FileIo::eof(); }

private:
    bool take(long count);

    long m_left = 1L << 25; ///< bytes that may still be read; a step costs too
};
