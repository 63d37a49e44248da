// The offline and null drivers.
#include <atomic>
#include <chrono>
#include <thread>

#include "engine/AudioDriver.h"

namespace {

class OfflineAudioDriver : public AudioDriver {
public:
    const char* name() const override { return "Offline"; }
    bool start(const AudioDriverConfig&, AudioRenderer*, AudioError*) override { return true; }
    void stop() override {}
    bool inputRunning() const override { return false; }
    bool rendersOnItsOwnThread() const override { return false; }
    double bufferDuration() const override { return 0.0; }
};

// Paces the render pass with the steady clock: one block per period, the
// output thrown away. When the thread falls behind by more than 100 ms it
// skips ahead instead of rendering a burst.
class NullAudioDriver : public AudioDriver {
public:
    ~NullAudioDriver() override { stop(); }
    const char* name() const override { return "Null"; }

    bool start(const AudioDriverConfig& config, AudioRenderer* renderer, AudioError* error) override {
        stop();
        frames_ = config.framesPerBuffer ? config.framesPerBuffer : 256;
        rate_ = config.format.mSampleRate > 0 ? config.format.mSampleRate : 44100.0;
        output_ = allocateBufferList(config.format, frames_);
        if (!output_) {
            if (error) *error = AudioError{"Quillo.Engine", 12, "Not enough memory for the null device"};
            return false;
        }
        stopping_.store(false);
        thread_ = std::thread([this, renderer] { run(renderer); });
        return true;
    }

    void stop() override {
        if (thread_.joinable()) {
            stopping_.store(true);
            thread_.join();
        }
        freeBufferList(output_);
        output_ = nullptr;
    }

    bool inputRunning() const override { return false; }
    bool rendersOnItsOwnThread() const override { return true; }
    double bufferDuration() const override { return double(frames_) / rate_; }

private:
    void run(AudioRenderer* renderer) {
        using clock = std::chrono::steady_clock;
        const auto period = std::chrono::duration_cast<clock::duration>(std::chrono::duration<double>(frames_ / rate_));
        auto next = clock::now();
        while (!stopping_.load(std::memory_order_acquire)) {
            renderer->renderPass(nullptr, output_, frames_, AudioCurrentHostTime());
            next += period;
            const auto now = clock::now();
            if (now > next + std::chrono::milliseconds(100)) next = now;
            std::this_thread::sleep_until(next);
        }
    }

    uint32_t frames_ = 256;
    double rate_ = 44100.0;
    AudioBufferList* output_ = nullptr;
    std::thread thread_;
    std::atomic<bool> stopping_{false};
};

}  // namespace

std::unique_ptr<AudioDriver> makeOfflineAudioDriver() { return std::make_unique<OfflineAudioDriver>(); }
std::unique_ptr<AudioDriver> makeNullAudioDriver() { return std::make_unique<NullAudioDriver>(); }
