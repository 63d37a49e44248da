#include "engine/AudioFilePlayer.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <unordered_set>

#include "engine/AudioController.h"
#include "engine/AudioFileLoaderOperation.h"

namespace {

// Players alive, so that a notification arriving on the main thread after
// its player was released is dropped rather than followed.
std::mutex& registryMutex() {
    static std::mutex m;
    return m;
}
std::unordered_set<AudioFilePlayer*>& registry() {
    static std::unordered_set<AudioFilePlayer*> players;
    return players;
}

std::shared_ptr<AudioFilePlayer> livePlayer(void* userInfo, int32_t length) {
    if (length != int32_t(sizeof(AudioFilePlayer*))) return nullptr;
    AudioFilePlayer* raw = nullptr;
    std::memcpy(&raw, userInfo, sizeof raw);
    std::lock_guard<std::mutex> lock(registryMutex());
    if (!registry().count(raw)) return nullptr;
    return raw->weak_from_this().lock();
}

}  // namespace

std::shared_ptr<AudioFilePlayer> AudioFilePlayer::audioFilePlayerWithURL(const std::string& url,
                                                                         AudioController* controller,
                                                                         AudioError* error) {
    AudioFileLoaderOperation loader(url, controller ? controller->audioDescription() : AudioStreamDescription{});
    loader.start();
    if (loader.error()) {
        if (error) *error = *loader.error();
        return nullptr;
    }
    return std::make_shared<AudioFilePlayer>(url, controller, loader.bufferList(), loader.lengthInFrames());
}

AudioFilePlayer::AudioFilePlayer(std::string url, AudioController* controller, AudioBufferList* audio, uint32_t length)
    : url_(std::move(url)), audio_(audio), length_(length) {
    const AudioStreamDescription d =
        controller ? controller->audioDescription() : AudioController::nonInterleaved16BitStereoAudioDescription();
    rate_ = d.mSampleRate;
    bytesPerFrame_ = d.mBytesPerFrame;
    std::lock_guard<std::mutex> lock(registryMutex());
    registry().insert(this);
}

AudioFilePlayer::~AudioFilePlayer() {
    {
        std::lock_guard<std::mutex> lock(registryMutex());
        registry().erase(this);
    }
    freeBufferList(audio_);
}

double AudioFilePlayer::duration() const { return rate_ > 0 ? length_ / rate_ : 0.0; }
double AudioFilePlayer::currentTime() const { return rate_ > 0 ? position_.load() / rate_ : 0.0; }
void AudioFilePlayer::setCurrentTime(double seconds) {
    position_.store(uint32_t(std::clamp(seconds * rate_, 0.0, double(length_))));
}

void AudioFilePlayer::render(AudioController* controller, const AudioTimeStamp&, uint32_t frames,
                             AudioBufferList* audio) {
    uint32_t position = position_.load(std::memory_order_relaxed);
    uint32_t done = 0;
    AudioFilePlayer* self = this;
    while (done < frames) {
        const uint32_t n = std::min(frames - done, length_ - std::min(position, length_));
        for (uint32_t b = 0; b < audio->mNumberBuffers && b < audio_->mNumberBuffers; ++b) {
            std::memcpy(static_cast<char*>(audio->mBuffers[b].mData) + size_t(done) * bytesPerFrame_,
                        static_cast<const char*>(audio_->mBuffers[b].mData) + size_t(position) * bytesPerFrame_,
                        size_t(n) * bytesPerFrame_);
        }
        done += n;
        position += n;
        if (position < length_) break;
        // The end of the data.
        if (loop() && length_ > 0) {
            position = 0;
            AudioControllerSendAsynchronousMessageToMainThread(controller, loopedOnMain, &self, sizeof self);
        } else {
            setChannelIsPlaying(false);
            AudioControllerSendAsynchronousMessageToMainThread(controller, finishedOnMain, &self, sizeof self);
            break;
        }
    }
    position_.store(position, std::memory_order_relaxed);
}

void AudioFilePlayer::loopedOnMain(AudioController*, void* userInfo, int32_t length) {
    auto player = livePlayer(userInfo, length);
    if (player && player->startLoopBlock) player->startLoopBlock();
}

void AudioFilePlayer::finishedOnMain(AudioController* controller, void* userInfo, int32_t length) {
    auto player = livePlayer(userInfo, length);
    if (!player) return;
    if (player->completionBlock) player->completionBlock();
    if (player->removeUponFinish() && controller) controller->removeChannels({player});
}
