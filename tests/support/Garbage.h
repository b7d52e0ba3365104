#pragma once

#include <QByteArray>

#include <algorithm>
#include <random>

/// Bytes without sense, the same each time.
inline QByteArray garbage(int size)
{
    QByteArray bytes(size, '\0');
    std::minstd_rand random;
    std::generate(bytes.begin(), bytes.end(), [&random] { return char(random() >> 8U); });
    return bytes;
}
