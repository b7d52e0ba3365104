#include "CredentialScrambler.h"

#include <QByteArray>

namespace {

constexpr quint8 kVersion = 3;
constexpr quint8 kCompressed = 1;
constexpr quint8 kChecksum = 2;

} // namespace

QString CredentialScrambler::scramble(const QString &text, quint8 random)
{
    if (!m_key) {
        qWarning("No key set.");
        m_lastError = NoKeySet;
        return {};
    }
    quint8 flags = kChecksum;
    QByteArray data = text.toUtf8();
    const QByteArray compressed = qCompress(data, 9);
    if (compressed.size() < data.size()) {
        data = compressed;
        flags |= kCompressed;
    }
    const quint16 checksum = qChecksum(data.constData(), static_cast<uint>(data.size()));

    QByteArray block;
    block.append(static_cast<char>(random));
    block.append(static_cast<char>(checksum >> 8U));
    block.append(static_cast<char>(checksum));
    block.append(data);
    quint8 last = 0;
    for (int i = 0; i < block.size(); ++i) {
        const auto keyByte = static_cast<quint8>(*m_key >> (8U * (static_cast<uint>(i) % 8U)));
        last ^= static_cast<quint8>(block.at(i)) ^ keyByte;
        block[i] = static_cast<char>(last);
    }
    block.prepend(static_cast<char>(flags));
    block.prepend(static_cast<char>(kVersion));
    m_lastError = None;
    return QString::fromLatin1(block.toBase64());
}
