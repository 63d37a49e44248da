#pragma once
// Plays a whole track: one track-loop player per row, each in its own channel
// group. Only the first row's player reports; every row counts squares by
// itself from the same start, tempo and frames, which keeps them in step.
#include <array>
#include <atomic>
#include <memory>
#include <vector>

#include "playback/PlayerDelegates.h"

class LoopSquares;
class Track;
class Trackloopplayer;
struct PlaybackContext;

class Trackplayer : public LoopplayerDelegate,
                    public TrackloopplayerDelegate,
                    public std::enable_shared_from_this<Trackplayer> {
public:
    static constexpr int kRows = 10;

    static std::shared_ptr<Trackplayer> create(Track* track, TrackplayerDelegate* delegate, uint32_t startSquare,
                                               bool repeatTrack, PlaybackContext* context = nullptr);
    ~Trackplayer() override;

    void setSquares(const std::vector<LoopSquares*>* squares, int index);  // setSquares:ofTrackLoopAtIndex:
    void setVolume(float gain, int index);                                 // setVolume:ofChannelGroupAtIndex:
    void setNewBpm(float bpm);
    void setPausd(bool paused);
    void stopTrackplayer();
    static void stopTrack(const std::shared_ptr<Trackplayer>& caller);

    Track* track() const { return track_; }
    TrackplayerDelegate* delegate() const QUILLO_NONBLOCKING { return delegate_.get(); }
    void setDelegate(TrackplayerDelegate* d) { delegate_.set(d); }
    std::shared_ptr<Trackloopplayer> entry(int index) const;

    // Reports from the rows (render thread).
    void animateTact(uint16_t) override {}
    void animateStartPlaying(int) override {}
    void animateStopPlaying(int) override {}
    void loopEndRepeating() override;
    void animateSquare(uint16_t square) override;
    void animateTact(uint16_t step, Trackloopplayer* sender) override;

private:
    explicit Trackplayer(PlaybackContext* context);

    PlaybackContext* context_;
    Track* track_ = nullptr;
    DelegateLink<TrackplayerDelegate> delegate_;
    std::atomic<bool> paused_{false};
    float bpm_ = 0;
    uint64_t repeatTimes_ = 0;
    std::array<std::shared_ptr<Trackloopplayer>, kRows> tloopplayers_;
    // What the render thread walks when the track ends: set before playing starts.
    std::array<Trackloopplayer*, kRows> rows_{};
};
