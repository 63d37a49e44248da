#pragma once
// Finding the views' items by object name. The items live in the visual tree,
// whatever their QObject parents, so QObject::findChild does not reach them all.
#include <QPoint>
#include <QQuickItem>
#include <QString>

inline QQuickItem* findItem(QQuickItem* root, const QString& name) {
    if (root->objectName() == name) return root;
    for (QQuickItem* child : root->childItems())
        if (QQuickItem* found = findItem(child, name)) return found;
    return nullptr;
}

// The item's centre in window coordinates (where a synthetic tap lands).
inline QPoint centerOf(QQuickItem* item) {
    return item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint();
}
