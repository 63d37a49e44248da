#pragma once
// Joins the captured audio "tempRecording.wav" and the scratch movie
// "tempGlvid.mov" into "tempaudvid.mov": both tracks from time zero, each for
// its own length, copied without re-encoding (the WAV's PCM as it is), the
// index at the front of the file.
//
// The work runs on a serial queue of its own. When the movie cannot be
// opened, it stops there and the delegate is never told (the export screen
// is left waiting, as it would be for any missing movie). Otherwise the
// delegate hears audioAddedToVideo on the main thread, whether or not the
// joined movie could be written.
#include <memory>

class SerialQueue;

class AudioToVideoAdderDelegate {
public:
    virtual void audioAddedToVideo() = 0;

protected:
    ~AudioToVideoAdderDelegate() = default;
};

class AudioToVideoAdder {
public:
    static constexpr const char* kQueueName = "audiotovideo.export.queue";

    // Main thread. `delegate` is not owned and must outlive the adder.
    explicit AudioToVideoAdder(AudioToVideoAdderDelegate* delegate);
    // Waits for a join under way; the delegate is then not told.
    ~AudioToVideoAdder();
    AudioToVideoAdder(const AudioToVideoAdder&) = delete;
    AudioToVideoAdder& operator=(const AudioToVideoAdder&) = delete;

    void addAudioToVideo();

    AudioToVideoAdderDelegate* delegate() const { return delegate_; }

private:
    AudioToVideoAdderDelegate* delegate_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    std::unique_ptr<SerialQueue> queue_;
};
