#include "BoundedFile.h"

#include <cstdio>

namespace {

constexpr long kStepCost = 64; // in bytes: what a call of its own takes

} // namespace

bool BoundedFile::take(long count)
{
    if (count < 0 || count > m_left) {
        m_left = 0;
        return false;
    }
    m_left -= count;
    return true;
}

long BoundedFile::read(Exiv2::byte *bytes, long count)
{
    return take(count) && take(kStepCost) ? FileIo::read(bytes, count) : 0;
}

int BoundedFile::getb()
{
    return take(1) ? FileIo::getb() : EOF;
}

int BoundedFile::seek(long offset, Position position)
{
    return take(kStepCost) ? FileIo::seek(offset, position) : 1;
}
