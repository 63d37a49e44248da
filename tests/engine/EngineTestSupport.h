#pragma once
// Helpers shared by the engine tests: log capture, engine-format buffers and
// channels whose every sample says where it came from.
#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "engine/AudioController.h"
#include "library/util/Log.h"

// Collects log lines while alive.
class LogCapture {
public:
    LogCapture() {
        quillo_log::setSink([this](const std::string& line) {
            std::lock_guard<std::mutex> lock(mutex_);
            lines_.push_back(line);
        });
    }
    ~LogCapture() { quillo_log::setSink(nullptr); }
    std::vector<std::string> lines() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return lines_;
    }
    int count(const std::string& line) const {
        auto all = lines();
        return int(std::count(all.begin(), all.end(), line));
    }
    int countContaining(const std::string& part) const {
        int n = 0;
        for (const auto& l : lines()) n += l.find(part) != std::string::npos;
        return n;
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

// A buffer list in the engine format, freed automatically.
struct EngineBuffer {
    explicit EngineBuffer(uint32_t frames)
        : frames(frames), list(allocateBufferList(AudioController::nonInterleaved16BitStereoAudioDescription(), frames)) {}
    ~EngineBuffer() { freeBufferList(list); }
    EngineBuffer(const EngineBuffer&) = delete;
    EngineBuffer& operator=(const EngineBuffer&) = delete;
    int16_t* left() const { return static_cast<int16_t*>(list->mBuffers[0].mData); }
    int16_t* right() const { return static_cast<int16_t*>(list->mBuffers[1].mData); }
    uint32_t frames;
    AudioBufferList* list;
};

// A channel that writes the same value on every frame (left, right), and
// counts its render calls. Real-time safe.
class ConstantChannel : public AudioChannel {
public:
    ConstantChannel(int16_t left, int16_t right) : left_(left), right_(right) {}
    void render(AudioController*, const AudioTimeStamp& time, uint32_t frames,
                AudioBufferList* audio) QUILLO_NONBLOCKING override {
        auto* l = static_cast<int16_t*>(audio->mBuffers[0].mData);
        auto* r = static_cast<int16_t*>(audio->mBuffers[1].mData);
        for (uint32_t k = 0; k < frames; ++k) {
            l[k] = left_;
            r[k] = right_;
        }
        lastSampleTime.store(time.mSampleTime, std::memory_order_relaxed);
        renders.fetch_add(1, std::memory_order_relaxed);
    }
    std::atomic<int> renders{0};
    std::atomic<double> lastSampleTime{-1};

private:
    int16_t left_, right_;
};

inline std::shared_ptr<ConstantChannel> constantChannel(int16_t left, int16_t right) {
    return std::make_shared<ConstantChannel>(left, right);
}

inline AudioControllerOptions offlineOptions(MainThread* main = nullptr) {
    AudioControllerOptions o;
    o.driver = AudioDriverKind::Offline;
    o.mainThread = main;
    o.rebuildDelay = std::chrono::milliseconds(0);
    return o;
}
