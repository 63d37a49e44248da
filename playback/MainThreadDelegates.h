#pragma once
// Bridges from the render thread to the main thread. A player reports to one
// of these on the render thread; each report becomes a small engine message
// (no allocation, no lock) and reaches the wrapped delegate on the main
// thread, in order. Reports still in flight when a bridge is destroyed, or
// when its target is, are dropped. A bridge may be destroyed while its player
// still plays: it first takes itself out of the player (waiting for the
// render pass in progress). Create and destroy bridges on the main thread.
#include <cstdint>
#include <memory>

#include "playback/PlayerDelegates.h"

class AudioController;

// What both bridges share: a serial number the main side looks up, so a
// report for a bridge that is gone finds nothing.
class MainThreadBridge {
protected:
    explicit MainThreadBridge(AudioController* controller);
    ~MainThreadBridge();
    MainThreadBridge(const MainThreadBridge&) = delete;
    MainThreadBridge& operator=(const MainThreadBridge&) = delete;
    void send(int kind, int value);                     // render thread
    virtual void deliver(int kind, int value) = 0;     // main thread

private:
    static void arrive(AudioController*, void* userInfo, int32_t length);
    AudioController* controller_;
    uint64_t serial_;
};

class LoopplayerMainThreadDelegate final : public LoopplayerDelegate, private MainThreadBridge {
public:
    LoopplayerMainThreadDelegate(AudioController* controller, LoopplayerDelegate* target)
        : MainThreadBridge(controller), target_(target), targetLifetime_(target ? target->lifetime() : std::weak_ptr<const void>()) {}
    ~LoopplayerMainThreadDelegate() override { stopReceivingReports(); }
    void animateTact(uint16_t step) override;
    void animateStartPlaying(int slot) override;
    void animateStopPlaying(int slot) override;
    void loopEndRepeating() override;

private:
    void deliver(int kind, int value) override;
    LoopplayerDelegate* target_;
    std::weak_ptr<const void> targetLifetime_;
};

class TrackplayerMainThreadDelegate final : public TrackplayerDelegate, private MainThreadBridge {
public:
    TrackplayerMainThreadDelegate(AudioController* controller, TrackplayerDelegate* target)
        : MainThreadBridge(controller), target_(target), targetLifetime_(target ? target->lifetime() : std::weak_ptr<const void>()) {}
    ~TrackplayerMainThreadDelegate() override { stopReceivingReports(); }
    void animatePlayingSquare(uint16_t square) override;
    void animatePlayingTact(uint16_t step) override;
    void trackFinishd() override;

private:
    void deliver(int kind, int value) override;
    TrackplayerDelegate* target_;
    std::weak_ptr<const void> targetLifetime_;
};
