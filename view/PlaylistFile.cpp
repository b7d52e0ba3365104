#include "PlaylistFile.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr qint64 kLargestFile = qint64(64) * 1024 * 1024;

QUrl resolved(const QJsonValue &path, const QDir &folder)
{
    return QUrl::fromLocalFile(QDir::toNativeSeparators(folder.absoluteFilePath(path.toString())));
}

} // namespace

PlaylistFile::Playlist PlaylistFile::parse(const QByteArray &json, const QDir &folder)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (document.isNull())
        return {Error::CannotParse, {}};
    if (!document.isArray())
        return {Error::NotAnArray, {}};
    const QJsonArray array = document.array();
    if (array.isEmpty())
        return {Error::Empty, {}};

    Playlist playlist;
    playlist.entries.reserve(array.size());
    for (const QJsonValue &element : array) {
        const QJsonObject object = element.toObject();
        playlist.entries.append({resolved(object.value(QLatin1String("media")), folder),
                                 resolved(object.value(QLatin1String("logo")), folder)});
    }
    return playlist;
}

PlaylistFile::Playlist PlaylistFile::read(const QString &path)
{
    const QFileInfo info(path);
    QFile file(path);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {Error::CannotOpen, {}};
    if (file.size() > kLargestFile)
        return {Error::CannotParse, {}};
    return parse(file.read(kLargestFile), info.absoluteDir());
}
