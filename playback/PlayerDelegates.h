#pragma once
// What players report. Every method is called on the render thread, in the
// middle of a render pass: implementations must not allocate, lock, log or
// touch the interface. MainThreadDelegates.h forwards them to the main thread.
//
// Lifetimes: screens come and go while players play. A player reaches its
// delegate through a DelegateLink, and every delegate knows the links that
// point at it: when a delegate goes, it clears them and waits until no render
// pass can still be inside one of its methods. A delegate that may go while
// its player still plays calls stopReceivingReports() first thing in its own
// destructor (the base destructor does it too, but by then the derived part
// is already gone). Main thread only, apart from DelegateLink::get().
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "engine/Realtime.h"

class AudioController;
class PlayerDelegate;
class Trackloopplayer;

class DelegateLinkBase {
public:
    DelegateLinkBase() = default;
    ~DelegateLinkBase();
    DelegateLinkBase(const DelegateLinkBase&) = delete;
    DelegateLinkBase& operator=(const DelegateLinkBase&) = delete;
    // The engine whose render thread reads this link (the player's).
    void setController(AudioController* controller) { controller_ = controller; }

protected:
    void attach(PlayerDelegate* delegate);
    PlayerDelegate* current() const QUILLO_NONBLOCKING { return target_.load(std::memory_order_acquire); }

private:
    friend class PlayerDelegate;
    std::atomic<PlayerDelegate*> target_{nullptr};
    AudioController* controller_ = nullptr;
};

template <class T>
class DelegateLink : public DelegateLinkBase {
public:
    T* get() const QUILLO_NONBLOCKING { return static_cast<T*>(current()); }
    void set(T* delegate) { attach(delegate); }
};

class PlayerDelegate {
public:
    virtual ~PlayerDelegate();
    // Expires when the delegate goes; a main-thread bridge checks it before
    // delivering a report that was queued earlier.
    std::weak_ptr<const void> lifetime() const { return lifetime_; }

protected:
    PlayerDelegate() = default;
    // A copy reports to nobody until a player is given it.
    PlayerDelegate(const PlayerDelegate&) {}
    PlayerDelegate& operator=(const PlayerDelegate&) { return *this; }
    // Clears every link to this delegate and waits for the render passes
    // that may still be using one of them.
    void stopReceivingReports();

private:
    friend class DelegateLinkBase;
    std::vector<DelegateLinkBase*> links_;
    std::shared_ptr<const void> lifetime_ = std::make_shared<char>(0);
};

class LoopplayerDelegate : public PlayerDelegate {
public:
    virtual void animateTact(uint16_t step) = 0;
    virtual void animateStartPlaying(int slot) = 0;
    virtual void animateStopPlaying(int slot) = 0;
    virtual void loopEndRepeating() = 0;
};

class TrackloopplayerDelegate : public PlayerDelegate {
public:
    virtual void animateSquare(uint16_t square) = 0;
    virtual void animateTact(uint16_t step, Trackloopplayer* sender) = 0;
};

class TrackplayerDelegate : public PlayerDelegate {
public:
    virtual void animatePlayingSquare(uint16_t square) = 0;
    virtual void animatePlayingTact(uint16_t step) = 0;
    virtual void trackFinishd() = 0;
};
