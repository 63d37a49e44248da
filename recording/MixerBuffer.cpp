#include "recording/MixerBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int64_t kMask = int64_t(MixerBuffer::kRingFrames) - 1;
static_assert((MixerBuffer::kRingFrames & (MixerBuffer::kRingFrames - 1)) == 0, "ring size is a power of two");
static_assert(MixerBuffer::kMaxLagFrames + MixerBuffer::kMaxDequeueFrames < MixerBuffer::kRingFrames);

int16_t* allocSamples(size_t count) {
    auto* p = static_cast<int16_t*>(std::calloc(count, sizeof(int16_t)));
    if (!p) std::abort();  // a few hundred kilobytes at start-up
    return p;
}

// Copies `n` frames from ring `src` starting at `time` into `dst`, in up to
// two pieces around the end of the ring.
void copyFromRing(const int16_t* src, int64_t time, uint32_t n, int16_t* dst) QUILLO_NONBLOCKING {
    const uint32_t at = uint32_t(time & kMask);
    const uint32_t first = std::min(n, MixerBuffer::kRingFrames - at);
    std::memcpy(dst, src + at, first * sizeof(int16_t));
    if (first < n) std::memcpy(dst + first, src, (n - first) * sizeof(int16_t));
}

void addFromRing(const int16_t* src, int64_t time, uint32_t n, int32_t* sum) QUILLO_NONBLOCKING {
    for (uint32_t k = 0; k < n; ++k) sum[k] += src[(time + k) & kMask];
}

inline int16_t clamp16(int32_t v) QUILLO_NONBLOCKING {
    return int16_t(v > 32767 ? 32767 : (v < -32768 ? -32768 : v));
}

}  // namespace

MixerBuffer::MixerBuffer() {
    for (Source& s : sources_) {
        s.left = allocSamples(kRingFrames);
        s.right = allocSamples(kRingFrames);
    }
    outLeft_ = allocSamples(kMaxDequeueFrames);
    outRight_ = allocSamples(kMaxDequeueFrames);
    sumLeft_ = static_cast<int32_t*>(std::calloc(kMaxDequeueFrames, sizeof(int32_t)));
    sumRight_ = static_cast<int32_t*>(std::calloc(kMaxDequeueFrames, sizeof(int32_t)));
    if (!sumLeft_ || !sumRight_) std::abort();
}

MixerBuffer::~MixerBuffer() {
    for (Source& s : sources_) {
        std::free(s.left);
        std::free(s.right);
    }
    std::free(outLeft_);
    std::free(outRight_);
    std::free(sumLeft_);
    std::free(sumRight_);
}

void MixerBuffer::expectSource(const void* source) {
    Source* s = sourceFor(source);
    if (s && started_ && !s->live) {
        s->live = true;
        s->head = next_;
    }
}

MixerBuffer::Source* MixerBuffer::sourceFor(const void* id) {
    for (int i = 0; i < count_; ++i)
        if (sources_[size_t(i)].id == id) return &sources_[size_t(i)];
    if (count_ == kMaxSources) return nullptr;
    Source& s = sources_[size_t(count_++)];
    s.id = id;
    s.live = false;
    s.delivered = false;
    s.head = 0;
    return &s;
}

void MixerBuffer::reset() {
    for (Source& s : sources_) {
        s.id = nullptr;
        s.live = false;
        s.delivered = false;
        s.head = 0;
    }
    count_ = 0;
    started_ = false;
    next_ = 0;
    largestBlock_ = 0;
}

void MixerBuffer::enqueue(const void* source, const AudioBufferList* audio, uint32_t frames,
                          const AudioTimeStamp& time) {
    if (!audio || audio->mNumberBuffers == 0 || frames == 0) return;
    Source* s = sourceFor(source);
    if (!s) return;  // more sources than the mixer has rings for
    const auto* inLeft = static_cast<const int16_t*>(audio->mBuffers[0].mData);
    const auto* inRight =
        audio->mNumberBuffers > 1 ? static_cast<const int16_t*>(audio->mBuffers[1].mData) : inLeft;
    if (!inLeft || !inRight) return;

    const int64_t t0 = int64_t(time.mSampleTime >= 0 ? time.mSampleTime + 0.5 : time.mSampleTime - 0.5);
    const int64_t t1 = t0 + frames;
    if (!started_) {
        // The mix starts with the first frame anyone delivers; expected sources
        // are held to account from there.
        started_ = true;
        next_ = t0;
        for (int i = 0; i < count_; ++i) {
            sources_[size_t(i)].live = true;
            sources_[size_t(i)].head = t0;
        }
    }
    if (!s->live) {
        s->live = true;
        s->head = t0;
    }
    s->delivered = true;
    largestBlock_ = std::max(largestBlock_, frames);
    // More than a ring ahead of what has left: the oldest frames are lost.
    if (t1 - next_ > int64_t(kRingFrames)) next_ = t1 - int64_t(kRingFrames);

    // The ring gets [max(head, next_), t1): silence up to t0, then the block.
    // Frames that left already, or that this source delivered before, are dropped.
    const int64_t writeFrom = std::max(s->head, next_);
    if (writeFrom >= t1) return;
    const int64_t dataFrom = std::max(writeFrom, t0);
    for (int64_t t = writeFrom; t < dataFrom; ++t) {
        s->left[t & kMask] = 0;
        s->right[t & kMask] = 0;
    }
    const uint32_t skip = uint32_t(dataFrom - t0);
    const uint32_t n = uint32_t(t1 - dataFrom);
    const uint32_t at = uint32_t(dataFrom & kMask);
    const uint32_t first = std::min(n, kRingFrames - at);
    std::memcpy(s->left + at, inLeft + skip, first * sizeof(int16_t));
    std::memcpy(s->right + at, inRight + skip, first * sizeof(int16_t));
    if (first < n) {
        std::memcpy(s->left, inLeft + skip + first, (n - first) * sizeof(int16_t));
        std::memcpy(s->right, inRight + skip + first, (n - first) * sizeof(int16_t));
    }
    s->head = t1;
}

int64_t MixerBuffer::readyEnd(bool everything) const {
    int64_t lead = INT64_MIN;
    for (int i = 0; i < count_; ++i) {
        const Source& s = sources_[size_t(i)];
        if (s.live) lead = std::max(lead, s.head);
    }
    if (everything) return lead;
    int64_t end = lead;
    for (int i = 0; i < count_; ++i) {
        const Source& s = sources_[size_t(i)];
        const int64_t allowedLag = s.delivered ? int64_t(kMaxLagFrames) : int64_t(largestBlock_);
        if (s.live && lead - s.head <= allowedLag) end = std::min(end, s.head);
    }
    return end;
}

uint32_t MixerBuffer::peekFrames(bool everything) const {
    if (!started_) return 0;
    const int64_t ready = readyEnd(everything) - next_;
    return ready > 0 ? uint32_t(std::min<int64_t>(ready, kRingFrames)) : 0;
}

uint32_t MixerBuffer::dequeue(AudioBufferList* audio, uint32_t maxFrames, bool everything) {
    if (!audio || audio->mNumberBuffers == 0) return 0;
    uint32_t n = std::min(peekFrames(everything), maxFrames);
    const uint32_t buffers = std::min<uint32_t>(audio->mNumberBuffers, 2);
    int16_t* out[2] = {nullptr, nullptr};
    for (uint32_t b = 0; b < buffers; ++b) {
        AudioBuffer& buffer = audio->mBuffers[b];
        if (!buffer.mData) {
            buffer.mData = b == 0 ? outLeft_ : outRight_;
            n = std::min(n, kMaxDequeueFrames);
        } else {
            n = std::min<uint32_t>(n, buffer.mDataByteSize / sizeof(int16_t));
        }
        out[b] = static_cast<int16_t*>(buffer.mData);
    }
    if (n == 0) {
        for (uint32_t b = 0; b < buffers; ++b) audio->mBuffers[b].mDataByteSize = 0;
        return 0;
    }

    // Which sources hold frames in [next_, next_ + n).
    int contributing = 0;
    const Source* only = nullptr;
    bool onlyCoversAll = false;
    for (int i = 0; i < count_; ++i) {
        const Source& s = sources_[size_t(i)];
        if (!s.live || s.head <= next_) continue;
        ++contributing;
        only = &s;
        onlyCoversAll = s.head >= next_ + int64_t(n);
    }

    if (contributing == 1 && onlyCoversAll) {
        // One source: its frames exactly.
        copyFromRing(only->left, next_, n, out[0]);
        if (out[1]) copyFromRing(only->right, next_, n, out[1]);
    } else {
        for (uint32_t done = 0; done < n;) {
            const uint32_t chunk = std::min(n - done, kMaxDequeueFrames);
            const int64_t from = next_ + done;
            std::memset(sumLeft_, 0, chunk * sizeof(int32_t));
            std::memset(sumRight_, 0, chunk * sizeof(int32_t));
            for (int i = 0; i < count_; ++i) {
                const Source& s = sources_[size_t(i)];
                if (!s.live || s.head <= from) continue;
                const uint32_t held = uint32_t(std::min<int64_t>(s.head - from, chunk));
                addFromRing(s.left, from, held, sumLeft_);
                addFromRing(s.right, from, held, sumRight_);
            }
            for (uint32_t k = 0; k < chunk; ++k) out[0][done + k] = clamp16(sumLeft_[k]);
            if (out[1])
                for (uint32_t k = 0; k < chunk; ++k) out[1][done + k] = clamp16(sumRight_[k]);
            done += chunk;
        }
    }
    for (uint32_t b = 0; b < buffers; ++b) audio->mBuffers[b].mDataByteSize = n * uint32_t(sizeof(int16_t));
    next_ += n;
    return n;
}
