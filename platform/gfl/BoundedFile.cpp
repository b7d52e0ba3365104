#include "BoundedFile.h"

#include <cstdio>

namespace {

// In bytes: what a call costs beside them.
constexpr long kByteCost = 16;
constexpr long kStepCost = 128;

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
    return take(kByteCost) ? FileIo::getb() : EOF;
}

int BoundedFile::seek(long offset, Position position)
{
    return take(kStepCost) ? FileIo::seek(offset, position) : 1;
}
