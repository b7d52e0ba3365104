#pragma once

#include <QAbstractListModel>

/// The hosted videos, "videosListModel" in the scene. Main thread.
class VideosListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
};
