#include "playback/MainThreadDelegates.h"

#include <unordered_map>

#include "engine/AudioController.h"

namespace {

// Live bridges by serial number, main thread only.
std::unordered_map<uint64_t, MainThreadBridge*>& liveBridges() {
    static std::unordered_map<uint64_t, MainThreadBridge*> bridges;
    return bridges;
}
uint64_t nextSerial = 1;

struct Report {
    uint64_t serial;
    int32_t kind;
    int32_t value;
};

enum Kind { kTact, kStart, kStop, kEnd, kSquare, kTrackTact, kFinished };

}  // namespace

MainThreadBridge::MainThreadBridge(AudioController* controller) : controller_(controller), serial_(nextSerial++) {
    liveBridges()[serial_] = this;
}

MainThreadBridge::~MainThreadBridge() { liveBridges().erase(serial_); }

void MainThreadBridge::send(int kind, int value) {
    Report r{serial_, kind, value};
    AudioControllerSendAsynchronousMessageToMainThread(controller_, arrive, &r, sizeof r);
}

void MainThreadBridge::arrive(AudioController*, void* userInfo, int32_t) {
    Report r = *static_cast<Report*>(userInfo);
    auto it = liveBridges().find(r.serial);
    if (it != liveBridges().end()) it->second->deliver(r.kind, r.value);
}

void LoopplayerMainThreadDelegate::deliver(int kind, int value) {
    if (!target_ || targetLifetime_.expired()) return;  // the screen went while the report was queued
    switch (kind) {
    case kTact: target_->animateTact(static_cast<uint16_t>(value)); break;
    case kStart: target_->animateStartPlaying(value); break;
    case kStop: target_->animateStopPlaying(value); break;
    case kEnd: target_->loopEndRepeating(); break;
    default: break;
    }
}

void LoopplayerMainThreadDelegate::animateTact(uint16_t step) { send(kTact, step); }
void LoopplayerMainThreadDelegate::animateStartPlaying(int slot) { send(kStart, slot); }
void LoopplayerMainThreadDelegate::animateStopPlaying(int slot) { send(kStop, slot); }
void LoopplayerMainThreadDelegate::loopEndRepeating() { send(kEnd, 0); }

void TrackplayerMainThreadDelegate::deliver(int kind, int value) {
    if (!target_ || targetLifetime_.expired()) return;
    switch (kind) {
    case kSquare: target_->animatePlayingSquare(static_cast<uint16_t>(value)); break;
    case kTrackTact: target_->animatePlayingTact(static_cast<uint16_t>(value)); break;
    case kFinished: target_->trackFinishd(); break;
    default: break;
    }
}

void TrackplayerMainThreadDelegate::animatePlayingSquare(uint16_t square) { send(kSquare, square); }
void TrackplayerMainThreadDelegate::animatePlayingTact(uint16_t step) { send(kTrackTact, step); }
void TrackplayerMainThreadDelegate::trackFinishd() { send(kFinished, 0); }
