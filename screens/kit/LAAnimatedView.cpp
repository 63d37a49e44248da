#include "screens/kit/LAAnimatedView.h"

#include "export/Framr.h"

namespace {

// A screen rect as seen from the centre of the full-screen circle.
QRectF fromCircleCentre(const QRectF& onScreen) {
    const QRectF circle = Framr::fullScrnCircle();
    return Framr::tffsrtfsc(onScreen).translated(-circle.width() / 2.0, -circle.height() / 2.0);
}

}  // namespace

QRectF LAAnimatedView::cancelButtonPlace() const { return fromCircleCentre(Framr::ffBottomButtonAtCol(0, false)); }
QRectF LAAnimatedView::doneButtonPlace() const { return fromCircleCentre(Framr::ffBottomButtonAtCol(2, false)); }

void LAAnimatedView::addCancelButton() {
    m_hasCancel = true;
    emit buttonsChanged();
}

void LAAnimatedView::addDoneButton() {
    m_hasDone = true;
    emit buttonsChanged();
}
