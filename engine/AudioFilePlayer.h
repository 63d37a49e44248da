#pragma once
// A one-shot player for previewing a sound: an engine channel that plays a
// whole file, loaded at creation in the controller's format. At the end of
// the data it loops (and runs startLoopBlock on the main thread) or stops
// playing and runs completionBlock on the main thread, removing itself from
// the controller first when removeUponFinish is set.
#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "engine/AudioChannel.h"

class AudioFilePlayer : public AudioChannel, public std::enable_shared_from_this<AudioFilePlayer> {
public:
    // Loads the whole file (the loader's error on failure, then nullptr).
    static std::shared_ptr<AudioFilePlayer> audioFilePlayerWithURL(const std::string& url, AudioController* controller,
                                                                   AudioError* error);
    ~AudioFilePlayer() override;

    void render(AudioController* controller, const AudioTimeStamp& time, uint32_t frames,
                AudioBufferList* audio) QUILLO_NONBLOCKING override;

    const std::string& url() const { return url_; }
    double duration() const;     // seconds
    double currentTime() const;  // seconds from the start
    void setCurrentTime(double seconds);

    bool loop() const { return loop_.load(); }
    void setLoop(bool loop) { loop_.store(loop); }
    bool removeUponFinish() const { return removeUponFinish_.load(); }
    void setRemoveUponFinish(bool remove) { removeUponFinish_.store(remove); }

    // Main thread.
    std::function<void()> completionBlock;
    std::function<void()> startLoopBlock;

    AudioFilePlayer(std::string url, AudioController* controller, AudioBufferList* audio, uint32_t length);

private:
    static void finishedOnMain(AudioController*, void* userInfo, int32_t length);
    static void loopedOnMain(AudioController*, void* userInfo, int32_t length);

    std::string url_;
    AudioBufferList* audio_;  // owned
    uint32_t length_;
    double rate_;
    uint32_t bytesPerFrame_;
    std::atomic<uint32_t> position_{0};
    std::atomic<bool> loop_{false};
    std::atomic<bool> removeUponFinish_{false};
};
