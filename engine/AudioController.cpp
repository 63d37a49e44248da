#include "engine/AudioController.h"

#include <pthread.h>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "library/util/Log.h"

// ---------------------------------------------------------------------------
// Records

// One channel or group inside its parent group.
struct AudioControllerEntry {
    bool isGroup = false;
    AudioChannel* channel = nullptr;         // render side reads this
    std::shared_ptr<AudioChannel> object;    // main side owns the channel
    AudioChannelGroup* group = nullptr;      // when isGroup
    AudioChannelGroup* parent = nullptr;
    AudioTimeStamp timeStamp{0, 0};          // the entry's own sample time
};

class AudioChannelGroup {
public:
    explicit AudioChannelGroup(AudioChannelGroup* parent) : parent(parent) {
        left = static_cast<float*>(std::calloc(AudioController::kMaxFramesPerSlice, sizeof(float)));
        right = static_cast<float*>(std::calloc(AudioController::kMaxFramesPerSlice, sizeof(float)));
    }
    ~AudioChannelGroup() {
        std::free(left);
        std::free(right);
    }

    AudioChannelGroup* parent;
    AudioControllerEntry* entry = nullptr;  // stands for the group in its parent (none for the top)

    // Render side: changed only by messages (under the render guard).
    AudioControllerEntry* table[AudioController::kMaxEntriesPerGroup] = {};
    int count = 0;
    float* left;  // mix accumulators, int16 scale
    float* right;

    // Main side mirror of the table.
    std::vector<AudioControllerEntry*> entries;

    std::atomic<float> volume{1.0f};
    std::atomic<float> pan{0.0f};
    std::atomic<bool> playing{true};
    std::atomic<bool> muted{false};
};

// A message record, written in place into a ring. Render-to-main messages
// carry their user data inline right after the record.
struct AudioController::Message {
    std::function<void()>* block;
    std::function<void()>* responseBlock;
    AudioControllerMainThreadMessageHandler handler;
    const void* userInfoByReference;
    int32_t userInfoLength;
    bool hasSourceThread;
    bool replyServiced;
    bool responseExpected;  // counted in pendingResponses_
    pthread_t sourceThread;
};

namespace {

using Message = AudioController::Message;
constexpr int32_t kAlign = 16;

constexpr int32_t roundUp(int32_t n) { return (n + kAlign - 1) / kAlign * kAlign; }
constexpr int32_t kMessageSize = roundUp(int32_t(sizeof(AudioController::Message)));

int32_t recordSize(const Message* m) QUILLO_NONBLOCKING {
    return kMessageSize + (m->userInfoByReference ? 0 : roundUp(m->userInfoLength));
}

// ---------------------------------------------------------------------------
// Sample formats. The mixer works in float at the int16 scale, so that gain 1
// and pan 0 pass 16-bit samples through bit-exactly.

struct Format {
    bool isFloat;
    bool nonInterleaved;
    uint32_t channels;
};

Format formatOf(const AudioStreamDescription& d) {
    return Format{audioDescriptionIsFloat(d), audioDescriptionIsNonInterleaved(d),
                  std::max<uint32_t>(1, std::min<uint32_t>(2, d.mChannelsPerFrame))};
}

inline void panGains(float volume, float pan, float* gl, float* gr) QUILLO_NONBLOCKING {
    // Balance law: pan 0 is unity on both sides; moving right fades the left.
    pan = pan < -1.0f ? -1.0f : (pan > 1.0f ? 1.0f : pan);
    *gl = volume * (pan > 0.0f ? 1.0f - pan : 1.0f);
    *gr = volume * (pan < 0.0f ? 1.0f + pan : 1.0f);
}

// The mixer's inner loops. Each is compiled twice, plain and for AVX2, and the
// AVX2 one is chosen once at start-up where the processor has it (a plain
// check rather than an ifunc, which the thread sanitizer cannot load).
template <class T>
inline void mixLoop(const T* __restrict l, const T* __restrict r, uint32_t frames, float gl, float gr,
                    float* __restrict left, float* __restrict right) QUILLO_NONBLOCKING {
    for (uint32_t k = 0; k < frames; ++k) {
        left[k] += float(l[k]) * gl;
        right[k] += float(r[k]) * gr;
    }
}

template <class T>
__attribute__((target("avx2"))) void mixAvx2(const T* __restrict l, const T* __restrict r, uint32_t frames,
                                             float gl, float gr, float* __restrict left,
                                             float* __restrict right) QUILLO_NONBLOCKING {
    mixLoop(l, r, frames, gl, gr, left, right);
}

template <class T>
void mixPlain(const T* __restrict l, const T* __restrict r, uint32_t frames, float gl, float gr,
              float* __restrict left, float* __restrict right) QUILLO_NONBLOCKING {
    mixLoop(l, r, frames, gl, gr, left, right);
}

const bool kHasAvx2 = __builtin_cpu_supports("avx2");

inline void mixNonInterleaved16(const int16_t* l, const int16_t* r, uint32_t frames, float gl, float gr, float* left,
                                float* right) QUILLO_NONBLOCKING {
    if (kHasAvx2) mixAvx2(l, r, frames, gl, gr, left, right);
    else mixPlain(l, r, frames, gl, gr, left, right);
}

inline void mixFloat(const float* l, const float* r, uint32_t frames, float gl, float gr, float* left,
                     float* right) QUILLO_NONBLOCKING {
    if (kHasAvx2) mixAvx2(l, r, frames, gl, gr, left, right);
    else mixPlain(l, r, frames, gl, gr, left, right);
}

void accumulate(const Format& f, const AudioBufferList* src, uint32_t frames, float gl, float gr, float* left,
                float* right) QUILLO_NONBLOCKING {
    const uint32_t ch = f.channels;
    if (!f.isFloat) {
        if (f.nonInterleaved) {
            mixNonInterleaved16(static_cast<const int16_t*>(src->mBuffers[0].mData),
                                static_cast<const int16_t*>(src->mBuffers[ch > 1 ? 1 : 0].mData), frames, gl, gr,
                                left, right);
        } else {
            const auto* s = static_cast<const int16_t*>(src->mBuffers[0].mData);
            for (uint32_t k = 0; k < frames; ++k) {
                left[k] += float(s[k * ch]) * gl;
                right[k] += float(s[k * ch + ch - 1]) * gr;
            }
        }
    } else {
        gl *= 32768.0f;
        gr *= 32768.0f;
        if (f.nonInterleaved) {
            const auto* l = static_cast<const float*>(src->mBuffers[0].mData);
            const auto* r = static_cast<const float*>(src->mBuffers[ch > 1 ? 1 : 0].mData);
            for (uint32_t k = 0; k < frames; ++k) {
                left[k] += l[k] * gl;
                right[k] += r[k] * gr;
            }
        } else {
            const auto* s = static_cast<const float*>(src->mBuffers[0].mData);
            for (uint32_t k = 0; k < frames; ++k) {
                left[k] += s[k * ch] * gl;
                right[k] += s[k * ch + ch - 1] * gr;
            }
        }
    }
}

inline int16_t toInt16(float v) QUILLO_NONBLOCKING {
    if (v >= 32767.0f) return 32767;
    if (v <= -32768.0f) return -32768;
    return int16_t(v >= 0.0f ? int32_t(v + 0.5f) : -int32_t(-v + 0.5f));
}

void writeOut(const Format& f, const float* left, const float* right, AudioBufferList* dst,
              uint32_t frames) QUILLO_NONBLOCKING {
    const uint32_t ch = f.channels;
    if (!f.isFloat) {
        if (f.nonInterleaved) {
            auto* l = static_cast<int16_t*>(dst->mBuffers[0].mData);
            for (uint32_t k = 0; k < frames; ++k) l[k] = toInt16(ch > 1 ? left[k] : 0.5f * (left[k] + right[k]));
            if (ch > 1) {
                auto* r = static_cast<int16_t*>(dst->mBuffers[1].mData);
                for (uint32_t k = 0; k < frames; ++k) r[k] = toInt16(right[k]);
            }
        } else {
            auto* s = static_cast<int16_t*>(dst->mBuffers[0].mData);
            for (uint32_t k = 0; k < frames; ++k) {
                if (ch > 1) {
                    s[k * ch] = toInt16(left[k]);
                    s[k * ch + 1] = toInt16(right[k]);
                } else {
                    s[k] = toInt16(0.5f * (left[k] + right[k]));
                }
            }
        }
    } else {
        const float scale = 1.0f / 32768.0f;
        if (f.nonInterleaved) {
            auto* l = static_cast<float*>(dst->mBuffers[0].mData);
            for (uint32_t k = 0; k < frames; ++k) l[k] = (ch > 1 ? left[k] : 0.5f * (left[k] + right[k])) * scale;
            if (ch > 1) {
                auto* r = static_cast<float*>(dst->mBuffers[1].mData);
                for (uint32_t k = 0; k < frames; ++k) r[k] = right[k] * scale;
            }
        } else {
            auto* s = static_cast<float*>(dst->mBuffers[0].mData);
            for (uint32_t k = 0; k < frames; ++k) {
                if (ch > 1) {
                    s[k * ch] = left[k] * scale;
                    s[k * ch + 1] = right[k] * scale;
                } else {
                    s[k] = 0.5f * (left[k] + right[k]) * scale;
                }
            }
        }
    }
}

// Points `view` at `frames` frames of `list` starting at frame `offset`.
void sliceBufferList(const AudioBufferList* list, const AudioStreamDescription& d, uint32_t offset, uint32_t frames,
                     AudioBufferList* view) QUILLO_NONBLOCKING {
    view->mNumberBuffers = list->mNumberBuffers;
    for (uint32_t i = 0; i < list->mNumberBuffers && i < 2; ++i) {
        view->mBuffers[i].mNumberChannels = list->mBuffers[i].mNumberChannels;
        view->mBuffers[i].mDataByteSize = frames * d.mBytesPerFrame;
        view->mBuffers[i].mData = static_cast<char*>(list->mBuffers[i].mData) + size_t(offset) * d.mBytesPerFrame;
    }
}

void zeroBufferList(AudioBufferList* list, const AudioStreamDescription& d, uint32_t frames) QUILLO_NONBLOCKING {
    for (uint32_t i = 0; i < list->mNumberBuffers && i < 2; ++i) {
        list->mBuffers[i].mDataByteSize = frames * d.mBytesPerFrame;
        std::memset(list->mBuffers[i].mData, 0, size_t(frames) * d.mBytesPerFrame);
    }
}

inline void cpuRelax() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

AudioStreamDescription makeDescription(bool isFloat, bool nonInterleaved) {
    AudioStreamDescription d{};
    d.mSampleRate = 44100.0;
    d.mFormatID = kAudioFormatLinearPCM;
    const uint32_t bytes = isFloat ? 4 : 2;
    d.mFormatFlags = (isFloat ? kAudioFormatFlagIsFloat : kAudioFormatFlagIsSignedInteger) | kAudioFormatFlagIsPacked |
                     (nonInterleaved ? kAudioFormatFlagIsNonInterleaved : 0);
    d.mBytesPerPacket = d.mBytesPerFrame = nonInterleaved ? bytes : bytes * 2;
    d.mFramesPerPacket = 1;
    d.mChannelsPerFrame = 2;
    d.mBitsPerChannel = bytes * 8;
    return d;
}

}  // namespace

// ---------------------------------------------------------------------------
// Formats

AudioStreamDescription AudioController::nonInterleaved16BitStereoAudioDescription() {
    return makeDescription(false, true);
}
AudioStreamDescription AudioController::interleaved16BitStereoAudioDescription() {
    return makeDescription(false, false);
}
AudioStreamDescription AudioController::nonInterleavedFloatStereoAudioDescription() {
    return makeDescription(true, true);
}

const void* AudioController::inputSource() {
    static const char tag = 'i';
    return &tag;
}
const void* AudioController::outputSource() {
    static const char tag = 'o';
    return &tag;
}

// ---------------------------------------------------------------------------
// Life cycle

AudioController::AudioController(const AudioStreamDescription& description, bool inputEnabled,
                                 AudioControllerOptions options)
    : AudioController(description, inputEnabled, false, true, options) {}

AudioController::AudioController(const AudioStreamDescription& description, bool inputEnabled,
                                 bool useVoiceProcessing, bool outputEnabled, AudioControllerOptions options)
    : description_(description),
      inputEnabled_(inputEnabled),
      useVoiceProcessing_(useVoiceProcessing),
      outputEnabled_(outputEnabled),
      options_(options),
      alive_(std::make_shared<int>(0)) {
    static_assert(std::is_trivially_copyable_v<Message>);
    if (options_.mainThread) {
        mainThread_ = options_.mainThread;
    } else {
        ownMainThread_ = std::make_unique<RunLoopMainThread>();
        mainThread_ = ownMainThread_.get();
    }
    if (!requests_.init(kRequestRingBytes) || !responses_.init(kResponseRingBytes)) std::abort();

    auto top = std::make_unique<AudioChannelGroup>(nullptr);
    top_ = top.get();
    groups_.push_back(std::move(top));

    setUp();
    pollThread_ = std::thread([this] { pollThreadMain(); });
}

AudioController::~AudioController() {
    stop();
    {
        std::lock_guard<std::mutex> lock(pollMutex_);
        pollCancelled_ = true;
    }
    pollWake_.notify_all();
    if (pollThread_.joinable()) pollThread_.join();
    alive_.reset();  // tasks already posted to the main thread become no-ops

    // Nothing renders any more: run what is queued, then release it all.
    runPendingRequestsHere();
    pollForMessageResponses();
    {
        // Records for other threads that never polled: release their blocks.
        std::lock_guard<std::mutex> lock(messageMutex_);
        int32_t avail = 0;
        char* p = static_cast<char*>(responses_.tail(&avail));
        for (int32_t off = 0; p && off < avail;) {
            auto* m = reinterpret_cast<Message*>(p + off);
            if (!m->replyServiced) {
                delete m->block;
                delete m->responseBlock;
            }
            off += recordSize(m);
        }
    }
    destroyGroupTree(top_);
    tearDown();
}

void AudioController::setUp() {
    AudioDriverKind kind = options_.driver;
    if (kind == AudioDriverKind::Automatic) {
        const char* env = std::getenv("QUILLO_AUDIO");
        std::string choice = env ? env : "";
        if (choice == "null") kind = AudioDriverKind::Null;
        else if (choice == "offline") kind = AudioDriverKind::Offline;
        else kind = AudioDriverKind::PortAudio;
    }
    switch (kind) {
        case AudioDriverKind::Offline: driver_ = makeOfflineAudioDriver(); break;
        case AudioDriverKind::Null: driver_ = makeNullAudioDriver(); break;
        default: driver_ = makePortAudioDriver(); break;
    }
    offline_ = !driver_->rendersOnItsOwnThread();
    allocateRenderBuffers();
    logCategory();
    qlog("Engine: Engine setup");
}

void AudioController::tearDown() {
    stopDriver();
    driver_.reset();
    releaseRenderBuffers();
}

void AudioController::allocateRenderBuffers() {
    // Taken under the render guard: an offline render on another thread must
    // not see half-swapped buffers.
    while (renderGuard_.exchange(true, std::memory_order_acquire)) cpuRelax();
    releaseRenderBuffers();
    channelBuffer_ = allocateBufferList(description_, kMaxFramesPerSlice);
    inputBuffer_ = allocateBufferList(description_, kMaxFramesPerSlice);
    outputBuffer_ = allocateBufferList(description_, kMaxFramesPerSlice);
    renderGuard_.store(false, std::memory_order_release);
    if (!channelBuffer_ || !inputBuffer_ || !outputBuffer_) {
        qlog("Engine: Not enough memory for the render buffers");
        std::abort();
    }
}

void AudioController::releaseRenderBuffers() {
    freeBufferList(channelBuffer_);
    freeBufferList(inputBuffer_);
    freeBufferList(outputBuffer_);
    channelBuffer_ = inputBuffer_ = outputBuffer_ = nullptr;
}

void AudioController::logCategory() {
    const char* category = inputEnabled_ ? (outputEnabled_ ? "PlayAndRecord (input and output)" : "Record (input only)")
                                         : "Playback (output only)";
    qlog("Engine: Setting audio session category to %s", category);
}

bool AudioController::startDriver(AudioError* error) {
    AudioDriverConfig config;
    config.format = description_;
    config.inputEnabled = inputEnabled_;
    config.outputEnabled = outputEnabled_;
    config.framesPerBuffer = 256;
    AudioError driverError;
    if (!driver_->start(config, this, &driverError)) {
        const bool mayFallBack = options_.driver == AudioDriverKind::Automatic && std::string(driver_->name()) != "Null";
        if (!mayFallBack) {
            if (error) *error = driverError;
            return false;
        }
        qlog("Engine: No usable audio device (%s); using the null device", driverError.localizedDescription.c_str());
        driver_ = makeNullAudioDriver();
        offline_ = false;
        if (!driver_->start(config, this, &driverError)) {
            if (error) *error = driverError;
            return false;
        }
    }
    if (inputEnabled_ && !driver_->inputRunning() && driver_->rendersOnItsOwnThread())
        qlog("Engine: No input available. Using Playback (output only) category instead.");
    const double duration = driver_->bufferDuration();
    qlog("Engine: Hardware sample rate is %f", description_.mSampleRate);
    qlog("Engine: Buffer duration %0.2g, %d frames (requested %0.2gs, %d frames)", duration,
         int(std::lround(duration * description_.mSampleRate)), 256.0 / description_.mSampleRate, 256);
    return true;
}

void AudioController::stopDriver() {
    if (driver_) driver_->stop();
}

bool AudioController::start(AudioError* error) {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    if (running()) return true;
    qlog("Engine: Starting Engine");
    if (!startDriver(error)) {
        if (error) qlog("Engine: Couldn't start the audio device: %s", error->localizedDescription.c_str());
        return false;
    }
    running_.store(true, std::memory_order_release);
    pollWake_.notify_all();
    return true;
}

void AudioController::stop() {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    if (!running()) return;
    qlog("Engine: Stopping Engine");
    stopDriver();
    running_.store(false, std::memory_order_release);
    // Nobody reads the request ring now: apply what is queued.
    runPendingRequestsHere();
    if (mainThread_->isCurrent()) pollForMessageResponses();
}

bool AudioController::updateWithAudioDescription(const AudioStreamDescription& description, bool inputEnabled,
                                                 bool useVoiceProcessing, bool outputEnabled) {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    const bool wasRunning = running();
    if (wasRunning) stop();
    stopDriver();
    runPendingRequestsHere();
    if (options_.rebuildDelay.count() > 0) std::this_thread::sleep_for(options_.rebuildDelay);

    const bool formatChanged = !(description == description_);
    description_ = description;
    inputEnabled_ = inputEnabled;
    useVoiceProcessing_ = useVoiceProcessing;
    outputEnabled_ = outputEnabled;
    if (description_.mFormatID != kAudioFormatLinearPCM || description_.mBytesPerFrame == 0) {
        qlog("Engine: error setting up audio session");
        return false;
    }
    if (formatChanged) allocateRenderBuffers();
    logCategory();
    if (wasRunning) {
        AudioError error;
        if (!start(&error)) {
            qlog("Enigne: error restarting controller");
            return false;
        }
    }
    return true;
}

AudioStreamDescription AudioController::audioDescription() const {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    return description_;
}

bool AudioController::audioInputAvailable() const {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    if (!inputEnabled_) return false;
    if (offline_) return true;
    return running() && driver_->inputRunning();
}

double AudioController::preferredBufferDuration() const {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    return driver_ ? driver_->bufferDuration() : 0.0;
}

const char* AudioController::driverName() const {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    return driver_ ? driver_->name() : "";
}

bool AudioController::rendersConcurrently() const { return running() && !offline_; }

void AudioController::housekeeping() {
    const int dropped = droppedMessages_.load();
    if (dropped != droppedReported_) {
        qlog("Engine: Dropped %d messages to the main thread (ring full)", dropped - droppedReported_);
        droppedReported_ = dropped;
    }
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    if (running() && driver_ && driver_->failed()) {
        // The device went away under a running stream: try it again, then
        // settle for the null device.
        bool recovered = false;
        for (int retries = 2; retries >= 0 && !recovered; --retries) {
            qlog("Engine: Trying to recover from system error (%d retries remain)", retries);
            stopDriver();
            recovered = startDriver(nullptr);
        }
        if (recovered) {
            qlog("Engine: Successfully recovered from system error");
        } else {
            qlog("Engine: Could not recover from system error.");
            running_.store(false, std::memory_order_release);
        }
    }
}

// ---------------------------------------------------------------------------
// Channels and groups

void AudioController::addChannels(const std::vector<std::shared_ptr<AudioChannel>>& channels) {
    addChannels(channels, nullptr);
}

void AudioController::addChannels(const std::vector<std::shared_ptr<AudioChannel>>& channels,
                                  AudioChannelGroup* group) {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    if (!group) group = top_;

    // A channel that is already somewhere moves: take it out first.
    std::vector<std::shared_ptr<AudioChannel>> present;
    for (const auto& c : channels)
        if (c && entryOfChannel_.count(c.get())) present.push_back(c);
    if (!present.empty()) removeChannels(present);

    std::vector<AudioControllerEntry*> added;
    for (const auto& c : channels) {
        if (!c || entryOfChannel_.count(c.get())) continue;  // null or listed twice
        if (int(group->entries.size()) >= kMaxEntriesPerGroup) {
            qlog("Engine: Warning: Channel limit reached");
            break;
        }
        auto* e = new AudioControllerEntry;
        e->channel = c.get();
        e->object = c;
        e->parent = group;
        group->entries.push_back(e);
        entryOfChannel_[c.get()] = e;
        added.push_back(e);
    }
    if (added.empty()) return;
    performSynchronousMessageExchangeWithBlock([group, &added] {
        for (AudioControllerEntry* e : added) group->table[group->count++] = e;
    });
}

void AudioController::removeEntries(const std::vector<AudioControllerEntry*>& entries) {
    // Out of the render tables first (the entries after them move down) ...
    performSynchronousMessageExchangeWithBlock([&entries] {
        for (AudioControllerEntry* e : entries) {
            AudioChannelGroup* g = e->parent;
            for (int i = 0; i < g->count; ++i) {
                if (g->table[i] != e) continue;
                for (int j = i + 1; j < g->count; ++j) g->table[j - 1] = g->table[j];
                g->table[--g->count] = nullptr;
                break;
            }
        }
    });
    // ... and only then are they released.
    for (AudioControllerEntry* e : entries) {
        auto& list = e->parent->entries;
        list.erase(std::remove(list.begin(), list.end(), e), list.end());
        if (e->channel) entryOfChannel_.erase(e->channel);
        delete e;
    }
}

void AudioController::removeChannels(const std::vector<std::shared_ptr<AudioChannel>>& channels) {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    std::vector<AudioControllerEntry*> entries;
    for (const auto& c : channels) {
        if (!c) continue;
        auto it = entryOfChannel_.find(c.get());
        if (it == entryOfChannel_.end()) continue;
        if (std::find(entries.begin(), entries.end(), it->second) == entries.end()) entries.push_back(it->second);
    }
    if (!entries.empty()) removeEntries(entries);
}

void AudioController::collectChannels(AudioChannelGroup* group, std::vector<std::shared_ptr<AudioChannel>>& out) const {
    for (AudioControllerEntry* e : group->entries) {
        if (e->isGroup) collectChannels(e->group, out);
        else out.push_back(e->object);
    }
}

std::vector<std::shared_ptr<AudioChannel>> AudioController::channels() const {
    return channelsInChannelGroup(top_);
}

std::vector<std::shared_ptr<AudioChannel>> AudioController::channelsInChannelGroup(AudioChannelGroup* group) const {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    std::vector<std::shared_ptr<AudioChannel>> out;
    collectChannels(group ? group : top_, out);
    return out;
}

AudioChannelGroup* AudioController::createChannelGroup() { return createChannelGroupWithinChannelGroup(top_); }

AudioChannelGroup* AudioController::createChannelGroupWithinChannelGroup(AudioChannelGroup* parent) {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    if (!parent) parent = top_;
    if (int(parent->entries.size()) >= kMaxEntriesPerGroup) {
        qlog("Engine: Maximum channels reached in group %p\n", static_cast<void*>(parent));
        return nullptr;
    }
    return makeGroup(parent);
}

AudioChannelGroup* AudioController::makeGroup(AudioChannelGroup* parent) {
    auto owned = std::make_unique<AudioChannelGroup>(parent);
    AudioChannelGroup* group = owned.get();
    if (!group->left || !group->right) return nullptr;
    auto* e = new AudioControllerEntry;
    e->isGroup = true;
    e->group = group;
    e->parent = parent;
    group->entry = e;
    groups_.push_back(std::move(owned));
    parent->entries.push_back(e);
    performSynchronousMessageExchangeWithBlock([parent, e] { parent->table[parent->count++] = e; });
    return group;
}

void AudioController::destroyGroupTree(AudioChannelGroup* group) {
    for (AudioControllerEntry* e : group->entries) {
        if (e->isGroup) destroyGroupTree(e->group);
        else entryOfChannel_.erase(e->channel);
        delete e;
    }
    group->entries.clear();
    group->count = 0;
    if (group != top_) {
        groups_.erase(std::remove_if(groups_.begin(), groups_.end(),
                                     [group](const std::unique_ptr<AudioChannelGroup>& g) { return g.get() == group; }),
                      groups_.end());
    }
}

void AudioController::removeChannelGroup(AudioChannelGroup* group) {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    if (!group || group == top_ || !group->entry) return;
    AudioControllerEntry* entry = group->entry;
    AudioChannelGroup* parent = group->parent;
    // One exchange takes the whole subtree out of the render path.
    performSynchronousMessageExchangeWithBlock([parent, entry] {
        for (int i = 0; i < parent->count; ++i) {
            if (parent->table[i] != entry) continue;
            for (int j = i + 1; j < parent->count; ++j) parent->table[j - 1] = parent->table[j];
            parent->table[--parent->count] = nullptr;
            break;
        }
    });
    auto& list = parent->entries;
    list.erase(std::remove(list.begin(), list.end(), entry), list.end());
    delete entry;
    destroyGroupTree(group);
}

std::vector<AudioChannelGroup*> AudioController::topLevelChannelGroups() const {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    std::vector<AudioChannelGroup*> out;
    for (AudioControllerEntry* e : top_->entries)
        if (e->isGroup) out.push_back(e->group);
    return out;
}

void AudioController::setVolume(float volume, AudioChannelGroup* group) {
    (group ? group : top_)->volume.store(volume, std::memory_order_relaxed);
}
float AudioController::volume(AudioChannelGroup* group) const {
    return (group ? group : top_)->volume.load(std::memory_order_relaxed);
}
void AudioController::setPan(float pan, AudioChannelGroup* group) {
    (group ? group : top_)->pan.store(pan, std::memory_order_relaxed);
}
void AudioController::setMuted(bool muted, AudioChannelGroup* group) {
    (group ? group : top_)->muted.store(muted, std::memory_order_relaxed);
}
void AudioController::setPlaying(bool playing, AudioChannelGroup* group) {
    (group ? group : top_)->playing.store(playing, std::memory_order_relaxed);
}

// ---------------------------------------------------------------------------
// Receivers

bool AudioController::addReceiver(bool input, std::shared_ptr<AudioReceiver> receiver) {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    if (!receiver) return false;
    auto& owners = input ? inputReceivers_ : outputReceivers_;
    if (std::find(owners.begin(), owners.end(), receiver) != owners.end()) return true;
    if (int(owners.size()) >= kMaxCallbacksPerEntry) {
        qlog("Engine: Warning: Maximum number of callbacks reached");
        return false;
    }
    owners.push_back(receiver);
    AudioReceiver** table = input ? inputTable_ : outputTable_;
    int* count = input ? &inputCount_ : &outputCount_;
    AudioReceiver* raw = receiver.get();
    performSynchronousMessageExchangeWithBlock([table, count, raw] { table[(*count)++] = raw; });
    return true;
}

void AudioController::removeReceiver(bool input, const std::shared_ptr<AudioReceiver>& receiver) {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    auto& owners = input ? inputReceivers_ : outputReceivers_;
    auto it = std::find(owners.begin(), owners.end(), receiver);
    if (it == owners.end()) return;
    AudioReceiver** table = input ? inputTable_ : outputTable_;
    int* count = input ? &inputCount_ : &outputCount_;
    AudioReceiver* raw = receiver.get();
    performSynchronousMessageExchangeWithBlock([table, count, raw] {
        for (int i = 0; i < *count; ++i) {
            if (table[i] != raw) continue;
            for (int j = i + 1; j < *count; ++j) table[j - 1] = table[j];
            table[--*count] = nullptr;
            break;
        }
    });
    owners.erase(std::find(owners.begin(), owners.end(), receiver));  // released after the exchange
}

bool AudioController::addReceiversWithBlock(std::shared_ptr<AudioReceiver> input,
                                            std::shared_ptr<AudioReceiver> output, std::function<void()> block) {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    const bool addInput =
        input && std::find(inputReceivers_.begin(), inputReceivers_.end(), input) == inputReceivers_.end();
    const bool addOutput =
        output && std::find(outputReceivers_.begin(), outputReceivers_.end(), output) == outputReceivers_.end();
    if ((addInput && int(inputReceivers_.size()) >= kMaxCallbacksPerEntry) ||
        (addOutput && int(outputReceivers_.size()) >= kMaxCallbacksPerEntry)) {
        qlog("Engine: Warning: Maximum number of callbacks reached");
        return false;
    }
    if (addInput) inputReceivers_.push_back(input);
    if (addOutput) outputReceivers_.push_back(output);
    AudioReceiver* in = addInput ? input.get() : nullptr;
    AudioReceiver* out = addOutput ? output.get() : nullptr;
    performSynchronousMessageExchangeWithBlock([this, in, out, &block] {
        if (in) inputTable_[inputCount_++] = in;
        if (out) outputTable_[outputCount_++] = out;
        if (block) block();
    });
    return true;
}

bool AudioController::addInputReceiver(std::shared_ptr<AudioReceiver> r) { return addReceiver(true, std::move(r)); }
void AudioController::removeInputReceiver(const std::shared_ptr<AudioReceiver>& r) { removeReceiver(true, r); }
bool AudioController::addOutputReceiver(std::shared_ptr<AudioReceiver> r) { return addReceiver(false, std::move(r)); }
void AudioController::removeOutputReceiver(const std::shared_ptr<AudioReceiver>& r) { removeReceiver(false, r); }

std::vector<std::shared_ptr<AudioReceiver>> AudioController::inputReceivers() const {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    return inputReceivers_;
}
std::vector<std::shared_ptr<AudioReceiver>> AudioController::outputReceivers() const {
    std::lock_guard<std::recursive_mutex> lock(configMutex_);
    return outputReceivers_;
}

// ---------------------------------------------------------------------------
// Render pass

void AudioController::renderPass(const AudioBufferList* input, AudioBufferList* output, uint32_t frames,
                                 uint64_t hostTime) {
    // The guard keeps the main side out while a pass runs (it takes the guard
    // only to apply messages itself: engine stopping, a timed-out exchange,
    // the offline driver). A real-time pass never waits: if the main side has
    // it, this pass is silent. An offline pass is not real-time and waits.
    while (renderGuard_.exchange(true, std::memory_order_acquire)) {
        if (!offline_) {
            if (output) zeroBufferList(output, description_, frames);
            return;
        }
        cpuRelax();
    }
    processPendingMessagesOnRealtimeThread();

    AudioBufferList inView, outView;
    uint32_t done = 0;
    while (done < frames) {
        const uint32_t n = std::min(frames - done, kMaxFramesPerSlice);
        if (input) sliceBufferList(input, description_, done, n, &inView);
        if (output) sliceBufferList(output, description_, done, n, &outView);
        renderSlice(input ? &inView : nullptr, output ? &outView : outputBuffer_, n,
                    hostTime + uint64_t(double(done) / description_.mSampleRate * AudioHostTicksPerSecond()));
        done += n;
    }
    renderGuard_.store(false, std::memory_order_release);
}

void AudioController::renderSlice(const AudioBufferList* input, AudioBufferList* output, uint32_t frames,
                                  uint64_t hostTime) {
    const AudioTimeStamp time{sampleTime_, hostTime};

    if (input && inputEnabled_) {
        for (int i = 0; i < inputCount_; ++i)
            inputTable_[i]->receiverCallback(this, inputSource(), time, frames, input);
    }

    float* left = top_->left;
    float* right = top_->right;
    std::memset(left, 0, frames * sizeof(float));
    std::memset(right, 0, frames * sizeof(float));
    renderGroup(top_, frames, hostTime, left, right);

    // The top level's own volume, pan and mute.
    float gl, gr;
    panGains(top_->volume.load(std::memory_order_relaxed), top_->pan.load(std::memory_order_relaxed), &gl, &gr);
    if (top_->muted.load(std::memory_order_relaxed) || !top_->playing.load(std::memory_order_relaxed)) gl = gr = 0.0f;
    if (gl != 1.0f || gr != 1.0f) {
        for (uint32_t k = 0; k < frames; ++k) {
            left[k] *= gl;
            right[k] *= gr;
        }
    }
    writeOut(formatOf(description_), left, right, output, frames);
    for (uint32_t i = 0; i < output->mNumberBuffers && i < 2; ++i)
        output->mBuffers[i].mDataByteSize = frames * description_.mBytesPerFrame;

    for (int i = 0; i < outputCount_; ++i)
        outputTable_[i]->receiverCallback(this, outputSource(), time, frames, output);
    sampleTime_ += frames;
}

void AudioController::renderGroup(AudioChannelGroup* group, uint32_t frames, uint64_t hostTime, float* left,
                                  float* right) {
    const Format format = formatOf(description_);
    for (int i = 0; i < group->count; ++i) {
        AudioControllerEntry* e = group->table[i];
        float gl, gr;
        if (!e->isGroup) {
            AudioChannel* channel = e->channel;
            if (!channel->channelIsPlaying()) continue;  // silent bus; not rendered
            zeroBufferList(channelBuffer_, description_, frames);
            e->timeStamp.mHostTime = hostTime;
            channel->render(this, e->timeStamp, frames, channelBuffer_);
            e->timeStamp.mSampleTime += frames;
            // Muted channels still render, so that a sequencer keeps its time.
            if (channel->channelIsMuted()) continue;
            panGains(channel->volume(), channel->pan(), &gl, &gr);
            accumulate(format, channelBuffer_, frames, gl, gr, left, right);
        } else {
            AudioChannelGroup* sub = e->group;
            if (!sub->playing.load(std::memory_order_relaxed)) continue;
            std::memset(sub->left, 0, frames * sizeof(float));
            std::memset(sub->right, 0, frames * sizeof(float));
            renderGroup(sub, frames, hostTime, sub->left, sub->right);
            e->timeStamp.mSampleTime += frames;
            if (sub->muted.load(std::memory_order_relaxed)) continue;
            panGains(sub->volume.load(std::memory_order_relaxed), sub->pan.load(std::memory_order_relaxed), &gl, &gr);
            mixFloat(sub->left, sub->right, frames, gl, gr, left, right);
        }
    }
}

void AudioController::setOfflinePassFrames(uint32_t frames) {
    offlinePassFrames_ = std::clamp<uint32_t>(frames, 1, kMaxFramesPerSlice);
}

void AudioController::renderOffline(uint32_t frames, AudioBufferList* out) { renderOffline(frames, out, nullptr); }

void AudioController::renderOffline(uint32_t frames, AudioBufferList* out, const AudioBufferList* in) {
    const uint32_t pass = offlinePassFrames_;
    AudioBufferList outView, inView;
    for (uint32_t done = 0; done < frames; done += pass) {
        const uint32_t n = std::min(pass, frames - done);
        const AudioBufferList* input = nullptr;
        if (inputEnabled_) {
            if (in) {
                sliceBufferList(in, description_, done, n, &inView);
                input = &inView;
            } else {
                zeroBufferList(inputBuffer_, description_, n);
                input = inputBuffer_;
            }
        }
        AudioBufferList* output = outputBuffer_;
        if (out) {
            sliceBufferList(out, description_, done, n, &outView);
            output = &outView;
        }
        const uint64_t hostTime = uint64_t(sampleTime_ / description_.mSampleRate * AudioHostTicksPerSecond());
        renderPass(input, output, n, hostTime);
    }
}

// ---------------------------------------------------------------------------
// Message exchange

void AudioController::sendRequest(std::function<void()> block, std::function<void()> response, bool fromThisThread) {
    Message m{};
    m.block = block ? new std::function<void()>(std::move(block)) : nullptr;
    m.responseBlock = response ? new std::function<void()>(std::move(response)) : nullptr;
    m.responseExpected = m.responseBlock != nullptr;
    m.hasSourceThread = fromThisThread;
    m.sourceThread = pthread_self();
    if (!m.block && !m.responseBlock) return;

    for (int attempt = 0;; ++attempt) {
        {
            std::lock_guard<std::mutex> lock(messageMutex_);
            int32_t avail = 0;
            void* head = requests_.head(&avail);
            if (avail >= kMessageSize) {
                if (m.responseExpected) {
                    pendingResponses_.fetch_add(1);
                    pollWake_.notify_all();  // poll faster while answers are due
                }
                std::memcpy(head, &m, sizeof m);
                requests_.produce(kMessageSize);
                return;
            }
        }
        // The request ring is full: let the render thread drain it, or drain
        // it here when nothing renders.
        if (!rendersConcurrently() || attempt > 1000) {
            assert(attempt <= 1000 && "availableBytes >= sizeof(message_t)");
            runPendingRequestsHere();
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
}

void AudioController::performAsynchronousMessageExchangeWithBlock(std::function<void()> block,
                                                                  std::function<void()> response) {
    sendRequest(std::move(block), std::move(response), false);
    if (rendersConcurrently()) return;
    // Nothing reads the ring on its own: the engine is stopped, or the offline
    // driver renders only inside renderOffline. Run the request now; the render
    // guard keeps it apart from an offline render on another thread.
    if (offline_ || mainThread_->isCurrent()) {
        runPendingRequestsHere();
        if (mainThread_->isCurrent()) pollForMessageResponses();
        else requestPoll();
        return;
    }
    std::weak_ptr<int> alive = alive_;
    mainThread_->post([this, alive] {
        if (alive.expired()) return;
        runPendingRequestsHere();
        pollForMessageResponses();
    });
}

void AudioController::performSynchronousMessageExchangeWithBlock(std::function<void()> block) {
    auto done = std::make_shared<std::atomic<bool>>(false);
    sendRequest(std::move(block), [done] { done->store(true); }, true);

    if (rendersConcurrently()) {
        const uint64_t deadline = AudioCurrentHostTime() + uint64_t(1.0 * AudioHostTicksPerSecond());
        double interval = preferredBufferDuration();
        if (interval <= 0) interval = 0.01;
        while (!done->load() && running() && AudioCurrentHostTime() < deadline) {
            pollForMessageResponses();
            if (done->load()) break;
            std::this_thread::sleep_for(std::chrono::duration<double>(interval));
        }
        if (!done->load() && running()) qlog("Engine: Timed out while performing message exchange");
    }
    if (!done->load()) {
        // Nobody rendered it (stopped, offline, or stalled): run it here.
        runPendingRequestsHere();
        pollForMessageResponses();
    }
}

void AudioController::runPendingRequestsHere() {
    while (renderGuard_.exchange(true, std::memory_order_acquire)) std::this_thread::yield();
    processPendingMessagesOnRealtimeThread();
    renderGuard_.store(false, std::memory_order_release);
}

void AudioController::processPendingMessagesOnRealtimeThread() {
    int32_t avail = 0;
    char* p = static_cast<char*>(requests_.tail(&avail));
    while (p && avail >= kMessageSize) {
        Message m;
        std::memcpy(&m, p, sizeof m);
        assert(m.userInfoLength == 0 && "buffer->userInfoLength == 0");
        requests_.consume(kMessageSize);
        p += kMessageSize;
        avail -= kMessageSize;
        if (m.block) (*m.block)();
        // Back to the main side: for the response, and to free the blocks there.
        if (!responses_.produceBytes(&m, kMessageSize)) {
            assert(false && "availableBytes >= sizeof(message_t)");
            droppedMessages_.fetch_add(1, std::memory_order_relaxed);
        }
    }
}

bool AudioController::sendMessageToMainThread(AudioControllerMainThreadMessageHandler handler, const void* userInfo,
                                              int32_t userInfoLength) {
    const bool inlineData = userInfo && userInfoLength > 0;
    if (userInfoLength < 0) userInfoLength = 0;
    const int32_t size = kMessageSize + (inlineData ? roundUp(userInfoLength) : 0);
    int32_t avail = 0;
    char* head = static_cast<char*>(responses_.head(&avail));
    // Keep room for the answers to requests: those must never be lost.
    if (!head || avail < size + kRequestRingBytes) {
        droppedMessages_.fetch_add(1, std::memory_order_relaxed);
        return false;
    }
    Message m{};
    m.handler = handler;
    m.userInfoByReference = inlineData ? nullptr : userInfo;
    m.userInfoLength = inlineData ? userInfoLength : 0;
    std::memcpy(head, &m, sizeof m);
    if (inlineData) std::memcpy(head + kMessageSize, userInfo, size_t(userInfoLength));
    responses_.produce(size);
    return true;
}

void AudioControllerSendAsynchronousMessageToMainThread(AudioController* controller,
                                                        AudioControllerMainThreadMessageHandler handler,
                                                        const void* userInfo, int32_t userInfoLength) {
    if (controller) controller->sendMessageToMainThread(handler, userInfo, userInfoLength);
}

void AudioController::pollForMessageResponses() {
    const bool onMain = mainThread_->isCurrent();
    const pthread_t self = pthread_self();
    char small[256];
    std::vector<char> large;
    for (;;) {
        Message m{};
        const char* data = nullptr;
        bool found = false;
        {
            std::lock_guard<std::mutex> lock(messageMutex_);
            int32_t avail = 0;
            char* p = static_cast<char*>(responses_.tail(&avail));
            int32_t offset = 0, consumable = 0;
            bool prefixServiced = true;
            while (p && offset < avail) {
                auto* r = reinterpret_cast<Message*>(p + offset);
                const int32_t size = recordSize(r);
                if (!r->replyServiced && !found) {
                    const bool mine = r->hasSourceThread ? pthread_equal(r->sourceThread, self) != 0 : onMain;
                    if (mine) {
                        std::memcpy(&m, r, sizeof m);
                        if (!r->userInfoByReference && r->userInfoLength > 0) {
                            char* dst = small;
                            if (size_t(r->userInfoLength) > sizeof small) {
                                large.resize(size_t(r->userInfoLength));
                                dst = large.data();
                            }
                            std::memcpy(dst, p + offset + kMessageSize, size_t(r->userInfoLength));
                            data = dst;
                        } else {
                            data = static_cast<const char*>(r->userInfoByReference);
                        }
                        r->replyServiced = true;
                        found = true;
                    }
                }
                if (prefixServiced && r->replyServiced) consumable += size;
                else prefixServiced = false;
                offset += size;
                if (found && !prefixServiced) break;
            }
            if (consumable > 0) responses_.consume(consumable);
        }
        if (!found) return;
        if (m.responseBlock) (*m.responseBlock)();
        if (m.handler) m.handler(this, const_cast<char*>(data), m.userInfoLength);
        delete m.block;
        delete m.responseBlock;
        if (m.responseExpected) pendingResponses_.fetch_sub(1);
    }
}

void AudioController::requestPoll() {
    if (pollPosted_.exchange(true)) return;
    std::weak_ptr<int> alive = alive_;
    mainThread_->post([this, alive] {
        if (alive.expired()) return;
        pollPosted_.store(false);
        pollForMessageResponses();
    });
}

void AudioController::pollThreadMain() {
    using clock = std::chrono::steady_clock;
    auto nextHousekeeping = clock::now() + std::chrono::seconds(1);
    bool recentTraffic = false;
    std::unique_lock<std::mutex> lock(pollMutex_);
    while (!pollCancelled_) {
        lock.unlock();
        const bool traffic = responses_.fillCount() > 0;
        if (traffic) requestPoll();
        if (clock::now() >= nextHousekeeping) {
            nextHousekeeping = clock::now() + std::chrono::seconds(1);
            std::weak_ptr<int> alive = alive_;
            mainThread_->post([this, alive] {
                if (!alive.expired()) housekeeping();
            });
        }
        // Idle: 0.1 s. While answers are due or messages flow: one buffer.
        double interval = 0.1;
        if (running() && (pendingResponses_.load() > 0 || traffic || recentTraffic)) {
            double buffer = offline_ ? 0.0 : 256.0 / 44100.0;
            interval = buffer > 0 ? buffer : 0.01;
        }
        recentTraffic = traffic;
        lock.lock();
        if (pollCancelled_) break;
        pollWake_.wait_for(lock, std::chrono::duration<double>(interval));
    }
}
