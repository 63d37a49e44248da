#pragma once
// The engine's plain data types: stream descriptions, buffer lists, time
// stamps and errors. Laid out like the platform types the application was
// written against, so that player code reads the same on every platform.
#include <cstdint>
#include <string>

struct AudioStreamDescription {
    double mSampleRate;
    uint32_t mFormatID;
    uint32_t mFormatFlags;
    uint32_t mBytesPerPacket;
    uint32_t mFramesPerPacket;
    uint32_t mBytesPerFrame;
    uint32_t mChannelsPerFrame;
    uint32_t mBitsPerChannel;
    uint32_t mReserved;
};

struct AudioBuffer {
    uint32_t mNumberChannels;
    uint32_t mDataByteSize;
    void* mData;
};

// At most two buffers: the engine is stereo. Non-interleaved formats use one
// buffer per channel (0 left, 1 right); interleaved formats use buffer 0 only.
struct AudioBufferList {
    uint32_t mNumberBuffers;
    AudioBuffer mBuffers[2];
};

// mSampleTime counts frames; mHostTime is in host ticks (nanoseconds of the
// steady clock, see AudioHostTicksPerSecond()).
struct AudioTimeStamp {
    double mSampleTime;
    uint64_t mHostTime;
};

struct AudioError {
    std::string domain;
    int code = 0;
    std::string localizedDescription;
};

// Four-character codes, written the way the platform writes them.
constexpr uint32_t audioFourCC(const char (&s)[5]) {
    return (uint32_t(uint8_t(s[0])) << 24) | (uint32_t(uint8_t(s[1])) << 16) | (uint32_t(uint8_t(s[2])) << 8) |
           uint32_t(uint8_t(s[3]));
}

constexpr uint32_t kAudioFormatLinearPCM = audioFourCC("lpcm");

constexpr uint32_t kAudioFormatFlagIsFloat = 1u << 0;
constexpr uint32_t kAudioFormatFlagIsBigEndian = 1u << 1;
constexpr uint32_t kAudioFormatFlagIsSignedInteger = 1u << 2;
constexpr uint32_t kAudioFormatFlagIsPacked = 1u << 3;
constexpr uint32_t kAudioFormatFlagIsNonInterleaved = 1u << 5;

// File type codes accepted by AudioFileWriter.
constexpr uint32_t kAudioFileWAVEType = audioFourCC("WAVE");
constexpr uint32_t kAudioFileAIFFType = audioFourCC("AIFF");
constexpr uint32_t kAudioFileM4AType = audioFourCC("m4af");

// Error domain of platform-status errors (loader and writer failures).
inline const char* const kAudioErrorOSStatusDomain = "org.quillo.audio-status";

// Host clock: nanoseconds of std::chrono::steady_clock.
uint64_t AudioCurrentHostTime();
constexpr double AudioHostTicksPerSecond() { return 1e9; }

// Description helpers.
inline bool audioDescriptionIsFloat(const AudioStreamDescription& d) {
    return (d.mFormatFlags & kAudioFormatFlagIsFloat) != 0;
}
inline bool audioDescriptionIsNonInterleaved(const AudioStreamDescription& d) {
    return (d.mFormatFlags & kAudioFormatFlagIsNonInterleaved) != 0;
}
inline bool operator==(const AudioStreamDescription& a, const AudioStreamDescription& b) {
    return a.mSampleRate == b.mSampleRate && a.mFormatID == b.mFormatID && a.mFormatFlags == b.mFormatFlags &&
           a.mBytesPerPacket == b.mBytesPerPacket && a.mFramesPerPacket == b.mFramesPerPacket &&
           a.mBytesPerFrame == b.mBytesPerFrame && a.mChannelsPerFrame == b.mChannelsPerFrame &&
           a.mBitsPerChannel == b.mBitsPerChannel;
}

// Allocates a zeroed buffer list for `frames` frames of `description`: a
// malloc'd list whose buffers' mData are malloc'd too (one buffer per channel
// for non-interleaved formats, one in all otherwise). Returns nullptr when
// memory runs out. Free with freeBufferList (or free() on each mData, then on
// the list).
AudioBufferList* allocateBufferList(const AudioStreamDescription& description, uint32_t frames);
void freeBufferList(AudioBufferList* list);
