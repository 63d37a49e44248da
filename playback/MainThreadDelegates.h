#pragma once
// Bridges from the render thread to the main thread. A player reports to one
// of these on the render thread; each report becomes a small engine message
// (no allocation, no lock) and reaches the wrapped delegate on the main
// thread, in order. Reports still in flight when a bridge is destroyed are
// dropped. Create and destroy bridges on the main thread.
#include <cstdint>

#include "playback/PlayerDelegates.h"

class AudioController;

class LoopplayerMainThreadDelegate final : public LoopplayerDelegate {
public:
    LoopplayerMainThreadDelegate(AudioController* controller, LoopplayerDelegate* target);
    ~LoopplayerMainThreadDelegate() override;
    void animateTact(uint16_t step) override;
    void animateStartPlaying(int slot) override;
    void animateStopPlaying(int slot) override;
    void loopEndRepeating() override;

private:
    void send(int kind, int value);
    static void deliver(AudioController*, void* userInfo, int32_t length);
    AudioController* controller_;
    LoopplayerDelegate* target_;
    uint64_t serial_;
};

class TrackplayerMainThreadDelegate final : public TrackplayerDelegate {
public:
    TrackplayerMainThreadDelegate(AudioController* controller, TrackplayerDelegate* target);
    ~TrackplayerMainThreadDelegate() override;
    void animatePlayingSquare(uint16_t square) override;
    void animatePlayingTact(uint16_t step) override;
    void trackFinishd() override;

private:
    void send(int kind, int value);
    static void deliver(AudioController*, void* userInfo, int32_t length);
    AudioController* controller_;
    TrackplayerDelegate* target_;
    uint64_t serial_;
};
