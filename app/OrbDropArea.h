#pragma once

#include <QList>
#include <QQuickItem>
#include <QUrl>

/// Takes whatever is dropped on it: every drop that carries URLs replaces the list.
class OrbDropArea : public QQuickItem
{
    Q_OBJECT
    Q_PROPERTY(QList<QUrl> filePathList READ filePathList NOTIFY filePathListChanged)

public:
    explicit OrbDropArea(QQuickItem *parent = nullptr);

    QList<QUrl> filePathList() const { return m_filePathList; }

signals:
    /// Also sent when the same files are dropped again.
    void filePathListChanged();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    QList<QUrl> m_filePathList;
};
