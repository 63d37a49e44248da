#include "screens/kit/AnimatedView.h"

#include "screens/kit/KitColorer.h"

AnimatedView::AnimatedView(QObject* parent) : QObject(parent), m_color(KitColorer::mainColor()) {}

void AnimatedView::setFrame(const QRectF& frame) {
    setAnimating(false, kMoveTime);
    takeFrame(frame);
}

void AnimatedView::setCornerRadius(double radius) {
    if (radius == m_cornerRadius) return;
    m_cornerRadius = radius;
    emit cornerRadiusChanged();
}

void AnimatedView::setColor(const QColor& color) {
    if (color == m_color) return;
    m_color = color;
    emit colorChanged();
}

void AnimatedView::moveToCircle(const QRectF& target, const QRectF& start, double startCRkoeff) {
    setAnimating(false, kMoveTime);
    takeFrame(start);
    setCornerRadius(startCRkoeff * start.width());
    // The radius is animated with the frame: the view follows both together.
    setAnimating(true, kMoveTime);
    takeFrame(target);
    setCornerRadius(startCRkoeff * target.width());
}

void AnimatedView::moveTo(const QRectF& target, double seconds) {
    setAnimating(true, seconds);
    takeFrame(target);
}

QRectF AnimatedView::setOneSubview(const QRectF& subview, const QRectF& selfNewFrame) const {
    return subview.translated((selfNewFrame.width() - m_frame.width()) / 2.0,
                              (selfNewFrame.height() - m_frame.height()) / 2.0);
}

void AnimatedView::setAnimating(bool animating, double seconds) {
    if (animating == m_animating && seconds == m_moveDuration) return;
    m_animating = animating;
    m_moveDuration = seconds;
    emit animatingChanged();
}

void AnimatedView::takeFrame(const QRectF& frame) {
    layoutSubviewsFor(frame);
    if (frame == m_frame) return;
    m_frame = frame;
    emit frameChanged();
}
