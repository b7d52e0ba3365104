#pragma once

#include <QStringList>
#include <QUrl>

/// What a source is, judged by its name.
namespace MediaClass {

/// True if the suffix, in any case, is one of the installed image formats.
bool isImageFile(const QUrl &url);

/// True if the suffix, in any case, is one of the known video formats.
bool isVideoFile(const QUrl &url);

/// A source as users write it, as a URL: an address of the schemes http, https, rtsp, udp and file
/// stays one, anything else is the path of a local file.
QUrl sourceFromText(const QString &text);

/// The same for texts whose relative paths start at `folder`, an absolute path.
QString absoluteSource(const QString &text, const QString &folder);

/// What a user has typed, as `sourceFromText` takes it: blanks and a pair of quotes around it are
/// none of it, "~" is the home folder, and relative paths start at `folder`. A file that is named
/// exactly like the text is that file. Empty if nothing is left.
QString typedSource(const QString &text, const QString &folder);

} // namespace MediaClass
