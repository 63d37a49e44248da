#pragma once
// The application's one real-time audio engine: a tree of channel groups
// mixed into the device output, microphone and output receivers, and the
// lock-free message exchange between the main thread and the render thread.
//
// Threads: configuration calls come from the main thread (or, for a few, a
// background thread: they are serialised by internal locks). Rebuilding the
// driver (start, stop, updateWithAudioDescription) holds only its own lock,
// so the channel, group and receiver calls and the format queries never wait
// for a rebuild running on another thread. The render
// thread runs channel render functions, receivers and queued messages; it
// never allocates, frees, locks or logs. The render thread reads the group
// tables; the main side changes them only through a synchronous message
// exchange, so a render pass sees a table either before or after a change,
// and a removed entry is never touched once removeChannels has returned.
// The main-side tables change before the exchange: a call made from a
// handler that runs while an exchange waits (every render-to-main report can)
// sees the change already made and finds nothing left to do twice.
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

#include "engine/AudioChannel.h"
#include "engine/AudioDevices.h"
#include "engine/AudioDriver.h"
#include "engine/AudioTypes.h"
#include "engine/CircularBuffer.h"
#include "engine/MainThread.h"
#include "engine/Realtime.h"

class AudioChannelGroup;  // opaque, owned by the controller
struct AudioControllerEntry;

enum class AudioDriverKind { Automatic, PortAudio, Null, Offline };

struct AudioControllerOptions {
    // Automatic: QUILLO_AUDIO=null or =offline chooses those drivers; otherwise
    // PortAudio, falling back to the null driver when no device can be opened.
    AudioDriverKind driver = AudioDriverKind::Automatic;
    // Where responses and render-to-main messages are delivered. When null the
    // controller makes its own RunLoopMainThread owned by the constructing
    // thread (reach it through mainThread() to drain it).
    MainThread* mainThread = nullptr;
    // updateWithAudioDescription waits this long between tearing the driver
    // down and rebuilding it (the device needs it; tests set 0).
    std::chrono::milliseconds rebuildDelay{500};
    // The devices and buffer size the device driver opens (the settings').
    AudioDeviceChoice devices{};
};

using AudioControllerMainThreadMessageHandler = void (*)(AudioController*, void* userInfo, int32_t userInfoLength);

class AudioController : private AudioRenderer {
public:
    // Largest number of frames in one render slice; drivers ask for less.
    static constexpr uint32_t kMaxFramesPerSlice = 4096;
    static constexpr int kMaxEntriesPerGroup = 100;
    static constexpr int kMaxCallbacksPerEntry = 15;
    // Ring sizes (bytes, rounded up to whole pages). Requests main -> render:
    // a record is 48 bytes, so about 1300 requests fit between two render
    // passes. Responses and render -> main messages share 256 KiB, of which
    // the last 64 KiB are kept for the answers to requests: 192 KiB hold 3000
    // messages with 16 bytes of user data (64 bytes each). 100 ms of heavy
    // traffic, 30 players sending 10 messages per step at 300 bpm (2 steps),
    // is 600 messages: it fits five times over before the main thread polls.
    static constexpr int32_t kRequestRingBytes = 64 * 1024;
    static constexpr int32_t kResponseRingBytes = 256 * 1024;

    static AudioStreamDescription nonInterleaved16BitStereoAudioDescription();
    static AudioStreamDescription interleaved16BitStereoAudioDescription();
    static AudioStreamDescription nonInterleavedFloatStereoAudioDescription();

    AudioController(const AudioStreamDescription& description, bool inputEnabled, AudioControllerOptions options = {});
    AudioController(const AudioStreamDescription& description, bool inputEnabled, bool useVoiceProcessing,
                    bool outputEnabled, AudioControllerOptions options = {});
    ~AudioController() override;
    AudioController(const AudioController&) = delete;
    AudioController& operator=(const AudioController&) = delete;

    // ---- Life cycle
    bool start(AudioError* error);
    void stop();
    bool running() const { return running_.load(std::memory_order_acquire); }
    // Stops if running, tears the driver down, waits (options.rebuildDelay),
    // rebuilds with the new settings and restarts if it was running.
    bool updateWithAudioDescription(const AudioStreamDescription& description, bool inputEnabled,
                                    bool useVoiceProcessing, bool outputEnabled);
    AudioStreamDescription audioDescription() const;
    // Reopens the device with other devices or another buffer size. Channels,
    // groups and receivers stay, so what plays goes on playing after a short
    // gap; a stopped engine only keeps the choice for its next start.
    // Main thread.
    bool switchDevices(const AudioDeviceChoice& devices);
    AudioDeviceChoice devices() const;
    bool inputEnabled() const { return inputEnabled_.load(std::memory_order_acquire); }
    bool outputEnabled() const { return outputEnabled_.load(std::memory_order_acquire); }
    // Whether the running driver delivers microphone input.
    bool audioInputAvailable() const;
    // Seconds per render callback (the buffer size over the rate), 0 when unknown.
    double preferredBufferDuration() const;
    // "PortAudio", "Null" or "Offline".
    const char* driverName() const;

    // ---- Channels and groups
    void addChannels(const std::vector<std::shared_ptr<AudioChannel>>& channels);
    void addChannels(const std::vector<std::shared_ptr<AudioChannel>>& channels, AudioChannelGroup* group);
    void removeChannels(const std::vector<std::shared_ptr<AudioChannel>>& channels);
    std::vector<std::shared_ptr<AudioChannel>> channels() const;
    std::vector<std::shared_ptr<AudioChannel>> channelsInChannelGroup(AudioChannelGroup* group) const;

    AudioChannelGroup* topLevelChannelGroup() const { return top_; }
    AudioChannelGroup* createChannelGroup();
    AudioChannelGroup* createChannelGroupWithinChannelGroup(AudioChannelGroup* parent);
    // Removes the group with every channel and group inside it.
    void removeChannelGroup(AudioChannelGroup* group);
    // Hands an emptied top-level group back: it stays in the engine, silent,
    // and the next createChannelGroup returns it again (volume 1, pan 0,
    // playing, not muted) instead of adding one more. Players that make a
    // group each time they start give theirs back when they stop, so the
    // top level never fills up with dead groups.
    void releaseChannelGroup(AudioChannelGroup* group);
    std::vector<AudioChannelGroup*> topLevelChannelGroups() const;

    void setVolume(float volume, AudioChannelGroup* group);
    float volume(AudioChannelGroup* group) const;
    void setPan(float pan, AudioChannelGroup* group);
    void setMuted(bool muted, AudioChannelGroup* group);
    void setPlaying(bool playing, AudioChannelGroup* group);

    // ---- Receivers (at most 15 of each)
    bool addInputReceiver(std::shared_ptr<AudioReceiver> receiver);
    void removeInputReceiver(const std::shared_ptr<AudioReceiver>& receiver);
    std::vector<std::shared_ptr<AudioReceiver>> inputReceivers() const;
    bool addOutputReceiver(std::shared_ptr<AudioReceiver> receiver);
    void removeOutputReceiver(const std::shared_ptr<AudioReceiver>& receiver);
    std::vector<std::shared_ptr<AudioReceiver>> outputReceivers() const;
    static const void* inputSource();
    static const void* outputSource();
    // Attaches `input` as an input receiver and `output` as an output
    // receiver (either may be null) and runs `block` (may be empty) on the
    // render thread, all in one synchronous message exchange: a render pass
    // sees none of it or all of it. Attaches nothing and answers false when a
    // table is full. The recorder starts this way, so that its first frame
    // is the first frame of a pass and both sources start together.
    bool addReceiversWithBlock(std::shared_ptr<AudioReceiver> input, std::shared_ptr<AudioReceiver> output,
                               std::function<void()> block);

    // ---- Message exchange
    // Runs `block` on the render thread, then `response` (may be empty) on the
    // main thread. With no concurrent render thread (engine stopped, or the
    // offline driver) the block runs at once on the calling thread.
    void performAsynchronousMessageExchangeWithBlock(std::function<void()> block, std::function<void()> response);
    // Runs `block` on the render thread and waits for it (at most 1 s; then
    // "Engine: Timed out while performing message exchange" and the block runs
    // on the calling thread). Never call it from the render thread.
    void performSynchronousMessageExchangeWithBlock(std::function<void()> block);
    // Runs the responses and render-to-main messages due to the calling thread.
    void pollForMessageResponses();
    int pendingResponses() const { return pendingResponses_.load(); }
    // Render-to-main messages dropped because the response ring was full.
    int droppedMessages() const { return droppedMessages_.load(); }

    // ---- Offline driver
    // Renders `frames` now on this thread, in 256-frame passes. The output is
    // copied to `out` when given (controller format, at least `frames` long);
    // `in` (same format) feeds the input receivers when input is enabled.
    void renderOffline(uint32_t frames, AudioBufferList* out = nullptr);
    // Frames per offline pass (default 256, as a device). Rendering to a file
    // uses longer passes: every block is frame-exact, so the audio is the
    // same, with less overhead per pass; receivers get longer blocks.
    void setOfflinePassFrames(uint32_t frames);
    void renderOffline(uint32_t frames, AudioBufferList* out, const AudioBufferList* in);

    MainThread* mainThread() const { return mainThread_; }
    // Runs the 1 s housekeeping now (normally the poll thread posts it).
    void housekeeping();

    // Render-side: queue a message for the main thread (see the free function).
    bool sendMessageToMainThread(AudioControllerMainThreadMessageHandler handler, const void* userInfo,
                                 int32_t userInfoLength) QUILLO_NONBLOCKING;

    // Internal: the record type of the message rings (message_t).
    struct Message;

private:

    void setUp();
    void makeDriver(AudioDriverKind kind);
    void tearDown();
    bool startDriver(AudioError* error);
    void stopDriver();
    void allocateRenderBuffers();
    void releaseRenderBuffers();
    bool rendersConcurrently() const;
    void logCategory();

    void renderPass(const AudioBufferList* input, AudioBufferList* output, uint32_t frames,
                    uint64_t hostTime) QUILLO_NONBLOCKING override;
    void renderSlice(const AudioBufferList* input, AudioBufferList* output, uint32_t frames,
                     uint64_t hostTime) QUILLO_NONBLOCKING;
    void renderGroup(AudioChannelGroup* group, uint32_t frames, uint64_t hostTime, float* left,
                     float* right) QUILLO_NONBLOCKING;

    void sendRequest(std::function<void()> block, std::function<void()> response, bool fromThisThread);
    void runPendingRequestsHere();
    void processPendingMessagesOnRealtimeThread() QUILLO_NONBLOCKING;
    void pollThreadMain();
    void requestPoll();

    AudioChannelGroup* makeGroup(AudioChannelGroup* parent);
    void removeEntries(std::vector<AudioControllerEntry*> entries);
    void collectChannels(AudioChannelGroup* group, std::vector<std::shared_ptr<AudioChannel>>& out) const;
    bool isLiveGroup(AudioChannelGroup* group) const;
    // Takes a group's subtree out of the main-side tables; the caller frees
    // the entries and groups once the render thread has let go of them.
    void detachGroupTree(AudioChannelGroup* group, std::vector<AudioControllerEntry*>& entries,
                         std::vector<std::unique_ptr<AudioChannelGroup>>& groups);
    bool addReceiver(bool input, std::shared_ptr<AudioReceiver> receiver);
    void removeReceiver(bool input, const std::shared_ptr<AudioReceiver>& receiver);

    // Configuration (main side).
    AudioStreamDescription description_;  // written only under the render guard and descriptionMutex_
    mutable std::mutex descriptionMutex_;
    std::atomic<bool> inputEnabled_;
    bool useVoiceProcessing_;
    std::atomic<bool> outputEnabled_;
    AudioControllerOptions options_;
    std::unique_ptr<RunLoopMainThread> ownMainThread_;
    MainThread* mainThread_ = nullptr;
    std::unique_ptr<AudioDriver> driver_;
    AudioDriverKind driverKind_ = AudioDriverKind::Null;  // what setUp chose, before any fallback
    AudioDeviceChoice devices_;                           // under lifecycleMutex_
    uint32_t offlinePassFrames_ = 256;
    std::atomic<bool> running_{false};
    std::atomic<bool> offline_{false};
    // What the driver answered when it started, readable without its lock.
    std::atomic<double> bufferDuration_{0.0};
    std::atomic<bool> inputRunning_{false};
    std::atomic<const char*> driverName_{""};
    // The driver's life cycle (start, stop, rebuild, recovery). Nothing else
    // takes it, so nothing waits for a rebuild.
    mutable std::recursive_mutex lifecycleMutex_;
    // The channel, group and receiver tables (main side). Recursive: a
    // handler run while an exchange waits may change them again.
    mutable std::recursive_mutex treeMutex_;

    // The group tree. groups_ owns every group; each group's main-side entry
    // list mirrors its render-side table.
    AudioChannelGroup* top_ = nullptr;
    std::vector<std::unique_ptr<AudioChannelGroup>> groups_;
    std::vector<AudioChannelGroup*> idleGroups_;  // released, empty, waiting for reuse
    std::unordered_map<AudioChannel*, AudioControllerEntry*> entryOfChannel_;

    // Receivers: main-side owners and render-side tables.
    std::vector<std::shared_ptr<AudioReceiver>> inputReceivers_, outputReceivers_;
    AudioReceiver* inputTable_[kMaxCallbacksPerEntry] = {};
    int inputCount_ = 0;
    AudioReceiver* outputTable_[kMaxCallbacksPerEntry] = {};
    int outputCount_ = 0;

    // Render state; touched only by whoever holds renderGuard_.
    std::atomic<bool> renderGuard_{false};
    AudioBufferList* channelBuffer_ = nullptr;  // one channel's render buffer
    AudioBufferList* inputBuffer_ = nullptr;    // silent input for the offline driver
    AudioBufferList* outputBuffer_ = nullptr;   // output when the driver gives none
    double sampleTime_ = 0;

    // Message exchange.
    CircularBuffer requests_;
    CircularBuffer responses_;
    std::mutex messageMutex_;  // main-side writers of requests_, readers of responses_
    std::atomic<int> pendingResponses_{0};
    std::atomic<int> droppedMessages_{0};
    int droppedReported_ = 0;
    std::atomic<bool> pollPosted_{false};
    std::shared_ptr<int> alive_;
    std::thread pollThread_;
    std::mutex pollMutex_;
    std::condition_variable pollWake_;
    bool pollCancelled_ = false;
};

using message_t = AudioController::Message;

// Render-thread safe: queues `handler` to be called on the main thread with a
// copy of `userInfo` (`userInfoLength` bytes, copied inline; with length 0 the
// pointer itself is passed). Allocation-free; when the ring is full the
// message is dropped and counted (housekeeping logs it). Call it only from a
// render pass (a channel, receiver or message block).
void AudioControllerSendAsynchronousMessageToMainThread(AudioController* controller,
                                                        AudioControllerMainThreadMessageHandler handler,
                                                        const void* userInfo, int32_t userInfoLength) QUILLO_NONBLOCKING;
