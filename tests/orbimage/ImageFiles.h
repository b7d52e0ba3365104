#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVector>

/// Image files for tests: those that public tools make, and EXIF blocks byte by byte, for what no
/// tool writes.
namespace ImageFiles {

/// Runs a tool to its end. What it says if it fails, else empty.
QString run(const QString &program, const QStringList &arguments);

QByteArray read(const QString &path);
bool write(const QString &path, const QByteArray &content);

/// A directory's item; a value of up to four bytes stands in the item itself.
struct TiffItem
{
    quint16 tag;
    quint16 type;
    quint32 count;
    QByteArray value;
};

/// Writes a TIFF block piece by piece, each directory behind what it points to.
class TiffWriter
{
public:
    explicit TiffWriter(bool bigEndian);

    /// A number in the byte order of the block.
    QByteArray number(quint32 value, int bytes) const;

    TiffItem text(quint16 tag, const QByteArray &text) const;
    TiffItem bytes(quint16 tag, const QByteArray &bytes) const;
    TiffItem shorts(quint16 tag, const QVector<quint16> &values) const;
    TiffItem pointer(quint16 tag, quint32 offset) const;
    /// In thousandths; signed ones take the type 10, others 5.
    TiffItem rationals(quint16 tag, quint16 type, const QVector<double> &values) const;

    /// Where the next piece will stand, counted from the block's start.
    quint32 end() const { return quint32(m_block.size()); }

    /// Adds a piece; where it stands.
    quint32 add(const QByteArray &piece);

    /// Adds a directory that begins with `header`, and behind it the values of its items, whose
    /// places count from `base`; where it stands.
    quint32 addDirectory(const QVector<TiffItem> &items, quint32 next = 0,
                         const QByteArray &header = {}, quint32 base = 0);

    /// The block with its first directory.
    QByteArray finished(quint32 firstDirectory) const;

private:
    bool m_bigEndian;
    QByteArray m_block;
};

/// The EXIF block of a camera; `makerNote` stands in the block from `noteStart` to `noteEnd`.
QByteArray cameraExif(TiffWriter &writer, const QByteArray &maker, quint32 noteStart,
                      quint32 noteEnd, quint16 focalLength35mm = 50);

/// EXIF of a spherical camera with two zenith angles, degrees, in the order of the file.
QByteArray sphericalExif(double first, double second, bool bigEndian);

/// EXIF with the lens number in one maker's own form, and a focal length as of 35 mm film.
QByteArray canonExif(quint16 lens, quint16 focalLength, bool bigEndian);
QByteArray nikonExif(const QByteArray &lensCodes, quint16 focalLength, bool bigEndian);
QByteArray olympusExif(const QByteArray &lensType, quint16 focalLength, bool bigEndian);

/// The JPEG with another first segment of at most 65533 bytes.
QByteArray withSegment(const QByteArray &jpeg, char marker, const QByteArray &content);

/// The JPEG with an EXIF block as its first segment.
QByteArray withExif(const QByteArray &jpeg, const QByteArray &exif);

} // namespace ImageFiles
