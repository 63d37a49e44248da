#pragma once
// Records what the engine receives into the scratch file "tempRecording.wav".
//
// A Recorder is an engine receiver: attached as an input receiver it gets the
// microphone, as an output receiver the engine's own mixed output, and as
// both it mixes the two, lined up frame by frame. Each received block goes
// into the mixer; whatever the mixer has ready is appended to the file
// through the writer's render-safe append. The sound editor records the
// microphone this way, the export screen captures loops and tracks as they
// play.
//
// One recorder per recording: create, prepare (opens the file), start,
// finish (closes it), drop. Preparing and finishing are main-thread calls;
// RecorderStartRecording and the receiver callback may run on the render
// thread. The recording flag is a single atomic word.
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "engine/AudioChannel.h"
#include "engine/AudioTypes.h"
#include "engine/Realtime.h"
#include "recording/MixerBuffer.h"

class AudioController;
class AudioFileWriter;

class Recorder : public AudioReceiver {
public:
    // The one scratch file every recording goes to, in the temporary folder.
    static constexpr const char* kScratchFileName = "tempRecording.wav";
    // Largest number of frames taken from the mixer per received block.
    static constexpr uint32_t kMaxFramesPerDequeue = 8192;
    static constexpr const char* kErrorNotification = "RecorderDidEncounterErrorNotification";

    explicit Recorder(AudioController* controller);
    ~Recorder() override;
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // Tells the mixer which sources this recorder will be attached to, so
    // that it waits for each of them from the first frame (call before
    // attaching).
    void expectSources(bool input, bool output);

    // Resets currentTime and opens the writer on `path` (fileType
    // kAudioFileWAVEType, ...; bitDepth 16 and channels 0, the engine's two,
    // in the short form). Answers the writer's success and error.
    bool prepareRecordingToFileAtPath(const std::string& path, uint32_t fileType, uint32_t bitDepth,
                                      uint32_t channels, AudioError* error);
    bool prepareRecordingToFileAtPath(const std::string& path, uint32_t fileType, AudioError* error);
    // Prepares, then starts recording whatever the prepare answered.
    bool beginRecordingToFileAtPath(const std::string& path, uint32_t fileType, uint32_t bitDepth, uint32_t channels,
                                    AudioError* error);
    bool beginRecordingToFileAtPath(const std::string& path, uint32_t fileType, AudioError* error);
    // Stops taking audio, writes what the mixer still holds (a source that
    // never delivered is not waited for), then closes the file. A write that
    // failed on the way is reported as kErrorNotification before it returns.
    void finishRecording();

    bool recording() const { return recording_.load(std::memory_order_acquire); }
    std::string path() const;
    // Seconds of audio received since the last prepare.
    double currentTime() const { return currentTime_.load(std::memory_order_relaxed); }
    AudioFileWriter* writer() const { return writer_.get(); }

    void receiverCallback(AudioController* controller, const void* source, const AudioTimeStamp& time,
                          uint32_t frames, const AudioBufferList* audio) QUILLO_NONBLOCKING override;

    // Notifications for the main thread. Quillo has no notification centre;
    // a single observer may listen (none does by default). A write error
    // during recording arrives as kErrorNotification with the recorder (or
    // null when it is gone by then) and an error whose description is
    // "Error while saving audio: Code N".
    using NotificationObserver =
        std::function<void(const std::string& name, Recorder* object, const AudioError& error)>;
    static void setNotificationObserver(NotificationObserver observer);

private:
    friend void RecorderStartRecording(Recorder* recorder);
    static void errorOnMainThread(AudioController* controller, void* userInfo, int32_t length);
    static void notifyWriteError(Recorder* recorder, int32_t status);
    void writeWhatTheMixerHolds() QUILLO_NONBLOCKING;

    AudioController* controller_;
    double sampleRate_;
    std::unique_ptr<MixerBuffer> mixer_;
    std::unique_ptr<AudioFileWriter> writer_;
    AudioBufferList buffer_{};  // points into the mixer's memory after each dequeue
    std::atomic<bool> recording_{false};
    std::atomic<double> currentTime_{0.0};
    uint64_t serial_;  // names this recorder in messages to the main thread
};

// Starts recording. Callable from any thread, the render thread included.
void RecorderStartRecording(Recorder* recorder) QUILLO_NONBLOCKING;
