#pragma once
// Gives a swiped row's side buttons to the row. Qt Quick makes a
// SwipeDelegate's side items (and the context they are made in) the first
// time the row is swiped, sets only their visual parent, and never frees
// them: every row deleted or recycled after a swipe would leave its buttons
// and all their bindings behind. Owned by the row, they go with it.
#include <QObject>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

class SwipeSides : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;
    // Makes `row` the owner of `side` (a swipe.leftItem or swipe.rightItem)
    // and of the context Qt Quick made it in. Safe to call again or with null.
    Q_INVOKABLE static void adopt(QQuickItem* row, QQuickItem* side);
};
