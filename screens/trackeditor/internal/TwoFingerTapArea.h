#pragma once
// An area that sees a two-finger tap on a touch screen before the items in it
// do: two fingers down together and up again within a tap's time, without
// moving. Once a second finger is down the area takes both touches, so what
// is under them (a square, a row head) does not take them for a tap of its
// own; one finger goes through untouched.
#include <QPointF>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>
#include <map>

class QTouchEvent;

class TwoFingerTapArea : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT

public:
    static constexpr qint64 kTapMs = 500;

    explicit TwoFingerTapArea(QQuickItem* parent = nullptr);

signals:
    void tapped();

protected:
    bool childMouseEventFilter(QQuickItem* item, QEvent* event) override;
    void touchEvent(QTouchEvent* event) override;
    void touchUngrabEvent() override;

private:
    // True when the touches are the area's (two fingers, or what follows them).
    bool follow(QTouchEvent* event);
    void reset();

    bool m_tracking = false;
    bool m_moved = false;
    quint64 m_pressedAt = 0;
    std::map<int, QPointF> m_starts;  // by touch id, in the scene
};
