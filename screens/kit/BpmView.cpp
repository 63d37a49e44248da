#include "screens/kit/BpmView.h"

#include "export/Framr.h"

void BpmView::updateIndicatorViewForTact(int tact) {
    m_tact = static_cast<uint16_t>(tact);
    relayoutIndicator();
    emit tactChanged();
}

QRectF BpmView::indicatorFor(const QRectF& circle) const { return Framr::ffIndiktViewOn(circle, m_tact); }

void BpmView::tellDragged() {
    if (m_delegate) m_delegate->updateBpm(static_cast<float>(value()));
}

void BpmView::tellPressed() {
    if (m_delegate) m_delegate->bpmViewPressed();
}
