#pragma once

#include <QByteArray>

/// Contents of files that no program should have to open.
namespace HostileFiles {

/// A PNG whose header promises a square of RGB pixels; `compressed` are the data behind it. Without
/// data the file ends after the header.
QByteArray pngOfSide(quint32 side, const QByteArray &compressed);

/// The pixels of a few empty lines, as PNG has them.
QByteArray fewPixels();

/// A sound JPEG, to be cut.
QByteArray jpeg();

/// Bytes without sense, the same each time.
QByteArray garbage();

/// A playlist of pictures, none of which exists.
QByteArray playlist(int entries);

} // namespace HostileFiles
