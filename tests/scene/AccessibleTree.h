#pragma once

#include <QAccessible>
#include <QStringList>
#include <QVector>

class QQuickItem;
class QWindow;

/// What assistive technology is told of a window.
namespace AccessibleTree {

/// Everything in the window that it sees, parents before their children.
QVector<QAccessibleInterface *> of(QWindow *window);

/// Where in the scene the pointing hand shows over nothing that has a name and a role: the kinds of
/// items that such places stand in. `ground` is a place of its own that needs none.
QStringList namelessHotPlaces(const QQuickItem *scene, const QQuickItem *ground);

} // namespace AccessibleTree
