// The controller's mixer: the render pass that pulls every channel and group,
// mixes them in float at the 16-bit scale, and feeds the receivers; and the
// offline driver's render loop.
#include <algorithm>
#include <cstring>

#include "engine/AudioControllerRecords.h"

using namespace audio_controller_detail;

namespace {

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

}  // namespace

namespace audio_controller_detail {

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

}  // namespace audio_controller_detail

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
