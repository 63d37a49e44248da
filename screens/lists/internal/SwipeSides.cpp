#include "SwipeSides.h"

#include <QQmlContext>
#include <QQuickItem>
#include <QtQml/qqml.h>

void SwipeSides::adopt(QQuickItem* row, QQuickItem* side) {
    if (row == nullptr || side == nullptr || side->parent() == row) return;
    side->setParent(row);
    // The side item's own context sits inside the one made for it, whose
    // context object is the row; that one has no owner either.
    for (QQmlContext* context = qmlContext(side); context != nullptr; context = context->parentContext()) {
        if (context->contextObject() != row) continue;
        if (context->parent() == nullptr) context->setParent(row);
        break;
    }
}
