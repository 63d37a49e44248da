#pragma once
// One row of a track: a loop player that also follows the row's square
// pattern, sounding only in the squares (bars) where the pattern has it on.
// Its channels live in an engine channel group of their own, so the row's
// volume is one group volume.
#include "playback/Loopplayer.h"

class AudioChannelGroup;
class LoopSquares;

class Trackloopplayer : public Loopplayer {
public:
    static constexpr int kSquareParts = 8;  // 8 x 16 = 128 squares at most

    // `squares` null: every square on. Does not add the channels to the engine
    // yet (reallyAddChannelsToControlla does).
    static std::shared_ptr<Trackloopplayer> create(Loop* loop, LoopplayerDelegate* delegate,
                                                   TrackloopplayerDelegate* telegat, uint64_t repeatTimes, float bpm,
                                                   const std::vector<LoopSquares*>* squares, uint32_t startSquare,
                                                   bool repeatTrack, PlaybackContext* context = nullptr);

    void setCurrentSquare(uint16_t square);  // before playing starts
    void setSquaresPartFromSet(const std::vector<LoopSquares*>* squares);
    void reallyAddChannelsToControlla(AudioController* controller);
    AudioChannelGroup* getLoopGrop() const { return loopgroup_; }
    void freeLoadedFiles() override { reallyFreeLoadedFiles(); }
    ~Trackloopplayer() override;
    TrackloopplayerDelegate* telegate() const QUILLO_NONBLOCKING { return telegate_.get(); }
    void setTelegate(TrackloopplayerDelegate* t) { telegate_.set(t); }
    bool isPaused() const { return paused_.load(std::memory_order_relaxed); }

protected:
    explicit Trackloopplayer(PlaybackContext* context) : Loopplayer(context) {}
    void addChannelsAndStart() override;
    // Also gives the row's group back to the engine for the next track.
    void releaseEngineResources() override;
    std::shared_ptr<BlockChannel> blockChannelForOperation(int slot) override;

private:
    void createChannelsGroup();
    void renderTrackSlot(int slot, uint32_t frames, AudioBufferList* audio);
    bool endTrack(int slot, AudioBufferList* audio, uint32_t frame);  // endTrack:audio:frame:

    AudioChannelGroup* loopgroup_ = nullptr;
    std::array<std::atomic<uint16_t>, kSquareParts> squaresParts_{};
    std::array<uint16_t, kSlots> curSquare_{};  // render-side, like the slot counters
    uint64_t trackLen_ = 0;
    bool repeatTrack_ = false;
    std::atomic<bool> ihasDelegat_{false};
    DelegateLink<TrackloopplayerDelegate> telegate_;
};
