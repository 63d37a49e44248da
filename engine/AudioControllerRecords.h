#pragma once
// The controller's internal records, shared by its parts (controller, mixer,
// message exchange, poll thread). Not part of the engine's interface.
#include <atomic>
#include <cstdlib>
#include <functional>
#include <memory>
#include <pthread.h>
#include <vector>

#include "engine/AudioController.h"

// One channel or group inside its parent group.
struct AudioControllerEntry {
    bool isGroup = false;
    AudioChannel* channel = nullptr;         // render side reads this
    std::shared_ptr<AudioChannel> object;    // main side owns the channel
    AudioChannelGroup* group = nullptr;      // when isGroup
    AudioChannelGroup* parent = nullptr;
    AudioTimeStamp timeStamp{0, 0};          // the entry's own sample time
};

class AudioChannelGroup {
public:
    explicit AudioChannelGroup(AudioChannelGroup* parent) : parent(parent) {
        left = static_cast<float*>(std::calloc(AudioController::kMaxFramesPerSlice, sizeof(float)));
        right = static_cast<float*>(std::calloc(AudioController::kMaxFramesPerSlice, sizeof(float)));
    }
    ~AudioChannelGroup() {
        std::free(left);
        std::free(right);
    }

    AudioChannelGroup* parent;
    AudioControllerEntry* entry = nullptr;  // stands for the group in its parent (none for the top)

    // Render side: changed only by messages (under the render guard).
    AudioControllerEntry* table[AudioController::kMaxEntriesPerGroup] = {};
    int count = 0;
    float* left;  // mix accumulators, int16 scale
    float* right;

    // Main side mirror of the table.
    std::vector<AudioControllerEntry*> entries;

    std::atomic<float> volume{1.0f};
    std::atomic<float> pan{0.0f};
    std::atomic<bool> playing{true};
    std::atomic<bool> muted{false};
};

// A message record, written in place into a ring. Render-to-main messages
// carry their user data inline right after the record.
struct AudioController::Message {
    std::function<void()>* block;
    std::function<void()>* responseBlock;
    AudioControllerMainThreadMessageHandler handler;
    const void* userInfoByReference;
    int32_t userInfoLength;
    bool hasSourceThread;
    bool replyServiced;
    bool responseExpected;  // counted in pendingResponses_
    pthread_t sourceThread;
};

namespace audio_controller_detail {

constexpr int32_t kAlign = 16;
constexpr int32_t roundUp(int32_t n) { return (n + kAlign - 1) / kAlign * kAlign; }
constexpr int32_t kMessageSize = roundUp(int32_t(sizeof(AudioController::Message)));

// A record's size in its ring: the record, then its inline user data.
inline int32_t recordSize(const AudioController::Message* m) QUILLO_NONBLOCKING {
    return kMessageSize + (m->userInfoByReference ? 0 : roundUp(m->userInfoLength));
}

inline void cpuRelax() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

// Buffer-list views the render pass and the offline driver share.
void sliceBufferList(const AudioBufferList* list, const AudioStreamDescription& d, uint32_t offset, uint32_t frames,
                     AudioBufferList* view) QUILLO_NONBLOCKING;
void zeroBufferList(AudioBufferList* list, const AudioStreamDescription& d, uint32_t frames) QUILLO_NONBLOCKING;

}  // namespace audio_controller_detail
