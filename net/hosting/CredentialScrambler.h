#pragma once

#include <QString>

#include <optional>

/// Makes a credential unreadable to who looks into the settings by chance. This is obfuscation and
/// no encryption: the key is the same in every copy of the program. There is no way back.
///
/// The result is base64 of: the format's version 3, a flags byte (1 compressed, 2 checksum), and a
/// block of the random byte, the data's CRC-16 and the data, in which each byte is combined with
/// the key and the one before it. So the random byte changes all that follows it.
class CredentialScrambler
{
public:
    enum Error { None = 0, NoKeySet = 1 };

    void setKey(quint64 key) { m_key = key; }

    /// `text` with `random`, which the caller draws. Without a key: the empty text, and a warning.
    QString scramble(const QString &text, quint8 random);

    /// What the last scramble() met with.
    Error lastError() const { return m_lastError; }

private:
    std::optional<quint64> m_key;
    Error m_lastError = None;
};
