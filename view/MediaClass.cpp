#include "MediaClass.h"

#include <QDir>
#include <QFileInfo>
#include <QImageReader>

#include <algorithm>
#include <iterator>

namespace {

constexpr const char *kVideoSuffixes[] = {
    "3gp",   "aif", "asf",  "avi", "divx", "dvx", "flv", "h264", "m3u8", "m4v",  "mkv", "mov",
    "movie", "mp4", "mp4v", "mpe", "mpeg", "mpg", "ogg", "swf",  "ts",   "vivo", "wmv",
};

constexpr const char *kAddressSchemes[] = {"http", "https", "rtsp", "udp", "file"};

template <std::size_t size>
bool contains(const char *const (&names)[size], const QByteArray &name)
{
    return std::any_of(std::begin(names), std::end(names),
                       [&name](const char *known) { return name == known; });
}

QByteArray suffix(const QUrl &url)
{
    return QFileInfo(url.toString()).suffix().toLower().toUtf8();
}

bool isAddress(const QUrl &url)
{
    return contains(kAddressSchemes, url.scheme().toUtf8());
}

} // namespace

bool MediaClass::isImageFile(const QUrl &url)
{
    static const QList<QByteArray> formats = QImageReader::supportedImageFormats();
    return formats.contains(suffix(url));
}

bool MediaClass::isVideoFile(const QUrl &url)
{
    return contains(kVideoSuffixes, suffix(url));
}

QUrl MediaClass::sourceFromText(const QString &text)
{
    const QUrl url(text, QUrl::TolerantMode);
    return isAddress(url) ? url : QUrl::fromLocalFile(text);
}

QString MediaClass::absoluteSource(const QString &text, const QString &folder)
{
    if (isAddress(QUrl(text, QUrl::TolerantMode)))
        return text;
    return QDir(folder).absoluteFilePath(text);
}

QString MediaClass::typedSource(const QString &text, const QString &folder)
{
    const QString asTyped = QDir(folder).absoluteFilePath(text);
    if (!text.isEmpty() && QFileInfo(asTyped).isFile())
        return asTyped;

    QString source = text.trimmed();
    const bool quoted = source.size() >= 2 && source.front() == source.back()
        && (source.front() == QLatin1Char('"') || source.front() == QLatin1Char('\''));
    if (quoted)
        source = source.mid(1, source.size() - 2);
    if (source == QLatin1Char('~') || source.startsWith(QLatin1String("~/")))
        source.replace(0, 1, QDir::homePath());
    return source.isEmpty() ? source : absoluteSource(source, folder);
}
