#include "recording/Recorder.h"

#include <cstring>
#include <map>
#include <mutex>

#include "engine/AudioController.h"
#include "engine/AudioFileWriter.h"
#include "library/text/Localized.h"

namespace {

// Live recorders by serial number, so that a message from the render thread
// never reaches a recorder that was dropped in the meantime.
std::mutex& registryMutex() {
    static std::mutex m;
    return m;
}
std::map<uint64_t, Recorder*>& registry() {
    static std::map<uint64_t, Recorder*> r;
    return r;
}
uint64_t nextSerial = 1;

Recorder::NotificationObserver& observer() {
    static Recorder::NotificationObserver o;
    return o;
}

// What the render thread sends when an append fails.
struct WriteFailure {
    uint64_t serial;
    int32_t status;
};

}  // namespace

Recorder::Recorder(AudioController* controller)
    : controller_(controller),
      mixer_(std::make_unique<MixerBuffer>()) {
    // Receivers get the engine's own format, microphone and output alike.
    const AudioStreamDescription format =
        controller ? controller->audioDescription() : AudioController::nonInterleaved16BitStereoAudioDescription();
    sampleRate_ = format.mSampleRate > 0 ? format.mSampleRate : 44100.0;
    writer_ = std::make_unique<AudioFileWriter>(format);
    buffer_.mNumberBuffers = 2;
    for (AudioBuffer& b : buffer_.mBuffers) b = AudioBuffer{1, 0, nullptr};
    std::lock_guard<std::mutex> lock(registryMutex());
    serial_ = nextSerial++;
    registry()[serial_] = this;
}

Recorder::~Recorder() {
    {
        std::lock_guard<std::mutex> lock(registryMutex());
        registry().erase(serial_);
    }
    // The engine may be gone by now: no exchange with it, just close.
    recording_.store(false, std::memory_order_release);
    writer_->finishWriting();
}

void Recorder::expectSources(bool input, bool output) {
    if (input) mixer_->expectSource(AudioController::inputSource());
    if (output) mixer_->expectSource(AudioController::outputSource());
}

bool Recorder::prepareRecordingToFileAtPath(const std::string& path, uint32_t fileType, uint32_t bitDepth,
                                            uint32_t channels, AudioError* error) {
    currentTime_.store(0.0, std::memory_order_relaxed);
    return writer_->beginWritingToFileAtPath(path, fileType, bitDepth, channels, error);
}

bool Recorder::prepareRecordingToFileAtPath(const std::string& path, uint32_t fileType, AudioError* error) {
    return prepareRecordingToFileAtPath(path, fileType, 16, 0, error);
}

bool Recorder::beginRecordingToFileAtPath(const std::string& path, uint32_t fileType, uint32_t bitDepth,
                                          uint32_t channels, AudioError* error) {
    const bool prepared = prepareRecordingToFileAtPath(path, fileType, bitDepth, channels, error);
    RecorderStartRecording(this);
    return prepared;
}

bool Recorder::beginRecordingToFileAtPath(const std::string& path, uint32_t fileType, AudioError* error) {
    return beginRecordingToFileAtPath(path, fileType, 16, 0, error);
}

void RecorderStartRecording(Recorder* recorder) {
    if (recorder) recorder->recording_.store(true, std::memory_order_release);
}

void Recorder::finishRecording() {
    const bool wasRecording = recording_.exchange(false, std::memory_order_acq_rel);
    if (wasRecording && writer_->writing()) {
        // On the render thread between passes (the mixer is the render
        // thread's, attached or not), or here when nothing renders.
        if (controller_) controller_->performSynchronousMessageExchangeWithBlock([this] { writeWhatTheMixerHolds(); });
        else writeWhatTheMixerHolds();
    }
    writer_->finishWriting();
    if (const int32_t status = writer_->takeWriteFailure()) notifyWriteError(this, status);
}

void Recorder::writeWhatTheMixerHolds() {
    for (;;) {
        for (uint32_t b = 0; b < buffer_.mNumberBuffers; ++b) {
            buffer_.mBuffers[b].mData = nullptr;
            buffer_.mBuffers[b].mDataByteSize = 0;
        }
        const uint32_t ready = mixer_->dequeue(&buffer_, kMaxFramesPerDequeue, true);
        if (ready == 0) return;
        if (const int32_t status = AudioFileWriterAddAudio(writer_.get(), &buffer_, ready)) {
            const WriteFailure failure{serial_, status};
            AudioControllerSendAsynchronousMessageToMainThread(controller_, errorOnMainThread, &failure,
                                                               int32_t(sizeof failure));
        }
    }
}

std::string Recorder::path() const { return writer_->path(); }

void Recorder::receiverCallback(AudioController* controller, const void* source, const AudioTimeStamp& time,
                                uint32_t frames, const AudioBufferList* audio) {
    if (!recording_.load(std::memory_order_acquire)) return;

    mixer_->enqueue(source, audio, frames, time);

    for (uint32_t b = 0; b < buffer_.mNumberBuffers; ++b) {
        buffer_.mBuffers[b].mData = nullptr;
        buffer_.mBuffers[b].mDataByteSize = 0;
    }
    currentTime_.store(currentTime_.load(std::memory_order_relaxed) + double(frames) / sampleRate_,
                       std::memory_order_relaxed);

    const uint32_t ready = mixer_->dequeue(&buffer_, kMaxFramesPerDequeue);
    if (ready == 0) return;
    const int32_t status = AudioFileWriterAddAudio(writer_.get(), &buffer_, ready);
    if (status != 0) {
        const WriteFailure failure{serial_, status};
        AudioControllerSendAsynchronousMessageToMainThread(controller ? controller : controller_, errorOnMainThread,
                                                           &failure, int32_t(sizeof failure));
    }
}

void Recorder::errorOnMainThread(AudioController*, void* userInfo, int32_t length) {
    if (!userInfo || length != int32_t(sizeof(WriteFailure))) return;
    WriteFailure failure;
    std::memcpy(&failure, userInfo, sizeof failure);
    Recorder* recorder = nullptr;
    {
        std::lock_guard<std::mutex> lock(registryMutex());
        auto it = registry().find(failure.serial);
        if (it != registry().end()) recorder = it->second;
    }
    notifyWriteError(recorder, failure.status);
}

void Recorder::notifyWriteError(Recorder* recorder, int32_t status) {
    // The translated text keeps its "%d"; the code goes in its place.
    std::string text = localized("Error while saving audio: Code %d");
    const size_t at = text.find("%d");
    if (at != std::string::npos) text.replace(at, 2, std::to_string(status));
    const AudioError error{kAudioErrorOSStatusDomain, int(status), text};
    if (observer()) observer()(kErrorNotification, recorder, error);
}

void Recorder::setNotificationObserver(NotificationObserver o) { observer() = std::move(o); }
