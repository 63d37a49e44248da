#include "screens/kit/LAAdjustView.h"

#include <algorithm>

#include "export/Framr.h"
#include "screens/kit/KitColorer.h"

LAAdjustView::LAAdjustView(double minValue, double maxValue, Indicator indicator, QObject* parent)
    : AnimatedView(parent),
      m_value(minValue),
      m_minValue(minValue),
      m_maxValue(maxValue),
      m_indicator(indicator),
      m_titleColor(KitColorer::backgColor()) {}

void LAAdjustView::setValue(double value) {
    const double clamped = std::clamp(value, m_minValue, m_maxValue);
    if (clamped == m_value) return;
    m_value = clamped;
    relayoutIndicator();
    emit valueChanged();
}

QString LAAdjustView::label() const { return QString::number(static_cast<int>(m_value)); }

void LAAdjustView::setCanEnlarge(bool can) {
    if (can == m_canEnlarge) return;
    m_canEnlarge = can;
    emit canEnlargeChanged();
}

void LAAdjustView::setInitialFrame(const QRectF& frame) {
    m_initialFrame = frame;
    emit initialFrameChanged();
    if (m_fullscr) return;
    setFrame(frame);
    setCornerRadius(kDefaultCornerKoeff * frame.width());  // a round control
}

QRectF LAAdjustView::enlargedFrame() const {
    return m_enlargedFrame.isEmpty() ? Framr::fullScrnCircle() : m_enlargedFrame;
}

void LAAdjustView::setEnlargedFrame(const QRectF& frame) {
    m_enlargedFrame = frame;
    emit enlargedFrameChanged();
}

void LAAdjustView::setTitleColor(const QColor& color) {
    if (color == m_titleColor) return;
    m_titleColor = color;
    emit titleColorChanged();
}

void LAAdjustView::panBegan() { setNowswipe(true); }

void LAAdjustView::panChanged(double tx, double ty) {
    const double h = frame().height();
    if (h <= 0) return;
    setValue(m_value + (ty / h) * kUpStepPerHeight + tx / h);
    emit dragged();
    tellDragged();
}

void LAAdjustView::panEnded() { setNowswipe(false); }

void LAAdjustView::nudge(double delta) {
    setValue(m_value + delta);
    emit dragged();
    tellDragged();
}

void LAAdjustView::pressed() {
    if (m_nowswipe) return;
    if (m_canEnlarge) enlargAdjustView();
    emit tapped();
    tellPressed();
}

void LAAdjustView::enlargAdjustView() {
    m_fullscr = !m_fullscr;
    emit fullscrChanged();  // the view brings itself to the front
    moveToCircle(m_fullscr ? enlargedFrame() : m_initialFrame, frame());
}

void LAAdjustView::layoutSubviewsFor(const QRectF& frame) {
    // Enlarged, the inner circle stays within half the screen width, centred.
    m_circleFrame = Framr::ffCircleViewOn(frame);
    m_labelPixelSize = kLabelHeightFactor * frame.height();
    m_indicatorFrame = indicatorFor(m_circleFrame);
    emit subviewsChanged();
}

void LAAdjustView::relayoutIndicator() {
    m_indicatorFrame = indicatorFor(m_circleFrame);
    emit subviewsChanged();
}

void LAAdjustView::setNowswipe(bool now) {
    if (now == m_nowswipe) return;
    m_nowswipe = now;
    emit nowswipeChanged();
}
