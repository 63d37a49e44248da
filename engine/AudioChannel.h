#pragma once
// Channels produce audio on demand for the controller's mixer; receivers tap
// the microphone or the mixed output. Both are called on the render thread.
#include <atomic>
#include <functional>
#include <memory>

#include "engine/AudioTypes.h"
#include "engine/Realtime.h"

class AudioController;

// A source of audio. The controller zeroes the buffers, calls render() and
// then applies the channel's volume, pan and mute while mixing; the channel
// never scales its own samples for those. A channel that is not playing is
// not rendered at all and its bus is silent. The properties are single atomic
// words, safe to change from any thread at any time.
class AudioChannel {
public:
    virtual ~AudioChannel();

    // Fills `audio` (in the controller's audioDescription, `frames` long; the
    // buffers arrive zeroed) on the render thread. Must not allocate, free,
    // lock, block or log.
    virtual void render(AudioController* controller, const AudioTimeStamp& time, uint32_t frames,
                        AudioBufferList* audio) QUILLO_NONBLOCKING = 0;

    float volume() const { return volume_.load(std::memory_order_relaxed); }
    void setVolume(float volume) { volume_.store(volume, std::memory_order_relaxed); }
    float pan() const { return pan_.load(std::memory_order_relaxed); }
    void setPan(float pan) { pan_.store(pan, std::memory_order_relaxed); }
    bool channelIsPlaying() const { return playing_.load(std::memory_order_relaxed); }
    void setChannelIsPlaying(bool playing) { playing_.store(playing, std::memory_order_relaxed); }
    bool channelIsMuted() const { return muted_.load(std::memory_order_relaxed); }
    void setChannelIsMuted(bool muted) { muted_.store(muted, std::memory_order_relaxed); }

private:
    std::atomic<float> volume_{1.0f};
    std::atomic<float> pan_{0.0f};
    std::atomic<bool> playing_{true};
    std::atomic<bool> muted_{false};
};

// The channel the players use: its render function is a block.
class BlockChannel : public AudioChannel {
public:
    using Block = std::function<void(const AudioTimeStamp&, uint32_t frames, AudioBufferList* audio)>;

    static std::shared_ptr<BlockChannel> channelWithBlock(Block block);
    explicit BlockChannel(Block block) : block_(std::move(block)) {}

    void render(AudioController* controller, const AudioTimeStamp& time, uint32_t frames,
                AudioBufferList* audio) QUILLO_NONBLOCKING override;

private:
    Block block_;
};

// A tap on the microphone or on the controller's mixed output. `source` is
// AudioController::inputSource() or AudioController::outputSource(). The
// buffers are in the controller's audioDescription.
class AudioReceiver {
public:
    virtual ~AudioReceiver();
    virtual void receiverCallback(AudioController* controller, const void* source, const AudioTimeStamp& time,
                                  uint32_t frames, const AudioBufferList* audio) QUILLO_NONBLOCKING = 0;
};
