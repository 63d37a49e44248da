#pragma once
// What players report. Every method is called on the render thread, in the
// middle of a render pass: implementations must not allocate, lock, log or
// touch the interface. MainThreadDelegates.h forwards them to the main thread.
#include <cstdint>

class Trackloopplayer;

class LoopplayerDelegate {
public:
    virtual ~LoopplayerDelegate() = default;
    virtual void animateTact(uint16_t step) = 0;
    virtual void animateStartPlaying(int slot) = 0;
    virtual void animateStopPlaying(int slot) = 0;
    virtual void loopEndRepeating() = 0;
};

class TrackloopplayerDelegate {
public:
    virtual ~TrackloopplayerDelegate() = default;
    virtual void animateSquare(uint16_t square) = 0;
    virtual void animateTact(uint16_t step, Trackloopplayer* sender) = 0;
};

class TrackplayerDelegate {
public:
    virtual ~TrackplayerDelegate() = default;
    virtual void animatePlayingSquare(uint16_t square) = 0;
    virtual void animatePlayingTact(uint16_t step) = 0;
    virtual void trackFinishd() = 0;
};
