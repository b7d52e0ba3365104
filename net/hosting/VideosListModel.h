#pragma once

#include <QAbstractListModel>
#include <QVector>

/// The hosted videos, "videosListModel" in the scene. Main thread.
class VideosListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        UserNameRole = Qt::UserRole + 1,
        CopyrightRole,
        TitleRole,
        DescriptionRole,
        CreationDateRole,
        ThumbLinkRole,
        PresetsRole, ///< a list of maps, each with an "url", the best last; all other roles are
                     ///< texts
        SourceUrlRole,
        KeyRole
    };

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Appends `videos`, maps as the service sends them; what one lacks is empty. The rows are
    /// announced as those from 0, so the model is to be cleared before.
    void add(const QVariantList &videos);
    void clear();

private:
    struct Video
    {
        QString userName;
        QString copyright;
        QString title;
        QString description;
        QString creationDate;
        QString thumbLink;
        QVariantList presets;
        QString sourceUrl;
        QString key;
    };

    QVector<Video> m_videos;
};
