#include "playback/Trackplayer.h"

#include <algorithm>

#include "engine/AudioController.h"
#include "library/model/Model.h"
#include "playback/PlaybackContext.h"
#include "playback/Trackloopplayer.h"

Trackplayer::Trackplayer(PlaybackContext* context) : context_(context ? context : &PlaybackContext::shared()) {}

// Stopping is part of going: the rows report to this object from the render
// thread, so they leave the engine first.
Trackplayer::~Trackplayer() { stopTrackplayer(); }

std::shared_ptr<Trackplayer> Trackplayer::create(Track* track, TrackplayerDelegate* delegate, uint32_t startSquare,
                                                 bool repeatTrack, PlaybackContext* context) {
    std::shared_ptr<Trackplayer> p(new Trackplayer(context));
    p->track_ = track;
    p->setDelegate(delegate);
    p->delegate_.setController(p->context_->audioController);
    p->bpm_ = static_cast<float>(track->bpm());
    p->paused_ = false;
    p->repeatTimes_ = static_cast<uint64_t>(track->squaresnum());
    const auto& rows = track->trackloops();
    for (size_t j = 0; j < rows.size() && j < static_cast<size_t>(kRows); ++j) {
        TrackLoop* row = rows[j];
        Trackplayer* reporter = j == 0 ? p.get() : nullptr;
        p->tloopplayers_[j] = Trackloopplayer::create(row->loop(), reporter, reporter, p->repeatTimes_, p->bpm_,
                                                      &row->squares(), startSquare, repeatTrack, p->context_);
        p->rows_[j] = p->tloopplayers_[j].get();
        p->setVolume(static_cast<float>(row->volume() / 100.0), static_cast<int>(j));
    }
    for (auto& e : p->tloopplayers_) {
        if (e) e->reallyAddChannelsToControlla(p->context_->audioController);
    }
    for (auto& e : p->tloopplayers_) {
        if (e) p->context_->loopplayers.push_back(e);
    }
    p->context_->trackplayers.push_back(p);
    return p;
}

std::shared_ptr<Trackloopplayer> Trackplayer::entry(int index) const {
    if (index < 0 || index >= kRows) return nullptr;
    return tloopplayers_[static_cast<size_t>(index)];
}

void Trackplayer::setSquares(const std::vector<LoopSquares*>* squares, int index) {
    if (auto e = entry(index)) e->setSquaresPartFromSet(squares);
}

void Trackplayer::setVolume(float gain, int index) {
    auto e = entry(index);
    if (e && context_->audioController && e->getLoopGrop())
        context_->audioController->setVolume(gain, e->getLoopGrop());
}

void Trackplayer::setNewBpm(float bpm) {
    bpm_ = bpm;
    for (auto& e : tloopplayers_)
        if (e) e->setNewBpm(bpm);
}

// Also reached from the render thread when the track ends: only atomic stores.
void Trackplayer::setPausd(bool paused) {
    paused_.store(paused, std::memory_order_relaxed);
    for (Trackloopplayer* row : rows_)
        if (row) row->setPausd(paused);
}

void Trackplayer::stopTrackplayer() {
    setPausd(true);
    for (auto& entry : tloopplayers_) {
        // Out of the table before stopping: a report handled while the stop
        // waits for the render thread may stop this track again.
        std::shared_ptr<Trackloopplayer> row = std::move(entry);
        if (row) Loopplayer::stopLoop(row);
    }
    // The rows' render blocks are gone from the engine; nothing walks rows_ now.
    rows_.fill(nullptr);
}

void Trackplayer::stopTrack(const std::shared_ptr<Trackplayer>& caller) {
    const std::shared_ptr<Trackplayer> player = caller;  // alive even if a nested stop drops the caller's copy
    if (!player) return;
    player->stopTrackplayer();
    auto& list = player->context_->trackplayers;
    list.erase(std::remove(list.begin(), list.end(), player), list.end());
}

void Trackplayer::loopEndRepeating() {
    setPausd(true);
    if (TrackplayerDelegate* d = delegate()) d->trackFinishd();
}

void Trackplayer::animateSquare(uint16_t square) {
    if (TrackplayerDelegate* d = delegate()) d->animatePlayingSquare(square);
}

void Trackplayer::animateTact(uint16_t step, Trackloopplayer*) {
    if (TrackplayerDelegate* d = delegate()) d->animatePlayingTact(step);
}
