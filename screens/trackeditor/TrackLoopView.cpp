#include "screens/trackeditor/TrackLoopView.h"

#include <QDebug>

#include "library/CoreDater.h"
#include "library/model/Model.h"
#include "library/palette/Colorer.h"
#include "playback/Loopplayer.h"
#include "playback/MainThreadDelegates.h"
#include "playback/PlaybackContext.h"
#include "screens/kit/KitColorer.h"

namespace {
// Tiles of the row's own colour are shifted by this much so they show on it.
constexpr double kSameColorDelta = -0.03;

QColor darker(const Color& c, double delta) {
    auto shifted = Colorer::changedColorForColor(c, delta);
    return toQColor(shifted ? *shifted : c);
}
}  // namespace

TrackLoopView::TrackLoopView(TrackLoop* trackloop, TrackLoopViewDelegate* delegate, QObject* parent)
    : QObject(parent), trackloop_(trackloop), delegate_(delegate), colorNum_(trackloop ? trackloop->color() : 0) {
    addPickerWithUpdatedItems();
}

TrackLoopView::~TrackLoopView() {
    stopPreview();
    stopReceivingReports();
}

void TrackLoopView::setTrackloop(TrackLoop* trackloop) {
    trackloop_ = trackloop;
    colorNum_ = trackloop ? trackloop->color() : 0;
    emit changed();
}

QString TrackLoopView::title() const {
    return trackloop_ && trackloop_->loop() ? QString::fromStdString(trackloop_->loop()->name()) : QStringLiteral("???");
}

QColor TrackLoopView::color() const { return toQColor(Colorer::colorForNumber(colorNum_)); }

QColor TrackLoopView::buttonColor() const { return toQColor(*Colorer::darkerColorForColor(Colorer::colorForNumber(colorNum_))); }

QVariantList TrackLoopView::tileColors() const {
    QVariantList out;
    if (!trackloop_ || !trackloop_->loop()) return out;
    for (Instrument* i : trackloop_->loop()->instruments()) {
        const int num = i->sound() ? i->sound()->color() : 0;
        const Color c = Colorer::colorForNumber(num);
        out.append(num == colorNum_ ? darker(c, kSameColorDelta) : toQColor(c));
    }
    return out;
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
    if (delegate_) delegate_->loopWasChanged();
    emit changed();
}

void TrackLoopView::colorPicked(int colorNum) {
    if (!trackloop_) return;
    if (delegate_) delegate_->somethingWillBeChanged();
    colorNum_ = colorNum;
    trackloop_->setColor(static_cast<int16_t>(colorNum));
    CoreDater::shIns().save();
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
    setSoundingTiles(0);
    emit previewingChanged();
}

void TrackLoopView::updateBpmInLoopplayer(float bpm) {
    if (loopplayer_) loopplayer_->setNewBpm(bpm);
}

void TrackLoopView::setSoundingTiles(int mask) {
    if (mask == soundingTiles_) return;
    soundingTiles_ = mask;
    emit soundingTilesChanged();
}

void TrackLoopView::animateTact(uint16_t step) {
    if (loopplayer_ && delegate_) delegate_->animateTactOnBpmView(step);
}

void TrackLoopView::animateStartPlaying(int slot) {
    if (loopplayer_) setSoundingTiles(soundingTiles_ | (1 << slot));
}

void TrackLoopView::animateStopPlaying(int slot) { setSoundingTiles(soundingTiles_ & ~(1 << slot)); }

void TrackLoopView::loopEndRepeating() { stopPreview(); }
