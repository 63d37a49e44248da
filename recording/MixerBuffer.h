#pragma once
// Mixes the sources that feed a recorder (the microphone and the engine's own
// output) into one stream, lined up by the sample times of their blocks.
//
// Every source has its own pre-allocated ring in the engine format (int16,
// left and right buffers). A frame leaves the mixer once every source that is
// keeping up has delivered it: a lone source passes through bit for bit, two
// or more are summed and clamped to 16 bits. A source that has delivered and
// falls more than kMaxLagFrames behind the one furthest ahead (a source that
// went away) no longer holds the others up; one that has not delivered at all
// (a microphone expected on a machine that has none) holds them up for one
// block at most, so a short take keeps its start. Missing frames are silence,
// and whatever a source delivers later for frames that have already left is
// dropped.
//
// Threads: enqueue and dequeue never allocate, lock or block; they are called
// from one thread at a time (the render thread, in the recorder's receiver
// callback). Construction and expectSource happen before the mixer is shared
// with the render thread.
#include <array>
#include <cstdint>
#include <memory>

#include "engine/AudioTypes.h"
#include "engine/Realtime.h"

class MixerBuffer {
public:
    static constexpr int kMaxSources = 4;
    // Frames held per source (a power of two).
    static constexpr uint32_t kRingFrames = 32768;
    // How far a source may trail the leading one before it stops holding the
    // mix back. More than one render slice, so that the sources of one slice
    // (input first, then output) always meet.
    static constexpr uint32_t kMaxLagFrames = 8192;
    // The largest dequeue into the mixer's own buffers.
    static constexpr uint32_t kMaxDequeueFrames = 8192;

    // Every buffer list given and taken is in the engine's format:
    // non-interleaved signed 16-bit stereo (mono lists have one buffer).
    MixerBuffer();
    ~MixerBuffer();
    MixerBuffer(const MixerBuffer&) = delete;
    MixerBuffer& operator=(const MixerBuffer&) = delete;

    // Names a source whose frames the mix waits for from the very first one,
    // before it has delivered anything. Without this, a source joins the mix
    // with its first block, and frames that already left are not mixed again.
    void expectSource(const void* source);

    // Takes `frames` frames of `source` that start at time.mSampleTime. A list
    // with a single buffer is a mono source: it feeds both channels. Frames
    // older than what already left, or than what this source delivered
    // before, are dropped; a gap in a source's times is silence.
    void enqueue(const void* source, const AudioBufferList* audio, uint32_t frames,
                 const AudioTimeStamp& time) QUILLO_NONBLOCKING;

    // Mixes up to `maxFrames` ready frames into `audio` and answers how many.
    // Buffers whose mData is null are pointed at the mixer's own memory (valid
    // until the next call; at most kMaxDequeueFrames); otherwise the frames
    // are written into the caller's buffers, at most mDataByteSize of them.
    // With `everything` (the end of a recording) no source is waited for: all
    // frames up to the one furthest ahead are ready.
    uint32_t dequeue(AudioBufferList* audio, uint32_t maxFrames, bool everything = false) QUILLO_NONBLOCKING;

    // Frames that would be ready now.
    uint32_t peekFrames(bool everything = false) const QUILLO_NONBLOCKING;

    // Forgets every frame and every source, expected ones included.
    void reset() QUILLO_NONBLOCKING;

private:
    // A source's ring holds its frames for the times [next_, head), each at
    // index time % kRingFrames.
    struct Source {
        const void* id = nullptr;
        bool live = false;  // has a head: delivered, or expected and the mix started
        bool delivered = false;
        int64_t head = 0;   // one past the last frame it holds
        int16_t* left = nullptr;
        int16_t* right = nullptr;
    };

    Source* sourceFor(const void* id) QUILLO_NONBLOCKING;
    // The end of the ready range: the earliest head among sources keeping up.
    int64_t readyEnd(bool everything) const QUILLO_NONBLOCKING;

    std::array<Source, kMaxSources> sources_{};
    int count_ = 0;
    bool started_ = false;
    int64_t next_ = 0;  // time of the next frame to leave
    uint32_t largestBlock_ = 0;  // one render pass, as far as the mixer can tell
    int16_t* outLeft_ = nullptr;   // the mixer's own output buffers
    int16_t* outRight_ = nullptr;
    int32_t* sumLeft_ = nullptr;   // sums of a chunk of frames
    int32_t* sumRight_ = nullptr;
};
