#pragma once
// Plays one loop through the engine: eight channels, one per instrument slot,
// each a block channel whose render block is that slot's step sequencer and
// sample player. Timing is decided inside the render blocks, to the frame.
//
// Threads: create, edit and stop on the main thread. Simple settings (mask,
// tempo, pause, delegate) are single atomic words; changes that touch several
// of a slot's counters (a new sound, moving a slot) run on the render thread
// between passes through the engine's message exchange.
#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/AudioTypes.h"
#include "playback/PlayerDelegates.h"
#include "playback/StepTiming.h"

class AudioChannel;
class AudioController;
class AudioFileLoaderOperation;
class BlockChannel;
class Loop;
struct PlaybackContext;

class Loopplayer : public std::enable_shared_from_this<Loopplayer> {
public:
    static constexpr int kSlots = 8;
    static constexpr int kStepsPerBar = 16;

    // Plays `loop` for `repeatTimes` bars (kForever: until stopped) at `bpm`.
    static std::shared_ptr<Loopplayer> create(Loop* loop, LoopplayerDelegate* delegate, uint64_t repeatTimes,
                                              float bpm, PlaybackContext* context = nullptr);
    // Plays `loop` for ever at its own tempo.
    static std::shared_ptr<Loopplayer> create(Loop* loop, LoopplayerDelegate* delegate,
                                              PlaybackContext* context = nullptr);
    virtual ~Loopplayer();
    Loopplayer(const Loopplayer&) = delete;
    Loopplayer& operator=(const Loopplayer&) = delete;

    void setTactsAtIndex(int slot, uint16_t mask);
    void setVolume(float gain, int slot);  // setVolume:ofChannelAtIndex:
    void setNewBpm(float bpm);
    void setPausd(bool paused);
    void changeFileAtIndex(int slot, std::shared_ptr<AudioFileLoaderOperation> file);
    void changeItemsAtIndex(int destination, int source);  // changeItemsAtIndex:oldInd:
    void stopLoopplayer();
    virtual void freeLoadedFiles() {}
    void reallyFreeLoadedFiles();
    static void stopLoop(const std::shared_ptr<Loopplayer>& caller);

    Loop* loop() const { return loop_; }
    LoopplayerDelegate* delegate() const QUILLO_NONBLOCKING { return delegate_.get(); }
    void setDelegate(LoopplayerDelegate* d) { delegate_.set(d); }
    bool isStopped() const { return channels_.empty(); }
    // The channel of a slot (none when its sound could not be loaded).
    std::shared_ptr<AudioChannel> channelAtIndex(int slot) const;

protected:
    explicit Loopplayer(PlaybackContext* context);
    void startAfterSetLoop(Loop* loop, LoopplayerDelegate* delegate, float bpm);  // startAfterSetLoop:andDelegat:bpm:
    void initStaticVars();
    virtual void addChannelsAndStart();
    void loadFile(int slot, const std::string& url);  // loadFile:fromURL:
    void addChannelsToControlla();
    // The channels have left the engine (or never entered it).
    virtual void releaseEngineResources() {}
    virtual std::shared_ptr<BlockChannel> blockChannelForOperation(int slot);
    void takeSoundOfSlot(int slot);  // points the render state at _files[slot]

    // Render-thread helpers shared with the track-loop player.
    void notifyTact(uint16_t step);
    void sendEndOfDataLog(uint32_t byteSize, uint32_t frames);

    PlaybackContext* context_;
    AudioController* controller_ = nullptr;
    Loop* loop_ = nullptr;
    DelegateLink<LoopplayerDelegate> delegate_;
    std::atomic<bool> paused_{false};
    std::atomic<float> bpm_{90.0f};
    std::atomic<bool> ended_{false};
    std::atomic<uint64_t> repeatTimes_{kForever};

    std::array<std::shared_ptr<AudioFileLoaderOperation>, kSlots> files_;
    std::array<std::shared_ptr<BlockChannel>, kSlots> blockChannels_;
    std::vector<std::shared_ptr<AudioChannel>> channels_;
    std::array<std::atomic<uint16_t>, kSlots> channelTacts_{};

    // Render-side state of each slot. Written on the render thread, or by the
    // main thread only before the channels reach the engine or inside a
    // message exchange.
    struct Slot {
        const AudioBufferList* audioSampleBufferList = nullptr;
        uint64_t totalFrames = 0;
        uint64_t nextBeatFrame = 0;
        bool needToStartPlaying = false;
        bool playingNow = false;
        uint32_t positionInFile = 0;
        uint16_t tact = 16;
        bool needToEndAnimationEarlier = false;
        uint32_t lengthInFrames = 0;
    };
    std::array<Slot, kSlots> slots_;

    // The sound of a slot at frame k of a render call: starts a pending note
    // (c counts frames since the call or the last note began), and answers
    // whether the slot sounds from here, with *p the sound's frame, or its
    // sound ran out at this frame (written silent).
    enum class SoundAt { Silent, Sounding, RanOut };
    static SoundAt soundAt(Slot& s, uint32_t k, uint32_t& c, int16_t* outL, int16_t* outR, uint32_t* p) {
        if (!s.needToStartPlaying && !s.playingNow) return SoundAt::Silent;
        s.playingNow = true;
        if (s.needToStartPlaying) {
            s.positionInFile = 0;  // a new note restarts the sound, cutting the last one
            c = 0;
        }
        s.needToStartPlaying = false;
        *p = s.positionInFile + c;
        if (*p < s.lengthInFrames) return SoundAt::Sounding;
        outL[k] = outR[k] = 0;
        s.positionInFile = 0;
        s.playingNow = false;
        return SoundAt::RanOut;
    }
    // Copies up to `run` frames of the sound from frame p; returns how many.
    static uint64_t copySound(const Slot& s, uint32_t p, uint64_t run, uint32_t k, int16_t* outL, int16_t* outR) {
        run = std::min<uint64_t>(run, s.lengthInFrames - p);
        const AudioBufferList* sound = s.audioSampleBufferList;
        std::memcpy(outL + k, static_cast<const int16_t*>(sound->mBuffers[0].mData) + p, run * sizeof(int16_t));
        std::memcpy(outR + k, static_cast<const int16_t*>(sound->mBuffers[1].mData) + p, run * sizeof(int16_t));
        return run;
    }

private:
    void renderLoopSlot(int slot, uint32_t frames, AudioBufferList* audio);
};
