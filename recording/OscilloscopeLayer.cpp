#include "recording/OscilloscopeLayer.h"

#include <algorithm>
#include <cmath>

void ManualRefreshClock::start(double interval, std::function<void()> tick) {
    interval_ = interval;
    tick_ = std::move(tick);
}

void ManualRefreshClock::stop() { tick_ = nullptr; }

bool ManualRefreshClock::tick() {
    if (!tick_) return false;
    auto tick = tick_;  // the tick may stop the clock
    tick();
    return true;
}

OscilloscopeLayer::OscilloscopeLayer(std::unique_ptr<RefreshClock> clock)
    : clock_(clock ? std::move(clock) : std::make_unique<ManualRefreshClock>()),
      conversion_(new float[kConversionFrames]()) {
    for (auto& s : ring_) s.store(0.0, std::memory_order_relaxed);
}

OscilloscopeLayer::~OscilloscopeLayer() { stop(); }

void OscilloscopeLayer::start() {
    if (running_) return;
    running_ = true;
    clock_->start(kRefreshInterval, [this] { display(); });
}

void OscilloscopeLayer::stop() {
    if (!running_) return;
    running_ = false;
    clock_->stop();
}

void OscilloscopeLayer::display() {
    if (onDisplay) onDisplay(points(width, height));
}

void OscilloscopeLayer::removeFromSuperlayer() {
    if (onRemoveFromSuperlayer) onRemoveFromSuperlayer();
}

double OscilloscopeLayer::taper(int i) {
    if (i >= 0 && i < 63) return double(i + 1) / 63.0;
    if (i >= 63 && i < 126) return double(62 - (i - 63)) / 63.0;
    return 1.0;  // the last point is in neither ramp
}

std::vector<OscilloscopePoint> OscilloscopeLayer::points(double w, double h) const {
    const int32_t head = head_.load(std::memory_order_acquire);
    const double step = w / 2046.0 * 17.0;
    std::vector<OscilloscopePoint> out;
    out.reserve(kPointCount);
    for (int i = 0; i < kPointCount; ++i) {
        const int32_t index = (head + 1 + i * kSampleStride) % kRingSamples;
        const double sample = ring_[size_t(index)].load(std::memory_order_relaxed);
        out.push_back({double(i) * step, sample * h / 2.0 * taper(i) + h / 2.0});
    }
    return out;
}

double OscilloscopeLayer::peak() const {
    double top = 0;
    for (const auto& s : ring_) top = std::max(top, std::abs(s.load(std::memory_order_relaxed)));
    return top;
}

void OscilloscopeLayer::receiverCallback(AudioController*, const void*, const AudioTimeStamp&, uint32_t frames,
                                         const AudioBufferList* audio) {
    if (!audio || audio->mNumberBuffers == 0 || !audio->mBuffers[0].mData) return;
    const auto* left = static_cast<const int16_t*>(audio->mBuffers[0].mData);
    int32_t w = writeIndex_;
    for (uint32_t done = 0; done < frames;) {
        const uint32_t n = std::min<uint32_t>(frames - done, kConversionFrames);
        float* f = conversion_.get();
        for (uint32_t k = 0; k < n; ++k) f[k] = float(left[done + k]) / 32768.0f;
        for (uint32_t k = 0; k < n; ++k) {
            ring_[size_t(w)].store(double(f[k]), std::memory_order_relaxed);
            w = (w + 1) % kRingSamples;
        }
        done += n;
    }
    writeIndex_ = w;
    head_.store(w, std::memory_order_release);
}
