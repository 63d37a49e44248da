#include "screens/kit/VolumeView.h"

#include "export/Framr.h"

QRectF VolumeView::indicatorFor(const QRectF& circle) const {
    return Framr::ffIndiktViewOn(circle, value() / maxValue());
}

void VolumeView::tellDragged() {
    if (m_delegate) m_delegate->updateVolume(this);
}

void VolumeView::tellPressed() {
    if (m_delegate) m_delegate->volumeViewPressed(this);
}
