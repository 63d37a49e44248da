#pragma once
// A single-producer, single-consumer byte ring whose memory is mapped twice in
// a row: the second copy mirrors the first, so any region of up to `length`
// bytes that starts at the head or the tail is contiguous and can be written
// or read in place without wrapping. head/tail/produce/consume never allocate,
// lock or make system calls, so either side may be the render thread.
#include <atomic>
#include <cstdint>

#include "engine/Realtime.h"

class CircularBuffer {
public:
    CircularBuffer() = default;
    ~CircularBuffer();
    CircularBuffer(const CircularBuffer&) = delete;
    CircularBuffer& operator=(const CircularBuffer&) = delete;

    // Rounds `length` up to whole pages and maps the memory (three attempts).
    // On failure logs "Couldn't map buffer memory to end of buffer" and
    // answers false.
    bool init(int32_t length);
    void cleanup();
    bool valid() const { return buffer_ != nullptr; }

    int32_t length() const { return length_; }
    int32_t fillCount() const { return fillCount_.load(std::memory_order_acquire); }

    // Reader: the bytes available at the tail (nullptr when empty).
    void* tail(int32_t* availableBytes) QUILLO_NONBLOCKING;
    void consume(int32_t amount) QUILLO_NONBLOCKING;
    // Writer: the free space at the head (nullptr when full).
    void* head(int32_t* availableBytes) QUILLO_NONBLOCKING;
    void produce(int32_t amount) QUILLO_NONBLOCKING;
    // Writes `len` bytes at once if they fit.
    bool produceBytes(const void* src, int32_t len) QUILLO_NONBLOCKING;

    // Reader-side reset: consumes everything.
    void clear() QUILLO_NONBLOCKING;

private:
    char* buffer_ = nullptr;
    int32_t length_ = 0;
    int32_t tail_ = 0;  // reader only
    int32_t head_ = 0;  // writer only
    std::atomic<int32_t> fillCount_{0};
};
