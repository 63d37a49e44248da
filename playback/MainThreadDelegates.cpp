#include "playback/MainThreadDelegates.h"

#include <unordered_map>

#include "engine/AudioController.h"

namespace {

// Live bridges by serial number, main thread only. A message names its bridge
// by serial, so one that arrives after the bridge is gone finds nothing.
std::unordered_map<uint64_t, void*>& liveBridges() {
    static std::unordered_map<uint64_t, void*> bridges;
    return bridges;
}
uint64_t nextSerial = 1;

struct Report {
    uint64_t serial;
    int32_t kind;
    int32_t value;
};

enum Kind { kTact, kStart, kStop, kEnd, kSquare, kTrackTact, kFinished };

template <class Bridge>
Bridge* findBridge(void* userInfo, Report* out) {
    *out = *static_cast<Report*>(userInfo);
    auto it = liveBridges().find(out->serial);
    return it == liveBridges().end() ? nullptr : static_cast<Bridge*>(it->second);
}

}  // namespace

LoopplayerMainThreadDelegate::LoopplayerMainThreadDelegate(AudioController* controller, LoopplayerDelegate* target)
    : controller_(controller), target_(target), serial_(nextSerial++) {
    liveBridges()[serial_] = this;
}

LoopplayerMainThreadDelegate::~LoopplayerMainThreadDelegate() { liveBridges().erase(serial_); }

void LoopplayerMainThreadDelegate::send(int kind, int value) {
    Report r{serial_, kind, value};
    AudioControllerSendAsynchronousMessageToMainThread(controller_, deliver, &r, sizeof r);
}

void LoopplayerMainThreadDelegate::deliver(AudioController*, void* userInfo, int32_t) {
    Report r;
    auto* self = findBridge<LoopplayerMainThreadDelegate>(userInfo, &r);
    if (!self || !self->target_) return;
    switch (r.kind) {
    case kTact: self->target_->animateTact(static_cast<uint16_t>(r.value)); break;
    case kStart: self->target_->animateStartPlaying(r.value); break;
    case kStop: self->target_->animateStopPlaying(r.value); break;
    case kEnd: self->target_->loopEndRepeating(); break;
    default: break;
    }
}

void LoopplayerMainThreadDelegate::animateTact(uint16_t step) { send(kTact, step); }
void LoopplayerMainThreadDelegate::animateStartPlaying(int slot) { send(kStart, slot); }
void LoopplayerMainThreadDelegate::animateStopPlaying(int slot) { send(kStop, slot); }
void LoopplayerMainThreadDelegate::loopEndRepeating() { send(kEnd, 0); }

TrackplayerMainThreadDelegate::TrackplayerMainThreadDelegate(AudioController* controller, TrackplayerDelegate* target)
    : controller_(controller), target_(target), serial_(nextSerial++) {
    liveBridges()[serial_] = this;
}

TrackplayerMainThreadDelegate::~TrackplayerMainThreadDelegate() { liveBridges().erase(serial_); }

void TrackplayerMainThreadDelegate::send(int kind, int value) {
    Report r{serial_, kind, value};
    AudioControllerSendAsynchronousMessageToMainThread(controller_, deliver, &r, sizeof r);
}

void TrackplayerMainThreadDelegate::deliver(AudioController*, void* userInfo, int32_t) {
    Report r;
    auto* self = findBridge<TrackplayerMainThreadDelegate>(userInfo, &r);
    if (!self || !self->target_) return;
    switch (r.kind) {
    case kSquare: self->target_->animatePlayingSquare(static_cast<uint16_t>(r.value)); break;
    case kTrackTact: self->target_->animatePlayingTact(static_cast<uint16_t>(r.value)); break;
    case kFinished: self->target_->trackFinishd(); break;
    default: break;
    }
}

void TrackplayerMainThreadDelegate::animatePlayingSquare(uint16_t square) { send(kSquare, square); }
void TrackplayerMainThreadDelegate::animatePlayingTact(uint16_t step) { send(kTrackTact, step); }
void TrackplayerMainThreadDelegate::trackFinishd() { send(kFinished, 0); }
