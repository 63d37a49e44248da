// The controller: its life cycle, the channel and group tree, and the
// receivers. The mixer, the message exchange and the poll thread live in
// their own files (AudioMixer.cpp, MessageExchange.cpp, MessagePollThread.cpp).
#include "engine/AudioController.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "engine/AudioControllerRecords.h"
#include "library/util/Log.h"

using namespace audio_controller_detail;
using Message = AudioController::Message;

namespace {

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
    std::vector<AudioControllerEntry*> entries;
    std::vector<std::unique_ptr<AudioChannelGroup>> groups;
    detachGroupTree(top_, entries, groups);
    for (AudioControllerEntry* e : entries) delete e;
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
    driverKind_ = kind;
    devices_ = options_.devices;
    makeDriver(kind);
    allocateRenderBuffers();
    logCategory();
    qlog("Engine: Engine setup");
}

void AudioController::makeDriver(AudioDriverKind kind) {
    switch (kind) {
        case AudioDriverKind::Offline: driver_ = makeOfflineAudioDriver(); break;
        case AudioDriverKind::Null: driver_ = makeNullAudioDriver(); break;
        default: driver_ = makePortAudioDriver(); break;
    }
    offline_ = !driver_->rendersOnItsOwnThread();
    driverName_ = driver_->name();
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
    config.framesPerBuffer = std::clamp(devices_.framesPerBuffer, AudioDeviceChoice::kMinFrames,
                                        AudioDeviceChoice::kMaxFrames);
    config.outputDevice = devices_.outputDevice;
    config.inputDevice = devices_.inputDevice;
    AudioError driverError;
    bool started = driver_->start(config, this, &driverError);
    if (!started && (!config.outputDevice.empty() || !config.inputDevice.empty())) {
        // The chosen device is there but would not open: the default one may.
        qlog("Engine: The chosen audio device would not open (%s); trying the default device",
             driverError.localizedDescription.c_str());
        config.outputDevice.clear();
        config.inputDevice.clear();
        started = driver_->start(config, this, &driverError);
    }
    if (!started) {
        const bool mayFallBack = options_.driver == AudioDriverKind::Automatic && std::string(driver_->name()) != "Null";
        if (!mayFallBack) {
            if (error) *error = driverError;
            return false;
        }
        qlog("Engine: No usable audio device (%s); using the null device", driverError.localizedDescription.c_str());
        driver_ = makeNullAudioDriver();
        offline_ = false;
        driverName_ = driver_->name();
        if (!driver_->start(config, this, &driverError)) {
            if (error) *error = driverError;
            return false;
        }
    }
    if (inputEnabled_ && !driver_->inputRunning() && driver_->rendersOnItsOwnThread())
        qlog("Engine: No input available. Using Playback (output only) category instead.");
    const double duration = driver_->bufferDuration();
    bufferDuration_.store(duration);
    inputRunning_.store(driver_->inputRunning());
    qlog("Engine: Hardware sample rate is %f", description_.mSampleRate);
    qlog("Engine: Buffer duration %0.2g, %d frames (requested %0.2gs, %d frames)", duration,
         int(std::lround(duration * description_.mSampleRate)), config.framesPerBuffer / description_.mSampleRate,
         int(config.framesPerBuffer));
    return true;
}

void AudioController::stopDriver() {
    if (driver_) driver_->stop();
}

bool AudioController::start(AudioError* error) {
    std::lock_guard<std::recursive_mutex> lock(lifecycleMutex_);
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
    std::lock_guard<std::recursive_mutex> lock(lifecycleMutex_);
    if (!running()) return;
    qlog("Engine: Stopping Engine");
    stopDriver();
    running_.store(false, std::memory_order_release);
    inputRunning_.store(false);
    // Nobody reads the request ring now: apply what is queued.
    runPendingRequestsHere();
    if (mainThread_->isCurrent()) pollForMessageResponses();
}

bool AudioController::updateWithAudioDescription(const AudioStreamDescription& description, bool inputEnabled,
                                                 bool useVoiceProcessing, bool outputEnabled) {
    // Only the life-cycle lock is held across the wait and the rebuild: the
    // main thread keeps adding and removing channels meanwhile (the requests
    // run at once while nothing renders) and never waits for this.
    std::lock_guard<std::recursive_mutex> lock(lifecycleMutex_);
    const bool wasRunning = running();
    if (wasRunning) stop();
    stopDriver();
    runPendingRequestsHere();
    if (options_.rebuildDelay.count() > 0) std::this_thread::sleep_for(options_.rebuildDelay);

    const bool formatChanged = !(description == audioDescription());
    if (formatChanged) {
        while (renderGuard_.exchange(true, std::memory_order_acquire)) cpuRelax();
        {
            std::lock_guard<std::mutex> descriptionLock(descriptionMutex_);
            description_ = description;
        }
        renderGuard_.store(false, std::memory_order_release);
    }
    inputEnabled_ = inputEnabled;
    useVoiceProcessing_ = useVoiceProcessing;
    outputEnabled_ = outputEnabled;
    if (description.mFormatID != kAudioFormatLinearPCM || description.mBytesPerFrame == 0) {
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

bool AudioController::switchDevices(const AudioDeviceChoice& devices) {
    std::lock_guard<std::recursive_mutex> lock(lifecycleMutex_);
    qlog("Engine: Switching to output \"%s\", input \"%s\", %u frames",
         devices.outputDevice.empty() ? "default" : devices.outputDevice.c_str(),
         devices.inputDevice.empty() ? "default" : devices.inputDevice.c_str(), devices.framesPerBuffer);
    devices_ = devices;
    const bool wasRunning = running();
    if (wasRunning) stop();
    // An engine that fell back to the null device tries the sound card again:
    // the newly chosen device may be the one that is there.
    if (driverKind_ == AudioDriverKind::PortAudio && std::string(driver_->name()) != "PortAudio")
        makeDriver(AudioDriverKind::PortAudio);
    if (!wasRunning) return true;
    AudioError error;
    if (!start(&error)) {
        qlog("Enigne: error restarting controller");
        return false;
    }
    return true;
}

AudioDeviceChoice AudioController::devices() const {
    std::lock_guard<std::recursive_mutex> lock(lifecycleMutex_);
    return devices_;
}

AudioStreamDescription AudioController::audioDescription() const {
    std::lock_guard<std::mutex> lock(descriptionMutex_);
    return description_;
}

bool AudioController::audioInputAvailable() const {
    if (!inputEnabled()) return false;
    if (offline_) return true;
    return running() && inputRunning_.load();
}

double AudioController::preferredBufferDuration() const { return bufferDuration_.load(); }

const char* AudioController::driverName() const { return driverName_.load(); }

bool AudioController::rendersConcurrently() const { return running() && !offline_; }

void AudioController::housekeeping() {
    const int dropped = droppedMessages_.load();
    if (dropped != droppedReported_) {
        qlog("Engine: Dropped %d messages to the main thread (ring full)", dropped - droppedReported_);
        droppedReported_ = dropped;
    }
    // Never wait for a rebuild on another thread: try again next time.
    std::unique_lock<std::recursive_mutex> lock(lifecycleMutex_, std::try_to_lock);
    if (!lock.owns_lock()) return;
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
//
// Every change below updates the main-side tables first, then the render
// tables in one synchronous exchange, then frees what was taken out. While
// the exchange waits, handlers of render-to-main reports run on this thread
// and may call in here again: they see the tables as already changed.

void AudioController::addChannels(const std::vector<std::shared_ptr<AudioChannel>>& channels) {
    addChannels(channels, nullptr);
}

void AudioController::addChannels(const std::vector<std::shared_ptr<AudioChannel>>& channels,
                                  AudioChannelGroup* group) {
    std::lock_guard<std::recursive_mutex> lock(treeMutex_);
    if (!group) group = top_;
    if (!isLiveGroup(group)) return;  // removed meanwhile

    // A channel that is already somewhere moves: take it out first.
    std::vector<std::shared_ptr<AudioChannel>> present;
    for (const auto& c : channels)
        if (c && entryOfChannel_.count(c.get())) present.push_back(c);
    if (!present.empty()) removeChannels(present);
    if (!isLiveGroup(group)) return;  // a handler run by that removal removed the group

    std::vector<AudioControllerEntry*> added;
    for (const auto& c : channels) {
        if (!c || entryOfChannel_.count(c.get())) continue;  // null, listed twice, or added by a handler
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
    performSynchronousMessageExchangeWithBlock([group, added] {
        for (AudioControllerEntry* e : added) group->table[group->count++] = e;
    });
}

namespace {
// Render side: takes `e` out of its parent's table; the entries after it move down.
void takeOutOfTable(AudioControllerEntry* e) QUILLO_NONBLOCKING {
    AudioChannelGroup* g = e->parent;
    for (int i = 0; i < g->count; ++i) {
        if (g->table[i] != e) continue;
        for (int j = i + 1; j < g->count; ++j) g->table[j - 1] = g->table[j];
        g->table[--g->count] = nullptr;
        return;
    }
}
}  // namespace

void AudioController::removeEntries(std::vector<AudioControllerEntry*> entries) {
    // Out of the main-side tables first, so that a nested call finds nothing ...
    for (AudioControllerEntry* e : entries) {
        auto& list = e->parent->entries;
        list.erase(std::remove(list.begin(), list.end(), e), list.end());
        if (e->channel) entryOfChannel_.erase(e->channel);
    }
    // ... then out of the render tables ...
    performSynchronousMessageExchangeWithBlock([entries] {
        for (AudioControllerEntry* e : entries) takeOutOfTable(e);
    });
    // ... and only then released.
    for (AudioControllerEntry* e : entries) delete e;
}

void AudioController::removeChannels(const std::vector<std::shared_ptr<AudioChannel>>& channels) {
    std::lock_guard<std::recursive_mutex> lock(treeMutex_);
    std::vector<AudioControllerEntry*> entries;
    for (const auto& c : channels) {
        if (!c) continue;
        auto it = entryOfChannel_.find(c.get());
        if (it == entryOfChannel_.end()) continue;
        if (std::find(entries.begin(), entries.end(), it->second) == entries.end()) entries.push_back(it->second);
    }
    if (!entries.empty()) removeEntries(std::move(entries));
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
    std::lock_guard<std::recursive_mutex> lock(treeMutex_);
    std::vector<std::shared_ptr<AudioChannel>> out;
    if (!group) group = top_;
    if (isLiveGroup(group)) collectChannels(group, out);
    return out;
}

bool AudioController::isLiveGroup(AudioChannelGroup* group) const {
    return std::any_of(groups_.begin(), groups_.end(),
                       [group](const std::unique_ptr<AudioChannelGroup>& g) { return g.get() == group; });
}

AudioChannelGroup* AudioController::createChannelGroup() { return createChannelGroupWithinChannelGroup(top_); }

AudioChannelGroup* AudioController::createChannelGroupWithinChannelGroup(AudioChannelGroup* parent) {
    std::lock_guard<std::recursive_mutex> lock(treeMutex_);
    if (!parent) parent = top_;
    if (!isLiveGroup(parent)) return nullptr;
    if (parent == top_ && !idleGroups_.empty()) {
        // A released group, as good as new.
        AudioChannelGroup* group = idleGroups_.back();
        idleGroups_.pop_back();
        group->volume.store(1.0f);
        group->pan.store(0.0f);
        group->muted.store(false);
        group->playing.store(true);
        return group;
    }
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

void AudioController::releaseChannelGroup(AudioChannelGroup* group) {
    std::lock_guard<std::recursive_mutex> lock(treeMutex_);
    if (!group || group == top_ || !isLiveGroup(group) || group->parent != top_) return;
    if (std::find(idleGroups_.begin(), idleGroups_.end(), group) != idleGroups_.end()) return;
    // Whatever is still inside leaves now; the group itself stays, silent.
    std::vector<std::shared_ptr<AudioChannel>> inside;
    collectChannels(group, inside);
    if (!inside.empty()) removeChannels(inside);
    if (isLiveGroup(group)) idleGroups_.push_back(group);
}

void AudioController::detachGroupTree(AudioChannelGroup* group, std::vector<AudioControllerEntry*>& entries,
                                      std::vector<std::unique_ptr<AudioChannelGroup>>& groups) {
    for (AudioControllerEntry* e : group->entries) {
        if (e->isGroup) detachGroupTree(e->group, entries, groups);
        else entryOfChannel_.erase(e->channel);
        entries.push_back(e);
    }
    group->entries.clear();
    idleGroups_.erase(std::remove(idleGroups_.begin(), idleGroups_.end(), group), idleGroups_.end());
    if (group == top_) return;
    auto it = std::find_if(groups_.begin(), groups_.end(),
                           [group](const std::unique_ptr<AudioChannelGroup>& g) { return g.get() == group; });
    if (it == groups_.end()) return;
    groups.push_back(std::move(*it));
    groups_.erase(it);
}

void AudioController::removeChannelGroup(AudioChannelGroup* group) {
    std::lock_guard<std::recursive_mutex> lock(treeMutex_);
    if (!group || group == top_ || !isLiveGroup(group) || !group->entry) return;  // gone already: nothing to do
    AudioControllerEntry* entry = group->entry;
    auto& list = group->parent->entries;
    list.erase(std::remove(list.begin(), list.end(), entry), list.end());
    std::vector<AudioControllerEntry*> entries;
    std::vector<std::unique_ptr<AudioChannelGroup>> groups;
    detachGroupTree(group, entries, groups);
    // One exchange takes the whole subtree out of the render path.
    performSynchronousMessageExchangeWithBlock([entry] { takeOutOfTable(entry); });
    delete entry;
    for (AudioControllerEntry* e : entries) delete e;
}

std::vector<AudioChannelGroup*> AudioController::topLevelChannelGroups() const {
    std::lock_guard<std::recursive_mutex> lock(treeMutex_);
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
    std::lock_guard<std::recursive_mutex> lock(treeMutex_);
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
    std::lock_guard<std::recursive_mutex> lock(treeMutex_);
    auto& owners = input ? inputReceivers_ : outputReceivers_;
    auto it = std::find(owners.begin(), owners.end(), receiver);
    if (it == owners.end()) return;
    // Out of the owners first (a nested call finds nothing); held here until
    // the render thread has let go of it.
    std::shared_ptr<AudioReceiver> held = std::move(*it);
    owners.erase(it);
    AudioReceiver** table = input ? inputTable_ : outputTable_;
    int* count = input ? &inputCount_ : &outputCount_;
    AudioReceiver* raw = held.get();
    performSynchronousMessageExchangeWithBlock([table, count, raw] {
        for (int i = 0; i < *count; ++i) {
            if (table[i] != raw) continue;
            for (int j = i + 1; j < *count; ++j) table[j - 1] = table[j];
            table[--*count] = nullptr;
            break;
        }
    });
}

bool AudioController::addReceiversWithBlock(std::shared_ptr<AudioReceiver> input,
                                            std::shared_ptr<AudioReceiver> output, std::function<void()> block) {
    std::lock_guard<std::recursive_mutex> lock(treeMutex_);
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
    std::lock_guard<std::recursive_mutex> lock(treeMutex_);
    return inputReceivers_;
}
std::vector<std::shared_ptr<AudioReceiver>> AudioController::outputReceivers() const {
    std::lock_guard<std::recursive_mutex> lock(treeMutex_);
    return outputReceivers_;
}
