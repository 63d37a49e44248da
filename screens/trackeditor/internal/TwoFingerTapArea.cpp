#include "screens/trackeditor/internal/TwoFingerTapArea.h"

#include <QGuiApplication>
#include <QStyleHints>
#include <QTouchEvent>
#include <algorithm>

TwoFingerTapArea::TwoFingerTapArea(QQuickItem* parent) : QQuickItem(parent) {
    setFiltersChildMouseEvents(true);
    setAcceptTouchEvents(true);
}

bool TwoFingerTapArea::childMouseEventFilter(QQuickItem*, QEvent* event) {
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
        return follow(static_cast<QTouchEvent*>(event));
    default:
        return false;
    }
}

void TwoFingerTapArea::touchEvent(QTouchEvent* event) {
    if (!follow(event)) event->ignore();
}

void TwoFingerTapArea::touchUngrabEvent() { reset(); }

bool TwoFingerTapArea::follow(QTouchEvent* event) {
    const auto& points = event->points();
    if (!m_tracking) {
        if (points.size() < 2) return false;
        m_tracking = true;
        m_moved = false;
        m_pressedAt = event->timestamp();
        m_starts.clear();
        QList<int> ids;
        for (const QEventPoint& p : points) {
            m_starts[p.id()] = p.scenePosition();
            ids.append(p.id());
        }
        grabTouchPoints(ids);  // what was under the first finger lets it go
        return true;
    }
    const double slop = QGuiApplication::styleHints()->startDragDistance();
    bool allUp = true;
    for (const QEventPoint& p : points) {
        auto start = m_starts.find(p.id());
        if (start == m_starts.end() || (p.scenePosition() - start->second).manhattanLength() > slop) m_moved = true;
        if (p.state() != QEventPoint::State::Released) allUp = false;
    }
    if (points.size() > 2) m_moved = true;  // three fingers are no two-finger tap
    if (allUp || event->type() == QEvent::TouchEnd) {
        const bool quick = event->timestamp() - m_pressedAt < static_cast<quint64>(kTapMs);
        const bool tap = quick && !m_moved;
        reset();
        if (tap) emit tapped();
    }
    return true;
}

void TwoFingerTapArea::reset() {
    m_tracking = false;
    m_starts.clear();
}
