#include "playback/Trackloopplayer.h"

#include <algorithm>
#include <cstring>

#include "engine/AudioChannel.h"
#include "engine/AudioController.h"
#include "engine/AudioFileLoaderOperation.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "library/patterns/Tacter.h"
#include "playback/PlaybackContext.h"

std::shared_ptr<Trackloopplayer> Trackloopplayer::create(Loop* loop, LoopplayerDelegate* delegate,
                                                         TrackloopplayerDelegate* telegat, uint64_t repeatTimes,
                                                         float bpm, const std::vector<LoopSquares*>* squares,
                                                         uint32_t startSquare, bool repeatTrack,
                                                         PlaybackContext* context) {
    std::shared_ptr<Trackloopplayer> p(new Trackloopplayer(context));
    p->telegate_.setController(p->controller_);
    p->trackLen_ = repeatTimes;
    p->repeatTimes_ = repeatTimes - startSquare;
    p->repeatTrack_ = repeatTrack;
    p->setCurrentSquare(static_cast<uint16_t>(startSquare));
    p->setSquaresPartFromSet(squares);
    p->setTelegate(telegat);
    p->startAfterSetLoop(loop, delegate, bpm);
    return p;
}

Trackloopplayer::~Trackloopplayer() {
    // Dropped without a stop: out of the engine before the render blocks
    // (which point at this object) could run again, and the group given back.
    if (!channels_.empty() && controller_) controller_->removeChannels(channels_);
    channels_.clear();
    releaseEngineResources();
}

void Trackloopplayer::releaseEngineResources() {
    if (controller_ && loopgroup_) controller_->releaseChannelGroup(loopgroup_);
    loopgroup_ = nullptr;
}

void Trackloopplayer::setCurrentSquare(uint16_t square) { curSquare_.fill(square); }

void Trackloopplayer::setSquaresPartFromSet(const std::vector<LoopSquares*>* squares) {
    for (int j = 0; j < kSquareParts; ++j) {
        uint16_t part;
        if (!squares) part = Tacter::tacts("1111111111111111");
        else if (static_cast<size_t>(j) < squares->size()) part = (*squares)[static_cast<size_t>(j)]->squaresMask();
        else part = Tacter::notacts();
        squaresParts_[static_cast<size_t>(j)].store(part, std::memory_order_relaxed);
    }
}

void Trackloopplayer::addChannelsAndStart() {
    channels_.clear();
    const std::vector<Instrument*>& instruments = loop_ ? loop_->instruments() : std::vector<Instrument*>();
    // One slot per instrument, no spare slots: a track row is not edited while it plays.
    for (size_t slot = 0; slot < instruments.size() && slot < static_cast<size_t>(kSlots); ++slot) {
        Instrument* inst = instruments[slot];
        channelTacts_[slot] = inst->tactsMask();
        float gain = static_cast<float>(inst->volume() / 100.0);
        loadFile(static_cast<int>(slot), Filer::urlForSound(inst->sound()));
        if (files_[slot]) {
            auto channel = blockChannelForOperation(static_cast<int>(slot));
            channel->setVolume(gain);
            blockChannels_[slot] = channel;
            channels_.push_back(channel);
        }
    }
    createChannelsGroup();
}

void Trackloopplayer::createChannelsGroup() {
    loopgroup_ = controller_ ? controller_->createChannelGroup() : nullptr;
}

void Trackloopplayer::reallyAddChannelsToControlla(AudioController* controller) {
    if (controller && loopgroup_) controller->addChannels(channels_, loopgroup_);
}

std::shared_ptr<BlockChannel> Trackloopplayer::blockChannelForOperation(int slot) {
    takeSoundOfSlot(slot);
    ihasDelegat_ = telegate() != nullptr && delegate() != nullptr;
    return BlockChannel::channelWithBlock(
        [this, slot](const AudioTimeStamp&, uint32_t frames, AudioBufferList* audio) {
            renderTrackSlot(slot, frames, audio);
        });
}

bool Trackloopplayer::endTrack(int i, AudioBufferList* audio, uint32_t frame) {
    Slot& s = slots_[static_cast<size_t>(i)];
    if (repeatTrack_) {
        s.totalFrames = 0;
        s.nextBeatFrame = 0;
        s.needToStartPlaying = false;
        s.playingNow = false;
        s.positionInFile = 0;
        s.tact = 16;
        curSquare_[static_cast<size_t>(i)] = 0;
        repeatTimes_ = trackLen_;
        if (TrackloopplayerDelegate* t = telegate()) t->animateSquare(0);
        return false;
    }
    static_cast<int16_t*>(audio->mBuffers[0].mData)[frame] = 0;
    static_cast<int16_t*>(audio->mBuffers[1].mData)[frame] = 0;
    if (i != 0 || ended_.load(std::memory_order_relaxed) || !ihasDelegat_.load(std::memory_order_relaxed)) return true;
    ended_.store(true, std::memory_order_relaxed);
    if (LoopplayerDelegate* d = delegate()) d->loopEndRepeating();
    return true;
}

// As the loop player's block, with squares: a bar advances the square when its
// step 15 ends, notes sound only in squares that are on, and the track's end
// either restarts from square 0 or stops. Spans between step boundaries are
// copied in one go.
void Trackloopplayer::renderTrackSlot(int i, uint32_t frames, AudioBufferList* audio) {
    if (paused_.load(std::memory_order_relaxed) || ended_.load(std::memory_order_relaxed)) return;
    Slot& s = slots_[static_cast<size_t>(i)];
    uint16_t& square = curSquare_[static_cast<size_t>(i)];
    const uint64_t F = framesPerStep(bpm_.load(std::memory_order_relaxed));
    const uint16_t mask = channelTacts_[static_cast<size_t>(i)].load(std::memory_order_relaxed);
    const bool reports = i == 0 && ihasDelegat_.load(std::memory_order_relaxed);
    auto* outL = static_cast<int16_t*>(audio->mBuffers[0].mData);
    auto* outR = static_cast<int16_t*>(audio->mBuffers[1].mData);

    uint32_t c = 0;
    uint32_t k = 0;
    while (k < frames) {
        if (s.nextBeatFrame == s.totalFrames) {
            s.nextBeatFrame += F;
            if (s.tact == 15) {
                square = static_cast<uint16_t>(square + 1);
                if (square >= trackLen_) {
                    if (endTrack(i, audio, k)) return;
                    s.nextBeatFrame += F;
                }
                if (reports) {
                    if (TrackloopplayerDelegate* t = telegate()) t->animateSquare(square);
                }
            }
            s.tact = static_cast<uint16_t>(s.tact + 1 > 15 ? 0 : s.tact + 1);
            if (reports) {
                if (TrackloopplayerDelegate* t = telegate()) t->animateTact(s.tact, this);
            }
            uint32_t part = square / 16u;
            bool squareOn = part < static_cast<uint32_t>(kSquareParts) &&
                            ((squaresParts_[part].load(std::memory_order_relaxed) >> (15 - square % 16)) & 1);
            if (squareOn && ((mask >> (15 - s.tact)) & 1)) s.needToStartPlaying = true;
        }
        uint32_t p = 0;
        const SoundAt sound = soundAt(s, k, c, outL, outR, &p);  // no report when it runs out
        uint64_t run = frames - k;
        if (s.nextBeatFrame > s.totalFrames) run = std::min(run, s.nextBeatFrame - s.totalFrames);
        if (sound == SoundAt::Sounding) run = copySound(s, p, run, k, outL, outR);
        s.totalFrames += run;
        c += static_cast<uint32_t>(run);
        k += static_cast<uint32_t>(run);
    }
    if (s.playingNow) s.positionInFile += c;
    const AudioBufferList* list = s.audioSampleBufferList;
    if (s.positionInFile >= (list ? list->mBuffers[0].mDataByteSize : 0)) s.positionInFile = 0;
}
