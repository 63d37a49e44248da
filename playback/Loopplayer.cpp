#include "playback/Loopplayer.h"

#include <algorithm>
#include <cstring>

#include "engine/AudioChannel.h"
#include "engine/AudioController.h"
#include "engine/AudioFileLoaderOperation.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "library/patterns/Tacter.h"
#include "library/util/Dates.h"
#include "library/util/Log.h"
#include "playback/PlaybackContext.h"

namespace {

// Runs `change` where the render thread cannot be inside a render block:
// on the render thread between passes, or at once when nothing renders.
void onRenderThread(AudioController* controller, std::function<void()> change) {
    if (controller) controller->performSynchronousMessageExchangeWithBlock(std::move(change));
    else change();
}

struct EndOfData {
    uint32_t byteSize;
    uint32_t frames;
};

void logEndOfData(AudioController*, void* userInfo, int32_t) {
    auto* e = static_cast<EndOfData*>(userInfo);
    qlog("Reached end of data %i where frames is %i", static_cast<int>(e->byteSize), static_cast<int>(e->frames));
}

inline bool stepIsSet(uint16_t mask, uint32_t step) { return (mask >> (15 - step)) & 1; }

}  // namespace

Loopplayer::Loopplayer(PlaybackContext* context) : context_(context ? context : &PlaybackContext::shared()) {
    controller_ = context_->audioController;
    delegate_.setController(controller_);
}

Loopplayer::~Loopplayer() {
    // A player dropped while playing still leaves the engine before its
    // render blocks (which point at this object) could run again.
    if (!channels_.empty() && controller_) controller_->removeChannels(channels_);
}

std::shared_ptr<Loopplayer> Loopplayer::create(Loop* loop, LoopplayerDelegate* delegate, uint64_t repeatTimes,
                                               float bpm, PlaybackContext* context) {
    std::shared_ptr<Loopplayer> player(new Loopplayer(context));
    player->repeatTimes_ = repeatTimes;
    player->startAfterSetLoop(loop, delegate, bpm);
    return player;
}

std::shared_ptr<Loopplayer> Loopplayer::create(Loop* loop, LoopplayerDelegate* delegate, PlaybackContext* context) {
    return create(loop, delegate, kForever, static_cast<float>(loop->bpm()), context);
}

void Loopplayer::startAfterSetLoop(Loop* loop, LoopplayerDelegate* delegate, float bpm) {
    loop_ = loop;
    setDelegate(delegate);
    bpm_ = bpm;
    paused_ = false;
    ended_ = false;
    initStaticVars();
    addChannelsAndStart();
}

void Loopplayer::initStaticVars() {
    for (Slot& s : slots_) {
        s.totalFrames = 0;
        s.nextBeatFrame = 0;
        s.needToStartPlaying = false;
        s.playingNow = false;
        s.positionInFile = 0;
        s.needToEndAnimationEarlier = false;
        s.lengthInFrames = 0;
        s.tact = 16;
    }
}

void Loopplayer::addChannelsAndStart() {
    channels_.clear();
    const std::vector<Instrument*>& instruments = loop_->instruments();
    for (int slot = 0; slot < kSlots; ++slot) {
        uint16_t mask = Tacter::notacts();
        float gain = 1.0f;
        std::string url;
        if (static_cast<size_t>(slot) < instruments.size()) {
            Instrument* inst = instruments[static_cast<size_t>(slot)];
            mask = inst->tactsMask();
            gain = static_cast<float>(inst->volume() / 100.0);
            url = Filer::urlForSound(inst->sound());
        } else {
            // Spare slots wait on the built-in sound with an empty mask, so an
            // instrument added while playing never needs a new channel.
            url = Filer::urlForSound(nullptr);
        }
        channelTacts_[static_cast<size_t>(slot)] = mask;
        loadFile(slot, url);
        if (files_[static_cast<size_t>(slot)]) {
            auto channel = blockChannelForOperation(slot);
            channel->setVolume(gain);
            blockChannels_[static_cast<size_t>(slot)] = channel;
            channels_.push_back(channel);
        }
    }
    addChannelsToControlla();
}

void Loopplayer::loadFile(int slot, const std::string& url) {
    auto& cache = context_->loadedFiles;
    auto it = cache.find(url);
    if (it != cache.end()) {
        files_[static_cast<size_t>(slot)] = it->second;
        return;
    }
    auto file = Filer::operationWithFileURL(url);
    files_[static_cast<size_t>(slot)] = file;
    // A failed load is not cached, so a sound whose file appears later loads then.
    if (file) cache[url] = file;
}

void Loopplayer::addChannelsToControlla() {
    qlog("loop startDate %f", nowSinceReferenceDate());
    if (controller_) controller_->addChannels(channels_);
    context_->loopplayers.push_back(shared_from_this());
}

void Loopplayer::takeSoundOfSlot(int slot) {
    Slot& s = slots_[static_cast<size_t>(slot)];
    const auto& file = files_[static_cast<size_t>(slot)];
    s.audioSampleBufferList = file ? file->bufferList() : nullptr;
    s.lengthInFrames = file && s.audioSampleBufferList ? file->lengthInFrames() : 0;
}

std::shared_ptr<BlockChannel> Loopplayer::blockChannelForOperation(int slot) {
    takeSoundOfSlot(slot);
    return BlockChannel::channelWithBlock(
        [this, slot](const AudioTimeStamp&, uint32_t frames, AudioBufferList* audio) {
            renderLoopSlot(slot, frames, audio);
        });
}

std::shared_ptr<AudioChannel> Loopplayer::channelAtIndex(int slot) const {
    if (slot < 0 || slot >= kSlots) return nullptr;
    return blockChannels_[static_cast<size_t>(slot)];
}

void Loopplayer::setTactsAtIndex(int slot, uint16_t mask) {
    if (slot >= 0 && slot < kSlots) channelTacts_[static_cast<size_t>(slot)].store(mask, std::memory_order_relaxed);
}

void Loopplayer::setVolume(float gain, int slot) {
    if (auto channel = channelAtIndex(slot)) channel->setVolume(gain);
}

void Loopplayer::setNewBpm(float bpm) { bpm_.store(bpm, std::memory_order_relaxed); }

void Loopplayer::setPausd(bool paused) { paused_.store(paused, std::memory_order_relaxed); }

void Loopplayer::changeFileAtIndex(int slot, std::shared_ptr<AudioFileLoaderOperation> file) {
    if (slot < 0 || slot >= kSlots) return;
    const AudioBufferList* list = file ? file->bufferList() : nullptr;
    uint32_t length = list ? file->lengthInFrames() : 0;
    files_[static_cast<size_t>(slot)] = std::move(file);
    onRenderThread(controller_, [this, slot, list, length] {
        Slot& s = slots_[static_cast<size_t>(slot)];
        s.needToStartPlaying = false;
        s.playingNow = false;
        s.positionInFile = 0;
        s.audioSampleBufferList = list;
        s.lengthInFrames = length;
    });
}

void Loopplayer::changeItemsAtIndex(int destination, int source) {
    if (destination < 0 || destination >= kSlots || source < 0 || source >= kSlots) return;
    files_[static_cast<size_t>(destination)] = files_[static_cast<size_t>(source)];
    onRenderThread(controller_, [this, destination, source] {
        slots_[static_cast<size_t>(destination)] = slots_[static_cast<size_t>(source)];
        channelTacts_[static_cast<size_t>(destination)].store(
            channelTacts_[static_cast<size_t>(source)].load(std::memory_order_relaxed), std::memory_order_relaxed);
    });
}

void Loopplayer::stopLoopplayer() {
    if (channels_.empty()) {
        releaseEngineResources();  // a player whose sounds all failed to load still holds its group
        return;
    }
    // Emptied first: a report handled while the removal waits may stop this
    // player again, and then finds it stopped.
    const std::vector<std::shared_ptr<AudioChannel>> channels = std::move(channels_);
    channels_.clear();
    if (controller_) controller_->removeChannels(channels);
    releaseEngineResources();
    for (auto& f : files_) f.reset();
    for (auto& c : blockChannels_) c.reset();
    freeLoadedFiles();
}

void Loopplayer::reallyFreeLoadedFiles() {
    // The cache empties. A sound that another player still plays (stopping a
    // track while a loop preview plays, say) is set aside rather than freed
    // under the render thread, and freed once nobody holds it.
    for (auto& entry : context_->loadedFiles) context_->retiredFiles.push_back(std::move(entry.second));
    context_->loadedFiles.clear();
    context_->freeRetiredFiles();
}

void Loopplayer::stopLoop(const std::shared_ptr<Loopplayer>& caller) {
    const std::shared_ptr<Loopplayer> player = caller;  // alive even if a nested stop drops the caller's copy
    if (!player) return;
    player->stopLoopplayer();
    auto& list = player->context_->loopplayers;
    list.erase(std::remove(list.begin(), list.end(), player), list.end());
}

void Loopplayer::notifyTact(uint16_t step) {
    if (LoopplayerDelegate* d = delegate()) d->animateTact(step);
}

void Loopplayer::sendEndOfDataLog(uint32_t byteSize, uint32_t frames) {
    EndOfData e{byteSize, frames};
    if (controller_) AudioControllerSendAsynchronousMessageToMainThread(controller_, logEndOfData, &e, sizeof e);
}

// One slot's step sequencer and sample player. It behaves exactly as if it
// walked frame by frame (step boundaries at multiples of the frames per step,
// notes restarting the sound at their first frame); frames between two events
// are handled in one go, so a note is one bulk copy per render call.
void Loopplayer::renderLoopSlot(int i, uint32_t frames, AudioBufferList* audio) {
    if (paused_.load(std::memory_order_relaxed)) return;
    Slot& s = slots_[static_cast<size_t>(i)];
    const uint64_t F = framesPerStep(bpm_.load(std::memory_order_relaxed));
    const uint64_t repeats = repeatTimes_.load(std::memory_order_relaxed);
    const uint64_t E = repeats == kForever ? kForever : repeats * F * kStepsPerBar;
    auto* outL = static_cast<int16_t*>(audio->mBuffers[0].mData);
    auto* outR = static_cast<int16_t*>(audio->mBuffers[1].mData);

    auto endRepeats = [&] {
        if (i != 0 || ended_.load(std::memory_order_relaxed)) return;
        ended_.store(true, std::memory_order_relaxed);
        if (LoopplayerDelegate* d = delegate()) d->loopEndRepeating();
    };
    if (s.totalFrames >= E) {
        if (frames > 0) outL[0] = outR[0] = 0;
        endRepeats();
        return;
    }

    const uint16_t mask = channelTacts_[static_cast<size_t>(i)].load(std::memory_order_relaxed);
    const uint64_t half = F >> 1;
    uint32_t c = 0;  // frames since the call began or the last note began in it
    uint32_t k = 0;
    while (k < frames) {
        if (s.totalFrames == E) {
            outL[k] = outR[k] = 0;
            endRepeats();
            return;  // the position stays where it was
        }
        if (s.nextBeatFrame == s.totalFrames) {
            s.nextBeatFrame += F;
            s.tact = static_cast<uint16_t>(s.tact + 1 >= 16 ? 0 : s.tact + 1);
            notifyTact(s.tact);
            if (stepIsSet(mask, s.tact)) {
                s.needToStartPlaying = true;
                if (LoopplayerDelegate* d = delegate()) d->animateStartPlaying(i);
            }
            uint32_t next = s.tact + 1u == 16 ? 0 : s.tact + 1u;
            if (stepIsSet(mask, next)) s.needToEndAnimationEarlier = true;
        }
        if (s.needToEndAnimationEarlier && s.nextBeatFrame == s.totalFrames + half) {
            if (LoopplayerDelegate* d = delegate()) d->animateStopPlaying(i);
            s.needToEndAnimationEarlier = false;
        }
        uint32_t p = 0;
        const SoundAt sound = soundAt(s, k, c, outL, outR, &p);
        if (sound == SoundAt::RanOut) {
            if (LoopplayerDelegate* d = delegate()) d->animateStopPlaying(i);
        }
        // Up to the next event every frame is handled alike.
        uint64_t run = std::min<uint64_t>(frames - k, E - s.totalFrames);
        if (s.nextBeatFrame > s.totalFrames) run = std::min(run, s.nextBeatFrame - s.totalFrames);
        if (s.needToEndAnimationEarlier && s.nextBeatFrame >= half && s.nextBeatFrame - half > s.totalFrames)
            run = std::min(run, s.nextBeatFrame - half - s.totalFrames);
        if (sound == SoundAt::Sounding) run = copySound(s, p, run, k, outL, outR);
        s.totalFrames += run;
        c += static_cast<uint32_t>(run);
        k += static_cast<uint32_t>(run);
    }
    if (s.playingNow) s.positionInFile += c;
    uint32_t byteSize = s.audioSampleBufferList ? s.audioSampleBufferList->mBuffers[0].mDataByteSize : 0;
    if (s.positionInFile >= byteSize) {
        // Compares a frame position with a byte count: only a sound of zero
        // length (or a corrupt position) ever gets here.
        if (LoopplayerDelegate* d = delegate()) d->animateStopPlaying(i);
        sendEndOfDataLog(byteSize, frames);
        s.positionInFile = 0;
    }
}
