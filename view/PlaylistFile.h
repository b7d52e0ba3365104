#pragma once

#include <QDir>
#include <QString>
#include <QUrl>
#include <QVector>

/// The playlist file, suffix "ospl": a JSON array of objects with the strings "media" and "logo",
/// paths relative to the file's folder or absolute.
namespace PlaylistFile {

enum class Error {
    None,
    CannotOpen,
    CannotParse,
    NotAnArray,
    Empty,
};

struct Entry
{
    QUrl media;
    QUrl logo;
};

struct Playlist
{
    Error error = Error::None;
    QVector<Entry> entries;
};

/// Reads the text of a playlist file that stands in `folder`. A missing or mistyped string counts
/// as empty and gives the folder itself.
Playlist parse(const QByteArray &json, const QDir &folder);

/// Reads a playlist file. Only regular files of at most 64 MiB are read.
Playlist read(const QString &path);

} // namespace PlaylistFile
