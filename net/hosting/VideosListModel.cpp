#include "VideosListModel.h"

int VideosListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_videos.size();
}

QVariant VideosListModel::data(const QModelIndex &index, int role) const
{
    if (index.row() < 0 || index.row() >= m_videos.size())
        return {};
    const Video &video = m_videos.at(index.row());
    switch (role) {
    case UserNameRole:
        return video.userName;
    case CopyrightRole:
        return video.copyright;
    case TitleRole:
        return video.title;
    case DescriptionRole:
        return video.description;
    case CreationDateRole:
        return video.creationDate;
    case ThumbLinkRole:
        return video.thumbLink;
    case PresetsRole:
        return video.presets;
    case SourceUrlRole:
        return video.sourceUrl;
    case KeyRole:
        return video.key;
    default:
        return {};
    }
}

QHash<int, QByteArray> VideosListModel::roleNames() const
{
    return {{UserNameRole, "userName"},
            {CopyrightRole, "copyright"},
            {TitleRole, "title"},
            {DescriptionRole, "description"},
            {CreationDateRole, "creationDate"},
            {ThumbLinkRole, "thumbLink"},
            {PresetsRole, "presets"},
            {SourceUrlRole, "sourceUrl"},
            {KeyRole, "key"}};
}

void VideosListModel::add(const QVariantList &videos)
{
    if (videos.isEmpty())
        return;
    beginInsertRows(QModelIndex(), 0, videos.size() - 1);
    m_videos.reserve(m_videos.size() + videos.size());
    for (const QVariant &element : videos) {
        const QVariantMap map = element.toMap();
        const auto text = [&map](const char *name) {
            return map.value(QLatin1String(name)).toString();
        };
        m_videos.append({text("username"), text("copyright"), text("title"), text("description"),
                         text("creation_date"), text("thumb_link"),
                         map.value(QStringLiteral("presets")).toList(), text("source"),
                         text("key")});
    }
    endInsertRows();
}

void VideosListModel::clear()
{
    if (m_videos.isEmpty())
        return; // there is no range of no rows
    beginRemoveRows(QModelIndex(), 0, m_videos.size() - 1);
    m_videos.clear();
    endRemoveRows();
}
