#include <chrono>
#include <cstdlib>

#include "engine/AudioTypes.h"

uint64_t AudioCurrentHostTime() {
    return uint64_t(std::chrono::duration_cast<std::chrono::nanoseconds>(
                        std::chrono::steady_clock::now().time_since_epoch())
                        .count());
}

AudioBufferList* allocateBufferList(const AudioStreamDescription& d, uint32_t frames) {
    const bool nonInterleaved = audioDescriptionIsNonInterleaved(d);
    const uint32_t channels = d.mChannelsPerFrame ? d.mChannelsPerFrame : 1;
    const uint32_t buffers = nonInterleaved ? channels : 1;
    if (buffers > 2 || d.mBytesPerFrame == 0) return nullptr;
    auto* list = static_cast<AudioBufferList*>(std::calloc(1, sizeof(AudioBufferList)));
    if (!list) return nullptr;
    list->mNumberBuffers = buffers;
    const size_t bytes = size_t(frames) * d.mBytesPerFrame;
    for (uint32_t i = 0; i < buffers; ++i) {
        list->mBuffers[i].mNumberChannels = nonInterleaved ? 1 : channels;
        list->mBuffers[i].mDataByteSize = uint32_t(bytes);
        // At least one byte so that an empty list still has real buffers.
        list->mBuffers[i].mData = std::calloc(bytes ? bytes : 1, 1);
        if (!list->mBuffers[i].mData) {
            freeBufferList(list);
            return nullptr;
        }
    }
    return list;
}

void freeBufferList(AudioBufferList* list) {
    if (!list) return;
    for (uint32_t i = 0; i < list->mNumberBuffers && i < 2; ++i) std::free(list->mBuffers[i].mData);
    std::free(list);
}
