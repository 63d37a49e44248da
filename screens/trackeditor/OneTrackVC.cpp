#include "screens/trackeditor/OneTrackVC.h"

#include <QTimer>
#include <algorithm>
#include <cmath>

#include "export/Framr.h"
#include "library/CoreDater.h"
#include "library/model/Model.h"
#include "library/palette/Colorer.h"
#include "library/patterns/Tacter.h"
#include "library/text/Utly.h"
#include "library/util/Log.h"
#include "playback/MainThreadDelegates.h"
#include "playback/PlaybackContext.h"
#include "playback/Trackplayer.h"
#include "screens/kit/KitColorer.h"
#include "screens/trackeditor/internal/TrackFramr.h"

namespace {
const char* const kNewRowLoop = "Easy beat 95";
const char* const kBuiltInTracksFolder = "Built-in tracks";
}  // namespace

OneTrackVC::OneTrackVC(QObject* parent) : OneLoopOrTrackVC(parent) {
    _bpmView->setInitialFrame(Framr::ffBpmButton());
    _bpmView->setEnlargedFrame(Framr::ffBPMfullScrn());
    // The tempo shows on the adjuster's own colour in every panel colour.
    _bpmView->setTitleColor(KitColorer::backgColor());
    sqNumV_ = std::make_unique<SquaresNumView>();
    sqNumV_->setDelegate(this);
    sqNumV_->setTitleColor(KitColorer::backgColor());
    sqNumV_->setEnlargedFrame(Framr::fullScrnCircle());
    connect(&taps_, &TapCounter::tappedOnce, this, [this](QPointF p) { tappedOnce(p.x(), p.y()); });
    connect(&taps_, &TapCounter::tappedTwice, this, [this](QPointF p) { tappedTwice(p.x(), p.y()); });
    connect(&taps_, &TapCounter::tappedTrice, this, [this](QPointF p) { tappedTrice(p.x(), p.y()); });
}

OneTrackVC::~OneTrackVC() {
    trackloopV_.reset();
    dropPlayer();
    stopReceivingReports();
}

double OneTrackVC::heiForTrackLoop() { return TrackFramr::heiForTrackLoop(); }
double OneTrackVC::heiForTimesc() { return TrackFramr::heiForTimesc(); }

QString OneTrackVC::trackName() const { return track_ ? QString::fromStdString(track_->name()) : QString(); }

void OneTrackVC::setTrackName(const QString& name) {
    if (track_ && name == trackName()) return;
    auto* track = static_cast<Track*>(CoreDater::shIns().findEntity("Track", name.toStdString()));
    if (!track) {
        qlog("No track named %s", name.toStdString().c_str());
        return;
    }
    viewDidLoad(track);
}

void OneTrackVC::viewDidLoad(Track* track) {
    dropPlayer();
    track_ = track;
    setUpBase(static_cast<float>(track->bpm()));
    setTitle(QString::fromStdString(track->name()));
    setupRowHeads();
    emit trackChanged();
    touched();
    startTrackFromSquare(0);
}

bool OneTrackVC::userTrack() const { return track_ && !track_->preloaded(); }

void OneTrackVC::touched() {
    ++revision_;
    emit editsChanged();
}

TrackLoop* OneTrackVC::rowAt(int row) const {
    if (!track_ || row < 0 || row >= static_cast<int>(track_->trackloops().size())) return nullptr;
    return track_->trackloops()[static_cast<size_t>(row)];
}

int OneTrackVC::rowCount() const { return track_ ? static_cast<int>(track_->trackloops().size()) : 0; }
int OneTrackVC::squaresnum() const { return track_ ? track_->squaresnum() : 0; }

QVariantList OneTrackVC::rowsToDelete() const {
    QVariantList out;
    for (int r : _instrsToDelete) out.append(r);
    return out;
}

bool OneTrackVC::isRowMarked(int row) const {
    return std::find(_instrsToDelete.begin(), _instrsToDelete.end(), row) != _instrsToDelete.end();
}

int OneTrackVC::openRow() const {
    if (!trackloopV_ || !track_) return -1;
    const auto& rows = track_->trackloops();
    auto it = std::find(rows.begin(), rows.end(), trackloopV_->trackloop());
    return it == rows.end() ? -1 : static_cast<int>(it - rows.begin());
}

bool OneTrackVC::panelHidesNavigationBar() const {
    bool volumeEnlarged = false;
    for (const auto& v : ltrackVols_)
        if (v && v->fullscr()) volumeEnlarged = true;
    return sqNumOpen_ || volumeEnlarged;
}

void OneTrackVC::setScrollX(double x) {
    if (x == scrollX_) return;
    scrollX_ = x;
    emit scrollXChanged();
}

QString OneTrackVC::rowName(int row) const {
    TrackLoop* r = rowAt(row);
    return r && r->loop() ? QString::fromStdString(r->loop()->name()) : QString();
}

QColor OneTrackVC::rowColor(int row) const {
    TrackLoop* r = rowAt(row);
    return r ? toQColor(Colorer::colorForNumber(r->color())) : QColor();
}

LoopView* OneTrackVC::rowLoopView(int row) const {
    return row >= 0 && row < kMaxRows ? ltrackInstrBgs_[static_cast<size_t>(row)].get() : nullptr;
}

VolumeView* OneTrackVC::rowVolumeView(int row) const {
    return row >= 0 && row < kMaxRows ? ltrackVols_[static_cast<size_t>(row)].get() : nullptr;
}

bool OneTrackVC::isSquareSelected(int row, int square) const {
    TrackLoop* r = rowAt(row);
    return r && square >= 0 && Tacter::isSquareSelected(static_cast<uint64_t>(square), r);
}

QColor OneTrackVC::squareColor(int row, int square) const {
    if (isSquareSelected(row, square)) return rowColor(row);
    QColor c = KitColorer::mainColor();
    c.setAlphaF(0.2);
    return c;
}

// The heads' adjusters and pictures live as long as the screen, one per
// place: a head's view may still read them while its row goes away.
void OneTrackVC::setupRowHeads() {
    for (int r = 0; r < kMaxRows; ++r) {
        auto& v = ltrackVols_[static_cast<size_t>(r)];
        auto& picture = ltrackInstrBgs_[static_cast<size_t>(r)];
        // Children, so the view never takes them over as its own.
        if (!picture) picture = std::make_unique<LoopView>(this);
        if (!v) {
            v = std::make_unique<VolumeView>(this);
            v->setDelegate(this);
            connect(v.get(), &LAAdjustView::fullscrChanged, this, &OneTrackVC::refreshNavigationBar);
        }
        TrackLoop* row = rowAt(r);
        picture->changeInstrumentsForNewLoop(row ? row->loop() : nullptr);
        if (!row) continue;
        picture->changeInstrColorToDarkerIfSameAs(row->color());
        v->setValue(row->volume());
        // The column's coordinates: enlarged, it covers the whole screen.
        v->setInitialFrame(TrackFramr::ffTrackVolumeForLt(r));
        v->setEnlargedFrame(volumeEnlargedFrame());
        v->setTitleColor(KitColorer::backgColor());
    }
}

QRectF OneTrackVC::leftViewFrame() const { return TrackFramr::ffTrackLeftViewOnScreen(leftVOnscreen_); }
QRectF OneTrackVC::scrollViewFrame() const { return TrackFramr::ffTrackScrollViewLVOnScreen(leftVOnscreen_); }
QRectF OneTrackVC::headFrame(int row) const { return TrackFramr::ffTrackVolumeAndTitlBgForLt(row); }
QRectF OneTrackVC::volumeFrame(int row) const { return TrackFramr::ffTrackVolumeForLt(row); }
QRectF OneTrackVC::volumeEnlargedFrame() const {
    return Framr::fullScrnCircle().translated(-TrackFramr::ffTrackLeftViewOnScreen(true).topLeft());
}
QRectF OneTrackVC::titleFrame(int row) const { return TrackFramr::ffTrackTitleForLt(row); }
QRectF OneTrackVC::pictureFrame(int row) const { return TrackFramr::ffTrackAllInstrBgsForLt(row); }
QRectF OneTrackVC::trashFrame(int row) const { return TrackFramr::ffTrackTrashImageForLt(row); }
QRectF OneTrackVC::newRowFrame() const { return TrackFramr::ffTrackNewLt(rowCount()); }
QRectF OneTrackVC::timescaleFrame(int square) const { return TrackFramr::ffTrackTimescaleSquare(square); }
QRectF OneTrackVC::squareFrame(int row, int square) const { return TrackFramr::ffTrackSquare(row, square); }
QRectF OneTrackVC::squaresNumFrame() const { return TrackFramr::ffTrackSquaresNumBtn(squaresnum()); }
QRectF OneTrackVC::markerFrame() const {
    return TrackFramr::ffTrackPlayingSqIndicator(playingSq_, playingTact_, rowCount());
}
double OneTrackVC::contentWidth() const { return TrackFramr::contentWidth(squaresnum()); }

// ---- Hit test and taps

bool OneTrackVC::isTouchedPoint(QPointF point, int* row, int* square) const {
    if (!track_) return false;
    const double h = TrackFramr::heiForTrackLoop();
    const double fromTop = (point.y() - TrackFramr::heiForTimesc()) / h;
    // The time line band (and anything above the rows) is never a row.
    if (fromTop < 0 || point.x() < 0) return false;
    const auto r = static_cast<uint64_t>(fromTop);
    const auto s = static_cast<uint64_t>(point.x() / h);
    if (rowCount() == 0 || r > static_cast<uint64_t>(rowCount() - 1) || s >= static_cast<uint64_t>(squaresnum()))
        return false;
    *row = static_cast<int>(r);
    *square = static_cast<int>(s);
    return true;
}

void OneTrackVC::tapAt(double x, double y) { taps_.tap({x, y}); }

void OneTrackVC::tappedOnce(double x, double y) {
    int row = 0, square = 0;
    if (_deleting || !isTouchedPoint({x, y}, &row, &square)) return;
    selectOrDeselectSquare(square, row);
}

void OneTrackVC::tappedTwice(double x, double y) {
    int row = 0, square = 0;
    if (_deleting || !isTouchedPoint({x, y}, &row, &square)) return;
    dropPlayer();
    startTrackFromSquare(static_cast<uint16_t>(square));
}

void OneTrackVC::tappedTrice(double x, double y) {
    int row = 0, square = 0;
    if (_deleting || !isTouchedPoint({x, y}, &row, &square)) return;
    selectOrDeselectWholeLoopTrack(row, square);
}

// Square edits change the track in place, even a built-in one, and playback goes on.
void OneTrackVC::selectOrDeselectSquare(int square, int row) {
    TrackLoop* r = rowAt(row);
    if (!r) return;
    const bool selected = !Tacter::isSquareSelected(static_cast<uint64_t>(square), r);
    Tacter::setSquare(static_cast<uint64_t>(square), r, selected);
    sendSquaresOfRow(row);
    touched();
}

void OneTrackVC::selectOrDeselectWholeLoopTrack(int row, int square) {
    TrackLoop* r = rowAt(row);
    if (!r) return;
    const bool selected = !Tacter::isSquareSelected(static_cast<uint64_t>(square), r);
    CoreDater::shIns().beginBatch();  // one save for the whole row
    for (int s = 0; s < squaresnum(); ++s) Tacter::setSquare(static_cast<uint64_t>(s), r, selected);
    CoreDater::shIns().endBatch();
    sendSquaresOfRow(row);
    touched();
}

void OneTrackVC::sendSquaresOfRow(int row) {
    TrackLoop* r = rowAt(row);
    if (trackplayer_ && r) trackplayer_->setSquares(&r->squares(), row);
}

// ---- Playing

void OneTrackVC::startTrackFromSquare(uint16_t square) {
    if (!track_) return;
    AudioController* controller = PlaybackContext::shared().audioController;
    if (controller) {
        if (!bridge_) bridge_ = std::make_unique<TrackplayerMainThreadDelegate>(controller, this);
        trackplayer_ = Trackplayer::create(track_, bridge_.get(), square, true);
    }
    playingSq_ = square;
    playingTact_ = 0;
    emit playPositionChanged();
    setPaused(false);
}

void OneTrackVC::dropPlayer() {
    if (!trackplayer_) return;
    auto player = std::move(trackplayer_);
    Trackplayer::stopTrack(player);
}

// The button's state only; the player is told by whoever calls this.
void OneTrackVC::setPaused(bool paused) {
    if (_paused == paused) return;
    _paused = paused;
    emit pausedChanged();
}

void OneTrackVC::setPlayerPaused(bool paused) {
    if (trackplayer_) trackplayer_->setPausd(paused);
    else if (!paused) startTrackFromSquare(0);
}

void OneTrackVC::stopTrackForChanges() {
    setPaused(true);
    playingSq_ = 0;
    playingTact_ = 0;
    emit playPositionChanged();
    _bpmView->updateIndicatorViewForTact(0);
    dropPlayer();
}

void OneTrackVC::pausePressed() {
    if (_deleting || !track_) return;
    if (trackloopV_) {
        trackloopV_->playPausePressed();
        return;
    }
    setPaused(!_paused);
    setPlayerPaused(_paused);
}

bool OneTrackVC::escapePressed() {
    if (trackloopV_ && trackloopV_->soundColorV()) {
        trackloopV_->removeSoundColorView();
        return true;
    }
    if (sqNumOpen_) {
        closeSquaresNum();
        return true;
    }
    for (const auto& v : ltrackVols_) {
        if (v && v->fullscr()) {
            v->pressed();
            return true;
        }
    }
    if (_bpmView->fullscr()) {
        _bpmView->pressed();
        return true;
    }
    if (trackloopV_ || _deleting) {
        trashOkPressed();
        return true;
    }
    return false;
}

void OneTrackVC::animatePlayingSquare(uint16_t square) {
    playingSq_ = square;
    playingTact_ = 0;
    emit playPositionChanged();
    const QRectF marker = TrackFramr::ffTrackPlayingSqIndicator(square, 0, rowCount());
    if (visibleWidth_ > 0 && (marker.x() > visibleWidth_ + scrollX_ || marker.x() < scrollX_))
        setScrollX(std::max(0.0, marker.x() - marker.width()));
}

void OneTrackVC::animatePlayingTact(uint16_t step) {
    playingTact_ = step;
    emit playPositionChanged();
    if (!trackloopV_) _bpmView->updateIndicatorViewForTact(step);
}

void OneTrackVC::trackFinishd() { stopTrackForChanges(); }

// ---- Copy on first edit

void OneTrackVC::copyTrackIfPreloadedForEditAndUpdateDate() {
    if (!track_) return;
    if (track_->preloaded()) {
        const int open = openRow();
        track_ = CoreDater::shIns().createUsersTrackThatCopyOfPreloadedTrack(track_);
        if (trackloopV_ && open >= 0) trackloopV_->setTrackloop(rowAt(open));
        setTitle(QString::fromStdString(track_->name()));
        emit trackChanged();
    }
    CoreDater::updateDateOfTrack(track_);
    CoreDater::shIns().save();
}

// ---- Rows

void OneTrackVC::trackLoopPressed(int row) {
    if (_deleting) return;
    stopTrackForChanges();
    if (trackloopV_) return;
    TrackLoop* r = rowAt(row);
    if (!r) return;
    trackloopV_ = std::make_unique<TrackLoopView>(r, this);
    setPanelColor(trackloopV_->color());
    emit trackloopViewChanged();
    updateTrashImage();
    refreshNavigationBar();
    touched();
}

void OneTrackVC::removeTrackloopView() {
    if (!trackloopV_) return;
    trackloopV_->removeSoundColorView();
    trackloopV_->stopPreview();
    // Deleted later, after the view has let go of its panel: the panel's
    // bindings read the row view until then.
    TrackLoopView* closing = trackloopV_.release();
    closing->dropDelegate();
    emit trackloopViewChanged();
    closing->deleteLater();
    setPaused(true);
    setPanelColor(KitColorer::backgColor());
    updateTrashImage();
    refreshNavigationBar();
    touched();
}

void OneTrackVC::loopWasChanged() {
    if (trackloopV_) setPanelColor(trackloopV_->color());
    setupRowHeads();  // every head of that loop shows its new picture
    touched();
}

void OneTrackVC::openLoop(Loop* loop) {
    if (loop) emit openLoopRequested(QString::fromStdString(loop->name()));
}

void OneTrackVC::loopChanged(Loop* loop) {
    if (!trackloopV_ || !loop) return;
    trackloopV_->reallyUpdateTrackLoopWithLoop(loop);
    trackloopV_->addPickerWithUpdatedItems();
}

void OneTrackVC::loopEditorClosed(const QString& loopName) {
    loopChanged(static_cast<Loop*>(CoreDater::shIns().findEntity("Loop", loopName.toStdString())));
}

void OneTrackVC::setPauseButtonToPaused(bool paused) { setPaused(paused); }

void OneTrackVC::newLtPressed() {
    if (_deleting || !canAddRow()) return;
    auto& d = CoreDater::shIns();
    auto* loop = static_cast<Loop*>(d.findEntity("Loop", kNewRowLoop));
    if (!loop) {
        qlog("No loop named %s for a new row", kNewRowLoop);
        return;
    }
    stopTrackForChanges();
    copyTrackIfPreloadedForEditAndUpdateDate();
    TrackLoop* row = d.createTrackLoopWithLoop(loop, {d.loopSqrsWithSquares(Tacter::notacts())}, 100,
                                               static_cast<int16_t>(Colorer::randomColorNum()));
    auto rows = track_->trackloops();
    rows.push_back(row);
    track_->setTrackloops(rows);
    d.save();
    setupRowHeads();
    touched();
    trackLoopPressed(rowCount() - 1);
}

void OneTrackVC::updateVolume(VolumeView* view) {
    for (int r = 0; r < kMaxRows; ++r) {
        if (ltrackVols_[static_cast<size_t>(r)].get() != view) continue;
        copyTrackIfPreloadedForEditAndUpdateDate();
        TrackLoop* row = rowAt(r);
        if (!row) return;
        row->setVolume(static_cast<int16_t>(view->value()));
        CoreDater::shIns().save();
        if (trackplayer_) trackplayer_->setVolume(static_cast<float>(row->volume() / 100.0), r);
        return;
    }
}

void OneTrackVC::volumeViewPressed(VolumeView* view) {
    for (int r = 0; r < kMaxRows; ++r)
        if (ltrackVols_[static_cast<size_t>(r)].get() == view && view->fullscr()) emit volumeViewRaised(r);
    refreshNavigationBar();
}

// ---- Tempo and length

void OneTrackVC::tempoChanged(float bpm) {
    if (trackplayer_) trackplayer_->setNewBpm(bpm);
    copyTrackIfPreloadedForEditAndUpdateDate();
    track_->setBpm(static_cast<int16_t>(bpm));
    CoreDater::shIns().save();
    if (trackloopV_) trackloopV_->updateBpmInLoopplayer(bpm);
}

void OneTrackVC::trackSquaresPressed() {
    if (_deleting || !track_ || sqNumOpen_) return;
    stopTrackForChanges();
    sqNumV_->setValue(squaresnum());
    QRectF place = TrackFramr::ffTrackSquaresNumBtn(squaresnum());
    // In the screen's space above the panel, where the view puts the adjuster.
    const QRectF area = TrackFramr::ffTrackScrollViewLVOnScreen(leftVOnscreen_);
    place.translate(area.x() - scrollX_, area.y());
    sqNumV_->setInitialFrame(place);
    sqNumV_->setEnlargedFrame(Framr::fullScrnCircle());
    if (!sqNumV_->fullscr()) sqNumV_->enlargAdjustView();
    sqNumOpen_ = true;
    emit sqNumViewChanged();
    refreshNavigationBar();
}

void OneTrackVC::updateSquaresNum(SquaresNumView* view) {
    copyTrackIfPreloadedForEditAndUpdateDate();
    const double v = std::clamp(view->value(), SquaresNumView::kMinSquares, SquaresNumView::kMaxSquares);
    track_->setSquaresnum(static_cast<int16_t>(v));
    CoreDater::shIns().save();
    touched();
}

void OneTrackVC::squaresNumViewPressed(SquaresNumView* view) {
    if (view != sqNumV_.get() || !sqNumOpen_) return;
    sqNumOpen_ = false;
    emit sqNumViewChanged();
    refreshNavigationBar();
    touched();
}

void OneTrackVC::closeSquaresNum() {
    if (!sqNumOpen_) return;
    if (sqNumV_->fullscr()) sqNumV_->enlargAdjustView();  // as a tap on it would
    squaresNumViewPressed(sqNumV_.get());
}

// ---- Deleting rows

void OneTrackVC::startDeletion() {
    stopTrackForChanges();
    _instrsToDelete.clear();
    touched();
}

void OneTrackVC::trashButtonsPressed(int row) {
    if (!_deleting || !rowAt(row)) return;
    if (std::find(_instrsToDelete.begin(), _instrsToDelete.end(), row) != _instrsToDelete.end()) return;
    _instrsToDelete.push_back(row);
    touched();
}

void OneTrackVC::applyDelete() {
    if (!_instrsToDelete.empty()) {
        copyTrackIfPreloadedForEditAndUpdateDate();
        auto& d = CoreDater::shIns();
        std::vector<TrackLoop*> kept;
        const std::vector<TrackLoop*> rows = track_->trackloops();
        for (size_t i = 0; i < rows.size(); ++i) {
            if (std::find(_instrsToDelete.begin(), _instrsToDelete.end(), static_cast<int>(i)) == _instrsToDelete.end()) {
                kept.push_back(rows[i]);
                continue;
            }
            d.deleteAllSquaresOfTrackLoop(rows[i]);
            d.deleteObject(rows[i]);
        }
        track_->setTrackloops(kept);
        d.save();
    }
    _instrsToDelete.clear();
    setupRowHeads();
    touched();
}

// ---- Screen

void OneTrackVC::doubleTouch() {
    leftVOnscreen_ = !leftVOnscreen_;
    emit leftVOnscreenChanged();
}

void OneTrackVC::navBarTapped() {
    if (userTrack() && track_->inFolder())
        emit namePanelRequested(trackName(), QString::fromStdString(track_->inFolder()->name()));
    else if (userTrack())
        emit namePanelRequested(trackName(), QString());
}

void OneTrackVC::applyName(const QString& qname, const QString& qfolder) {
    if (!track_) return;
    const std::string name = qname.toStdString(), folder = qfolder.toStdString();
    const std::string oldFolder = track_->inFolder() ? track_->inFolder()->name() : std::string();
    if (name != track_->name() || folder != oldFolder) copyTrackIfPreloadedForEditAndUpdateDate();
    if (name != track_->name()) track_->setName(Utly::changeNameOf("Track", name));
    if (folder != oldFolder && folder != kBuiltInTracksFolder)
        track_->setInFolder(CoreDater::shIns().trackFolder(folder));
    CoreDater::shIns().save();
    setTitle(QString::fromStdString(track_->name()));
    emit trackChanged();
}

void OneTrackVC::shareButtonTapped() {
    if (!track_) return;
    if (!_paused) pausePressed();
    _exportOpen = true;
    refreshNavigationBar();
    emit exportRequested(QStringLiteral("track"), trackName(), KitColorer::mainColor());
}

void OneTrackVC::willLeave() {
    trackloopV_.reset();
    dropPlayer();
}
