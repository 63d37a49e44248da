#include "screens/lists/panels/LoopOrFolderEditView.h"

#include "export/Framr.h"

LoopOrFolderEditView::LoopOrFolderEditView(const QString& name, const QString& folder, const QString& folderType,
                                           NameAndFolderDelegate* delegate, QObject* parent)
    : NameNFlderChoosrView(name, folder, folderType, parent), m_delegate(delegate) {
    addCancelButton();
    addDoneButton();
}

void LoopOrFolderEditView::showFrom(const QRectF& start) {
    moveToCircle(Framr::fullScrnCircle(), start, kStartCornerKoeff);
}

void LoopOrFolderEditView::donePressed() {
    finishEditing();
    if (m_delegate) m_delegate->applyName(name(), folderName());
    emit applied(name(), folderName());
    cancelPressed();
}

void LoopOrFolderEditView::cancelPressed() {
    if (m_delegate) m_delegate->removEditView();
    emit removed();
}
