#include "OrbDropArea.h"

#include <QMimeData>

OrbDropArea::OrbDropArea(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(QQuickItem::ItemAcceptsDrops);
}

void OrbDropArea::dragEnterEvent(QDragEnterEvent *event)
{
    event->acceptProposedAction();
}

void OrbDropArea::dragMoveEvent(QDragMoveEvent *event)
{
    event->acceptProposedAction();
}

void OrbDropArea::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty())
        return;
    m_filePathList = urls;
    emit filePathListChanged();
}
