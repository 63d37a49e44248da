#pragma once
// The live input trace the sound editor shows while the microphone records:
// the newest 2047 samples of the left input channel drawn as one polyline
// that fades out towards both ends.
//
// This is the data side of the view. As an input receiver it keeps the newest
// samples in a ring on the render thread; on each tick of its refresh clock
// it computes the polyline on the main thread and hands it to whoever draws
// (the screen's view). No drawing code and no Qt here.
//
// Threads: receiverCallback runs on the render thread and never allocates,
// locks or logs; everything else is main-thread only.
#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "engine/AudioChannel.h"
#include "engine/Realtime.h"

// Calls a tick function at the screen's refresh pace until stopped. The view
// supplies one tied to its display refresh; ManualRefreshClock is ticked by
// hand (tests, or a host that has its own frame timer).
class RefreshClock {
public:
    virtual ~RefreshClock() = default;
    // Starts calling `tick` on the main thread about every `interval` seconds.
    virtual void start(double interval, std::function<void()> tick) = 0;
    virtual void stop() = 0;
};

class ManualRefreshClock : public RefreshClock {
public:
    void start(double interval, std::function<void()> tick) override;
    void stop() override;
    // Calls the tick function once if the clock runs; answers whether it ran.
    bool tick();
    bool running() const { return static_cast<bool>(tick_); }
    double interval() const { return interval_; }

private:
    std::function<void()> tick_;
    double interval_ = 0;
};

struct OscilloscopePoint {
    double x;
    double y;
};

class OscilloscopeLayer : public AudioReceiver {
public:
    static constexpr int kRingSamples = 2048;
    static constexpr int kConversionFrames = 4096;
    static constexpr int kPointCount = 127;
    static constexpr int kSampleStride = 16;
    // Every second refresh of a 60 Hz screen.
    static constexpr double kRefreshInterval = 1.0 / 30.0;

    // `clock` drives the redraws; without one the layer makes a ManualRefreshClock.
    explicit OscilloscopeLayer(std::unique_ptr<RefreshClock> clock = nullptr);
    ~OscilloscopeLayer() override;

    // Size of the layer in points (the sound editor's waveform frame).
    double width = 0;
    double height = 0;
    // Drawing properties for the view: no antialiasing, this width and colour.
    double lineWidth = 2.0;
    uint32_t lineColor = 0xFFFFFFFF;  // 0xRRGGBBAA
    // Called on each redraw with the polyline to stroke.
    std::function<void(const std::vector<OscilloscopePoint>&)> onDisplay;
    // Called by removeFromSuperlayer, for the view to take the layer off screen.
    std::function<void()> onRemoveFromSuperlayer;

    // Starts redrawing on every tick of the clock; stop ends it.
    void start();
    void stop();
    bool isRunning() const { return running_; }
    RefreshClock& clock() { return *clock_; }

    // Computes the polyline now (what a tick does) and hands it to onDisplay.
    void display();
    void removeFromSuperlayer();

    // The 127 points for a layer of this size: from the sample just after the
    // write head, every 16th of the 2047 newest samples; x advances by
    // width / 2046 * 17 per point from 0; y = sample * height/2 * taper +
    // height/2, the taper rising over the first 63 points, falling over the
    // next 63, and 1 for the last point.
    std::vector<OscilloscopePoint> points(double width, double height) const;
    // The taper of point i (0..126).
    static double taper(int i);
    // The input level: the largest magnitude among the newest 2048 samples,
    // 0 (silence) to 1 (full scale).
    double peak() const;

    void receiverCallback(AudioController* controller, const void* source, const AudioTimeStamp& time,
                          uint32_t frames, const AudioBufferList* audio) QUILLO_NONBLOCKING override;

private:
    std::unique_ptr<RefreshClock> clock_;
    bool running_ = false;
    // Render side: float conversion buffer and the ring. head_ is the index
    // the next sample goes to (so also the oldest sample), published with
    // release order after the samples it covers. The samples are relaxed
    // atomics (plain loads and stores on the machine): the trace may mix two
    // neighbouring blocks, never a torn value.
    std::unique_ptr<float[]> conversion_;
    std::array<std::atomic<double>, kRingSamples> ring_{};
    std::atomic<int32_t> head_{0};
    int32_t writeIndex_ = 0;  // render thread's own copy of head_
};
