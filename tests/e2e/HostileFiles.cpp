#include "HostileFiles.h"

#include <QBuffer>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtEndian>

namespace {

constexpr int kGarbageSize = 5000;

QByteArray bigEndian(quint32 value)
{
    const quint32 swapped = qToBigEndian(value);
    return QByteArray(reinterpret_cast<const char *>(&swapped), sizeof swapped);
}

/// CRC-32 with the polynomial of ISO 3309, reflected.
quint32 crc32(const QByteArray &bytes)
{
    quint32 crc = 0xffffffff;
    for (const char byte : bytes) {
        crc ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc & 1U ? crc >> 1U ^ 0xedb88320U : crc >> 1U;
    }
    return ~crc;
}

QByteArray pngChunk(const QByteArray &type, const QByteArray &data)
{
    return bigEndian(static_cast<quint32>(data.size())) + type + data
        + bigEndian(crc32(type + data));
}

} // namespace

QByteArray HostileFiles::pngOfSide(quint32 side, const QByteArray &compressed)
{
    const QByteArray eightBitRgb("\x08\x02\x00\x00\x00", 5);
    QByteArray png = QByteArray("\x89PNG\r\n\x1a\n", 8)
        + pngChunk("IHDR", bigEndian(side) + bigEndian(side) + eightBitRgb);
    if (!compressed.isEmpty())
        png += pngChunk("IDAT", compressed) + pngChunk("IEND", QByteArray());
    return png;
}

QByteArray HostileFiles::fewPixels()
{
    constexpr int kLengthPrefix = 4; // Qt's own, before the zlib stream
    return qCompress(QByteArray(300001, '\0')).mid(kLengthPrefix);
}

QByteArray HostileFiles::jpeg()
{
    QImage image(512, 256, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x % 256, y, (x * y) % 256));
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "jpg", 90);
    return bytes;
}

QByteArray HostileFiles::garbage()
{
    QByteArray bytes(kGarbageSize, '\0');
    quint32 value = 1;
    for (char &byte : bytes) {
        value = value * 1664525U + 1013904223U;
        byte = static_cast<char>(value >> 24U);
    }
    return bytes;
}

QByteArray HostileFiles::playlist(int entries)
{
    QJsonArray array;
    for (int i = 0; i < entries; ++i)
        array.append(QJsonObject{{QStringLiteral("media"), QStringLiteral("none-%1.jpg").arg(i)},
                                 {QStringLiteral("logo"), QStringLiteral("none.png")}});
    return QJsonDocument(array).toJson();
}
