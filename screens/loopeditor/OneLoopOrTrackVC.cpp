#include "screens/loopeditor/OneLoopOrTrackVC.h"

#include "app/AppDelegate.h"
#include "screens/kit/KitColorer.h"

OneLoopOrTrackVC::OneLoopOrTrackVC(QObject* parent) : QObject(parent), _bpmView(new BpmView(this)) {
    _bpmView->setDelegate(this);
    m_trashTint = KitColorer::mainColor();
    m_panelColor = KitColorer::backgColor();
    _bpmView->setTitleColor(KitColorer::mainColor());
}

OneLoopOrTrackVC::~OneLoopOrTrackVC() = default;

void OneLoopOrTrackVC::setUpBase(float bpm) {
    _bpm = bpm;
    _paused = false;
    _deleting = false;
    _instrsToDelete.clear();
    _bpmView->setValue(bpm);
    emit bpmChanged();
    emit pausedChanged();
    emit deletingChanged();
    updateTrashImage();
}

void OneLoopOrTrackVC::setBackBtnArrow(bool arrow) {
    if (_backBtnArrow == arrow) return;
    _backBtnArrow = arrow;
    emit backBtnArrowChanged();
}

void OneLoopOrTrackVC::setTitle(const QString& title) {
    if (m_title == title) return;
    m_title = title;
    emit titleChanged();
}

void OneLoopOrTrackVC::setPanelColor(const QColor& color) {
    if (m_panelColor == color) return;
    m_panelColor = color;
    emit panelColorChanged();
}

void OneLoopOrTrackVC::setPausedState(bool paused) {
    if (_paused == paused) return;
    _paused = paused;
    setPlayerPaused(paused);
    emit pausedChanged();
}

void OneLoopOrTrackVC::pausePressed() { setPausedState(!_paused); }

void OneLoopOrTrackVC::trashOkPressed() {
    if (itemViewOpen()) {
        removeItemView();  // the button is OK: it closes the open item
        updateTrashImage();
        return;
    }
    if (!hasItems()) return;
    trashOkInMain();
}

void OneLoopOrTrackVC::trashOkInMain() {
    _deleting = !_deleting;
    emit deletingChanged();
    if (_deleting)
        startDeletion();
    else
        applyDelete();
    updateTrashImage();
}

void OneLoopOrTrackVC::updateTrashImage() {
    const bool open = itemViewOpen();
    const QString image = (_deleting || open) ? QStringLiteral("okButton") : QStringLiteral("trashButton");
    const QColor tint = open ? KitColorer::backgColor() : KitColorer::mainColor();
    if (image == m_trashImage && tint == m_trashTint) return;
    m_trashImage = image;
    m_trashTint = tint;
    emit trashImageChanged();
}

void OneLoopOrTrackVC::refreshNavigationBar() {
    const bool hidden = itemViewOpen() || _bpmView->fullscr() || panelHidesNavigationBar();
    if (hidden == m_navigationBarHidden) return;
    m_navigationBarHidden = hidden;
    emit navigationBarHiddenChanged();
}

void OneLoopOrTrackVC::menuButtonTapped() {
    willLeave();
    if (AppDelegate* app = AppDelegate::shared()) app->removeAllChannelsFromAC();
    emit closeRequested();
}

void OneLoopOrTrackVC::removeExportVC() {
    _exportOpen = false;
    refreshNavigationBar();
}

void OneLoopOrTrackVC::updateBpm(float bpm) {
    _bpm = bpm;
    emit bpmChanged();
    tempoChanged(bpm);
}

void OneLoopOrTrackVC::bpmViewPressed() {
    bpmViewEnlargedChanged(_bpmView->fullscr());
    refreshNavigationBar();
}
