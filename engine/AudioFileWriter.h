#pragma once
// Writes audio in a client format to a WAVE, AIFF (16, 24 or 32-bit PCM, 8
// too) or AAC (.m4a, through FFmpeg's encoder) file.
//
// Two ways to append: AudioFileWriterAddAudio is safe on the render thread:
// it converts the frames into a pre-allocated lock-free ring (4 s of audio)
// that a writer thread drains to the file every 10 ms; it never blocks and
// loses nothing while the ring has room, and answers a non-zero status when
// it cannot take the frames. A write to the file that fails on the writer
// thread (a full disk) is not lost in a log: the next asynchronous append
// answers its status (the frames it is given are still taken), once per run
// of failures, and takeWriteFailure() answers one the appends did not.
// AudioFileWriterAddAudioSynchronously writes on
// the calling thread (after whatever the ring still holds). Opening and
// finishing are main-thread operations.
#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "engine/AudioTypes.h"
#include "engine/CircularBuffer.h"
#include "engine/Realtime.h"

// The writer's own error domain.
inline const char* const kAudioFileWriterErrorDomain = "org.quillo.engine.AudioFileWriter";

// Statuses of the append functions besides 0 (done).
constexpr int32_t kAudioFileWriterNotWriting = int32_t(audioFourCC("idle"));
constexpr int32_t kAudioFileWriterRingFull = int32_t(audioFourCC("full"));
constexpr int32_t kAudioFileWriterBadBuffers = int32_t(audioFourCC("bufs"));

class AudioFileWriter {
public:
    // The ring of the asynchronous append: seconds of 44.1 kHz stereo audio.
    static constexpr double kRingSeconds = 4.0;

    explicit AudioFileWriter(const AudioStreamDescription& clientDescription);
    ~AudioFileWriter();  // finishes writing
    AudioFileWriter(const AudioFileWriter&) = delete;
    AudioFileWriter& operator=(const AudioFileWriter&) = delete;

    // fileType: kAudioFileWAVEType, kAudioFileAIFFType or kAudioFileM4AType.
    // bitDepth defaults to 16; channels 0 (the default) means the client's.
    bool beginWritingToFileAtPath(const std::string& path, uint32_t fileType, AudioError* error);
    bool beginWritingToFileAtPath(const std::string& path, uint32_t fileType, uint32_t bitDepth, AudioError* error);
    bool beginWritingToFileAtPath(const std::string& path, uint32_t fileType, uint32_t bitDepth, uint32_t channels,
                                  AudioError* error);
    // Drains the ring and closes the file; does nothing when not writing.
    void finishWriting();

    bool writing() const { return writing_.load(std::memory_order_acquire); }
    const std::string& path() const { return path_; }
    const AudioStreamDescription& audioDescription() const { return client_; }

    static bool AACEncodingAvailable();

    int32_t addAudio(const AudioBufferList* audio, uint32_t frames) QUILLO_NONBLOCKING;
    // The status of a failed background write not yet answered by addAudio
    // (0 when none), and forgets it.
    int32_t takeWriteFailure() { return failedStatus_.exchange(0); }
    int32_t addAudioSynchronously(const AudioBufferList* audio, uint32_t frames);

    struct Sink;  // the open file (libsndfile or FFmpeg)

private:
    void drainRing();  // under sinkMutex_
    void writerThreadMain();

    AudioStreamDescription client_;
    std::string path_;
    uint32_t fileChannels_ = 2;
    std::unique_ptr<Sink> sink_;
    std::mutex sinkMutex_;
    CircularBuffer ring_;  // interleaved int16 frames in the file's channel count
    std::thread writerThread_;
    std::atomic<bool> stopWriterThread_{false};
    std::atomic<bool> writing_{false};
    std::atomic<int32_t> failedStatus_{0};
    bool failing_ = false;  // under sinkMutex_: the last background write failed
};

// Render-thread safe append (see above); 0 when the frames were taken.
int32_t AudioFileWriterAddAudio(AudioFileWriter* writer, const AudioBufferList* audio,
                                uint32_t frames) QUILLO_NONBLOCKING;
// Blocking append on the calling thread; 0 when written.
int32_t AudioFileWriterAddAudioSynchronously(AudioFileWriter* writer, const AudioBufferList* audio, uint32_t frames);
