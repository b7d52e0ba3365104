#pragma once

#include <QString>

/// How much this process holds of what the system gives. Linux.
struct ProcessLevel
{
    int files = 0; ///< open file descriptors
    int threads = 0;
    qint64 memory = 0; ///< resident kibibytes; 0 in a sanitizer's build, which keeps what is freed

    /// The level of this moment, after what is free has gone back to the system.
    static ProcessLevel now();

    /// Whether nothing is more than 5 % above `earlier`.
    bool isWithin(const ProcessLevel &earlier) const;
    QString text() const;
};
