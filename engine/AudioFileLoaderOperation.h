#pragma once
// Reads a whole sound file into memory in a target format (normally the
// engine's), so that players copy samples without converting them on the
// render thread. Runs on the calling thread (start()); can be cancelled from
// another thread between pieces.
//
// The buffers are plain malloc'd memory (allocateBufferList): after a
// successful load they belong to the caller, who frees them with
// freeBufferList (or free() on each mData and then on the list). The loader
// never frees a published buffer list.
#include <atomic>
#include <functional>
#include <optional>
#include <string>

#include "engine/AudioTypes.h"

class AudioFileLoaderOperation {
public:
    // Frames per piece handed to audioReceiverBlock.
    static constexpr uint32_t kPieceFrames = 4096;

    // An all-zero target description means the engine format
    // (AudioController::nonInterleaved16BitStereoAudioDescription()).
    AudioFileLoaderOperation(std::string url, const AudioStreamDescription& targetAudioDescription);
    AudioFileLoaderOperation(const AudioFileLoaderOperation&) = delete;
    AudioFileLoaderOperation& operator=(const AudioFileLoaderOperation&) = delete;

    // Runs the load on this thread (start() calls main()).
    void start() { main(); }
    void main();
    void cancel() { cancelled_.store(true); }
    bool isCancelled() const { return cancelled_.load(); }

    const std::string& url() const { return url_; }
    const AudioStreamDescription& targetAudioDescription() const { return target_; }

    // When set, the file is streamed to the block in pieces of at most 4096
    // frames (the buffer list is valid during the call only) and no buffer
    // list is kept.
    std::function<void(const AudioBufferList* audio, uint32_t frames)> audioReceiverBlock;
    // Called at the end of main(), whatever the outcome.
    std::function<void()> completedBlock;

    // The loaded sound (nullptr when the load failed, was cancelled or streamed).
    AudioBufferList* bufferList() const { return bufferList_; }
    uint32_t lengthInFrames() const { return lengthInFrames_; }
    // Set when the load failed.
    const std::optional<AudioError>& error() const { return error_; }

    // Opens the file and reports its own format and length in frames without
    // reading samples. The format is linear PCM as the file stores it
    // (interleaved, its channel count and sample rate).
    static bool infoForFileAtURL(const std::string& url, AudioStreamDescription* audioDescription,
                                 uint64_t* lengthInFrames, AudioError* error);

private:
    std::string url_;
    AudioStreamDescription target_;
    std::atomic<bool> cancelled_{false};
    AudioBufferList* bufferList_ = nullptr;
    uint32_t lengthInFrames_ = 0;
    std::optional<AudioError> error_;
};

// "%d/%4.4s" of a status, as the messages show it: the number, then its four
// bytes as characters (stopping at a zero byte, '?' for unprintable ones).
std::string audioStatusText(int32_t status);
// Logs "%s:%d: %s result %d %08X %4.4s" for a failed call and answers whether
// it failed.
bool audioCheckResult(int32_t status, const char* operation, const char* file, int line);
#define QUILLO_CHECK_RESULT(status, operation) audioCheckResult((status), (operation), __FILE__, __LINE__)
