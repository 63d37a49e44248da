#include "engine/AudioChannel.h"

AudioChannel::~AudioChannel() = default;
AudioReceiver::~AudioReceiver() = default;

std::shared_ptr<BlockChannel> BlockChannel::channelWithBlock(Block block) {
    return std::make_shared<BlockChannel>(std::move(block));
}

void BlockChannel::render(AudioController*, const AudioTimeStamp& time, uint32_t frames, AudioBufferList* audio) {
    if (block_) block_(time, frames, audio);
}
