#include "ImageFiles.h"

#include <QFile>
#include <QProcess>
#include <QtEndian>

#include <cmath>

using namespace ImageFiles;

namespace {

enum Type : quint16 { Text = 2, Short = 3, Long = 4, Rational = 5, Bytes = 7, SignedRational = 10 };

constexpr quint32 kThousand = 1000;
constexpr quint16 kMaker = 0x10F;
constexpr quint16 kExifDirectory = 0x8769;
constexpr quint16 kMakerNote = 0x927C;
constexpr quint16 kFocalLength35mm = 0xA405;

} // namespace

QString ImageFiles::run(const QString &program, const QStringList &arguments)
{
    QProcess tool;
    tool.setProcessChannelMode(QProcess::MergedChannels);
    tool.start(program, arguments);
    if (tool.waitForFinished(60000) && tool.exitStatus() == QProcess::NormalExit
        && tool.exitCode() == 0)
        return {};
    return program + QStringLiteral(": ") + QString::fromLocal8Bit(tool.readAll());
}

QByteArray ImageFiles::read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool ImageFiles::write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

TiffWriter::TiffWriter(bool bigEndian)
    : m_bigEndian(bigEndian)
    , m_block((bigEndian ? QByteArray("MM") : QByteArray("II")) + number(42, 2) + number(0, 4))
{}

QByteArray TiffWriter::number(quint32 value, int bytes) const
{
    const quint32 ordered = m_bigEndian ? qToBigEndian(value) : qToLittleEndian(value);
    const QByteArray all(reinterpret_cast<const char *>(&ordered), sizeof ordered);
    return m_bigEndian ? all.right(bytes) : all.left(bytes);
}

TiffItem TiffWriter::text(quint16 tag, const QByteArray &text) const
{
    return {tag, Text, quint32(text.size() + 1), text + '\0'};
}

TiffItem TiffWriter::bytes(quint16 tag, const QByteArray &bytes) const
{
    return {tag, Bytes, quint32(bytes.size()), bytes};
}

TiffItem TiffWriter::shorts(quint16 tag, const QVector<quint16> &values) const
{
    QByteArray all;
    for (const quint16 value : values)
        all += number(value, 2);
    return {tag, Short, quint32(values.size()), all};
}

TiffItem TiffWriter::pointer(quint16 tag, quint32 offset) const
{
    return {tag, Long, 1, number(offset, 4)};
}

TiffItem TiffWriter::rationals(quint16 tag, quint16 type, const QVector<double> &values) const
{
    QByteArray all;
    for (const double value : values)
        all += number(quint32(std::lround(value * kThousand)), 4) + number(kThousand, 4);
    return {tag, type, quint32(values.size()), all};
}

quint32 TiffWriter::add(const QByteArray &piece)
{
    const quint32 start = end();
    m_block += piece + QByteArray(piece.size() % 2, '\0');
    return start;
}

quint32 TiffWriter::addDirectory(const QVector<TiffItem> &items, quint32 next,
                                 const QByteArray &header, quint32 base)
{
    const quint32 start = end() + quint32(header.size());
    const quint32 valuesStart = start + 2 + 12 * quint32(items.size()) + 4;
    QByteArray directory = number(quint32(items.size()), 2);
    QByteArray values;
    for (const TiffItem &item : items) {
        directory += number(item.tag, 2) + number(item.type, 2) + number(item.count, 4);
        if (item.value.size() <= 4) {
            directory += item.value.leftJustified(4, '\0');
        } else {
            directory += number(valuesStart + quint32(values.size()) - base, 4);
            values += item.value + QByteArray(item.value.size() % 2, '\0');
        }
    }
    add(header + directory + number(next, 4) + values);
    return start;
}

QByteArray TiffWriter::finished(quint32 firstDirectory) const
{
    return m_block.left(4) + number(firstDirectory, 4) + m_block.mid(8);
}

QByteArray ImageFiles::cameraExif(TiffWriter &writer, const QByteArray &maker, quint32 noteStart,
                                  quint32 noteEnd, quint16 focalLength35mm)
{
    TiffItem note = writer.pointer(kMakerNote, noteStart);
    note.type = Bytes;
    note.count = noteEnd - noteStart;
    const quint32 exif = writer.addDirectory(
        {note, writer.shorts(kFocalLength35mm, {focalLength35mm})});
    return writer.finished(
        writer.addDirectory({writer.text(kMaker, maker), writer.pointer(kExifDirectory, exif)}));
}

QByteArray ImageFiles::sphericalExif(double first, double second, bool bigEndian)
{
    TiffWriter writer(bigEndian);
    // The note has to come first, with its header, and so has to know where the angles will stand.
    constexpr quint32 kNoteSize = 8 + 2 + 12 + 4;
    const quint32 start = writer.end();
    writer.addDirectory({writer.pointer(0x4001, start + kNoteSize)}, 0,
                        QByteArray("Ricoh\0\0\0", 8));
    writer.addDirectory({writer.rationals(3, SignedRational, {first, second}),
                         writer.rationals(4, Rational, {123.4})});
    return cameraExif(writer, "RICOH", start, writer.end());
}

QByteArray ImageFiles::canonExif(quint16 lens, quint16 focalLength, bool bigEndian)
{
    TiffWriter writer(bigEndian);
    constexpr int kLensType = 22;
    QVector<quint16> settings(46, 0);
    settings[0] = quint16(2 * settings.size());
    settings[kLensType] = lens;
    const quint32 start = writer.addDirectory({writer.shorts(1, settings)});
    return cameraExif(writer, "Canon", start, writer.end(), focalLength);
}

QByteArray ImageFiles::nikonExif(const QByteArray &lensCodes, quint16 focalLength, bool bigEndian)
{
    TiffWriter writer(bigEndian);
    const quint32 start = writer.end();
    const quint32 base = start + 10;
    const QByteArray ownHeader = writer.finished(0).left(4) + writer.number(8, 4);
    writer.addDirectory({writer.bytes(0x98, "0100" + QByteArray(2, '\0') + lensCodes)}, 0,
                        QByteArray("Nikon\0\2\x10\0\0", 10) + ownHeader, base);
    return cameraExif(writer, "NIKON CORPORATION", start, writer.end(), focalLength);
}

QByteArray ImageFiles::olympusExif(const QByteArray &lensType, quint16 focalLength, bool bigEndian)
{
    TiffWriter writer(bigEndian);
    const quint32 start = writer.end();
    const QByteArray header("OLYMPUS\0II\3\0", 12);             // whatever the order of the bytes
    const auto equipment = quint32(header.size() + 2 + 12 + 4); // from the note's start
    writer.addDirectory({writer.pointer(0x2010, equipment)}, 0, header);
    TiffItem lens = writer.bytes(0x201, lensType);
    lens.type = 1;
    writer.addDirectory({lens}, 0, {}, start);
    return cameraExif(writer, "OLYMPUS CORPORATION", start, writer.end(), focalLength);
}

QByteArray ImageFiles::withSegment(const QByteArray &jpeg, char marker, const QByteArray &content)
{
    constexpr int kStart = 2;
    const int size = content.size() + 2;
    return jpeg.left(kStart) + '\xff' + marker + char(size >> 8) + char(size & 0xff) + content
        + jpeg.mid(kStart);
}

QByteArray ImageFiles::withExif(const QByteArray &jpeg, const QByteArray &exif)
{
    return withSegment(jpeg, '\xe1', QByteArray("Exif\0\0", 6) + exif);
}
