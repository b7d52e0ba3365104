#include "VideosListModel.h"

int VideosListModel::rowCount(const QModelIndex &) const
{
    return 0;
}

QVariant VideosListModel::data(const QModelIndex &, int) const
{
    return {};
}
