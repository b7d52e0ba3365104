#include "AccessibleTree.h"

#include <QCursor>
#include <QQuickItem>
#include <QWindow>

#include <algorithm>

namespace {

void collectAccessibles(QAccessibleInterface *under, QVector<QAccessibleInterface *> &found)
{
    if (!under || under->state().invisible)
        return;
    found += under;
    for (int i = 0; i < under->childCount(); ++i)
        collectAccessibles(under->child(i), found);
}

bool hasNameAndRole(QQuickItem *item)
{
    QAccessibleInterface *told = QAccessible::queryAccessibleInterface(item);
    return told && told->role() != QAccessible::NoRole && told->role() != QAccessible::Client
        && !told->text(QAccessible::Name).isEmpty();
}

/// Whether something with a name stands around, under or beside a place of the scene.
bool belongsToSomething(QQuickItem *place)
{
    const QRectF area = place->mapRectToScene(place->boundingRect());
    const auto isIt = [&area](QQuickItem *item) {
        return hasNameAndRole(item) && item->mapRectToScene(item->boundingRect()).intersects(area);
    };
    const QList<QQuickItem *> beside = place->parentItem()->childItems();
    return isIt(place->parentItem()) || std::any_of(beside.cbegin(), beside.cend(), isIt);
}

void collectHotPlaces(const QQuickItem *under, QVector<QQuickItem *> &found)
{
    const QList<QQuickItem *> children = under->childItems();
    for (QQuickItem *child : children) {
        if (!child->isVisible() || child->opacity() <= 0)
            continue;
        if (child->inherits("QQuickMouseArea") && child->cursor().shape() == Qt::PointingHandCursor)
            found += child;
        collectHotPlaces(child, found);
    }
}

} // namespace

QVector<QAccessibleInterface *> AccessibleTree::of(QWindow *window)
{
    QVector<QAccessibleInterface *> found;
    collectAccessibles(QAccessible::queryAccessibleInterface(window), found);
    return found;
}

QStringList AccessibleTree::namelessHotPlaces(const QQuickItem *scene, const QQuickItem *ground)
{
    QVector<QQuickItem *> places;
    collectHotPlaces(scene, places);
    QStringList found;
    for (QQuickItem *place : qAsConst(places)) {
        if (place->parentItem() != ground && !belongsToSomething(place))
            found += QString::fromLatin1(place->parentItem()->metaObject()->className());
    }
    return found;
}
