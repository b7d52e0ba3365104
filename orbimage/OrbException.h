#pragma once

#include "gfl.h"

#include <QString>

#include <exception>

/// Why pixels could not be had: the image library's only exception. Thrown by value.
class OrbException : public std::exception
{
public:
    /// `message` is for the user and translated. The place is where the exception is made.
    explicit OrbException(const QString &message, const char *file = __builtin_FILE(),
                          int line = __builtin_LINE());

    /// The exception for what went wrong in reading or writing `fileName`, or without a file where
    /// that is empty.
    explicit OrbException(GflError error, const QString &fileName = {},
                          const char *file = __builtin_FILE(), int line = __builtin_LINE());

    const QString &location() const { return m_location; }
    const QString &message() const { return m_message; }

    /// The message in the locale's character set.
    const char *what() const noexcept override { return m_what.constData(); }

private:
    QString m_location; ///< File: "<source>" Line: <number>
    QString m_message;
    QByteArray m_what;
};
