#include "screens/trackeditor/TrackLoopView.h"

#include <QDebug>

#include "library/CoreDater.h"
#include "library/model/Model.h"
#include "library/palette/Colorer.h"
#include "playback/Loopplayer.h"
#include "playback/MainThreadDelegates.h"
#include "playback/PlaybackContext.h"
#include "screens/kit/KitColorer.h"

TrackLoopView::TrackLoopView(TrackLoop* trackloop, TrackLoopViewDelegate* delegate, QObject* parent)
    : QObject(parent),
      trackloop_(trackloop),
      delegate_(delegate),
      colorNum_(trackloop ? trackloop->color() : 0),
      loopV_(new LoopView(this)) {
    refreshLoopPicture();
    addPickerWithUpdatedItems();
}

TrackLoopView::~TrackLoopView() {
    if (soundColorV_) soundColorV_->disconnect(this);
    stopPreview();
    stopReceivingReports();
}

void TrackLoopView::setTrackloop(TrackLoop* trackloop) {
    trackloop_ = trackloop;
    colorNum_ = trackloop ? trackloop->color() : 0;
    refreshLoopPicture();
    emit changed();
}

QString TrackLoopView::title() const {
    return trackloop_ && trackloop_->loop() ? QString::fromStdString(trackloop_->loop()->name()) : QStringLiteral("???");
}

QColor TrackLoopView::color() const { return toQColor(Colorer::colorForNumber(colorNum_)); }

QColor TrackLoopView::buttonColor() const { return toQColor(*Colorer::darkerColorForColor(Colorer::colorForNumber(colorNum_))); }

void TrackLoopView::refreshLoopPicture() {
    loopV_->changeInstrumentsForNewLoop(trackloop_ ? trackloop_->loop() : nullptr);
    loopV_->changeInstrColorToDarkerIfSameAs(colorNum_);
}

QStringList TrackLoopView::folders() const {
    QStringList out{tr("All loops").toUpper()};
    for (ManagedObject* f : CoreDater::shIns().getAllItemsOfEntity("LoopFolder"))
        out.append(QString::fromStdString(static_cast<LoopFolder*>(f)->name()).toUpper());
    return out;
}

QStringList TrackLoopView::loops() const {
    QStringList out;
    for (Loop* l : folderLoops_) out.append(l->name().empty() ? QStringLiteral("???") : QString::fromStdString(l->name()));
    return out;
}

void TrackLoopView::loadFolderItems() {
    folderLoops_.clear();
    auto& d = CoreDater::shIns();
    if (folderRow_ == 0) {
        for (ManagedObject* o : d.getAllItemsOfEntity("Loop")) folderLoops_.push_back(static_cast<Loop*>(o));
        return;
    }
    auto all = d.getAllItemsOfEntity("LoopFolder");
    if (folderRow_ - 1 < static_cast<int>(all.size()))
        folderLoops_ = static_cast<LoopFolder*>(all[static_cast<size_t>(folderRow_ - 1)])->items();
}

void TrackLoopView::positionPickerOnLoop() {
    loopRow_ = 0;
    for (size_t i = 0; i < folderLoops_.size(); ++i)
        if (trackloop_ && folderLoops_[i] == trackloop_->loop()) loopRow_ = static_cast<int>(i);
}

void TrackLoopView::addPickerWithUpdatedItems() {
    folderRow_ = 0;
    loadFolderItems();
    positionPickerOnLoop();
    emit pickerChanged();
}

void TrackLoopView::selectFolder(int row) {
    if (row < 0 || row >= static_cast<int>(folders().size())) return;
    folderRow_ = row;
    loadFolderItems();
    positionPickerOnLoop();
    emit pickerChanged();
}

void TrackLoopView::selectLoop(int row) {
    if (row < 0 || row >= static_cast<int>(folderLoops_.size())) return;
    loopRow_ = row;
    updateTrackLoopWithLoop(folderLoops_[static_cast<size_t>(row)]);
    emit pickerChanged();
}

void TrackLoopView::updateTrackLoopWithLoop(Loop* loop) {
    if (!trackloop_ || !loop || loop == trackloop_->loop()) return;
    reallyUpdateTrackLoopWithLoop(loop);
}

void TrackLoopView::reallyUpdateTrackLoopWithLoop(Loop* loop) {
    if (!loop) return;
    stopPreview();
    if (delegate_) delegate_->somethingWillBeChanged();  // may rebind us to a copied row
    if (!trackloop_) return;
    trackloop_->setLoop(loop);
    CoreDater::shIns().save();
    refreshLoopPicture();
    if (delegate_) delegate_->loopWasChanged();
    emit changed();
}

SoundColorView* TrackLoopView::colorPressed() {
    if (soundColorV_) return soundColorV_;
    auto* chooser = new SoundColorView(this);
    chooser->setColorNumBefore(colorNum_);
    chooser->setOnFScircle(false);
    connect(chooser, &SoundColorView::colorPicked, this, &TrackLoopView::colorPicked);
    // Deleted later: the chooser is inside its own call when it asks to go.
    connect(chooser, &SoundColorView::removeSoundColorView, chooser, &QObject::deleteLater);
    connect(chooser, &QObject::destroyed, this, &TrackLoopView::soundColorVChanged);
    soundColorV_ = chooser;
    emit soundColorVChanged();
    return chooser;
}

void TrackLoopView::removeSoundColorView() {
    if (soundColorV_) emit soundColorV_->removeSoundColorView();
}

void TrackLoopView::colorPicked(int colorNum) {
    if (!trackloop_ || colorNum < 0 || colorNum >= SoundColorView::kRows * SoundColorView::kColumns) return;
    if (delegate_) delegate_->somethingWillBeChanged();  // may rebind us to a copied row
    if (!trackloop_) return;
    colorNum_ = colorNum;
    trackloop_->setColor(static_cast<int16_t>(colorNum));
    CoreDater::shIns().save();
    refreshLoopPicture();
    if (delegate_) delegate_->loopWasChanged();
    emit changed();
}

void TrackLoopView::openLoopPressed() {
    if (delegate_ && trackloop_ && trackloop_->loop()) delegate_->openLoop(trackloop_->loop());
}

void TrackLoopView::playPausePressed() {
    if (loopplayer_) {
        stopPreview();
        return;
    }
    if (!trackloop_ || !trackloop_->loop()) return;
    AudioController* controller = PlaybackContext::shared().audioController;
    if (!controller) return;
    if (!bridge_) bridge_ = std::make_unique<LoopplayerMainThreadDelegate>(controller, this);
    const float bpm = delegate_ ? delegate_->trackBpm() : static_cast<float>(trackloop_->loop()->bpm());
    loopplayer_ = Loopplayer::create(trackloop_->loop(), bridge_.get(), 1, bpm);
    if (delegate_) delegate_->setPauseButtonToPaused(false);
    emit previewingChanged();
}

void TrackLoopView::stopPreview() {
    if (!loopplayer_) return;
    if (delegate_) {
        delegate_->setPauseButtonToPaused(true);
        delegate_->animateTactOnBpmView(0);
    }
    auto player = std::move(loopplayer_);
    Loopplayer::stopLoop(player);
    loopV_->stopAllSounding();
    emit previewingChanged();
}

void TrackLoopView::updateBpmInLoopplayer(float bpm) {
    if (loopplayer_) loopplayer_->setNewBpm(bpm);
}

void TrackLoopView::animateTact(uint16_t step) {
    if (loopplayer_ && delegate_) delegate_->animateTactOnBpmView(step);
}

void TrackLoopView::animateStartPlaying(int slot) {
    if (loopplayer_) loopV_->setTileSounding(slot, true);
}

void TrackLoopView::animateStopPlaying(int slot) { loopV_->setTileSounding(slot, false); }

void TrackLoopView::loopEndRepeating() { stopPreview(); }
