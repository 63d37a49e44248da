#include "engine/CircularBuffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cassert>
#include <cstring>

#include "library/util/Log.h"

CircularBuffer::~CircularBuffer() { cleanup(); }

bool CircularBuffer::init(int32_t length) {
    cleanup();
    const long page = sysconf(_SC_PAGESIZE);
    if (length <= 0) length = 1;
    const size_t size = ((size_t(length) + size_t(page) - 1) / size_t(page)) * size_t(page);

    for (int attempt = 0; attempt < 3; ++attempt) {
        int fd = memfd_create("quillo-ring", MFD_CLOEXEC);
        if (fd < 0) continue;
        if (ftruncate(fd, off_t(size)) != 0) {
            close(fd);
            continue;
        }
        // Reserve twice the length, then map the same memory onto both halves.
        void* reserved = mmap(nullptr, size * 2, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (reserved == MAP_FAILED) {
            close(fd);
            continue;
        }
        char* base = static_cast<char*>(reserved);
        void* first = mmap(base, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, fd, 0);
        void* second = first == MAP_FAILED
                           ? MAP_FAILED
                           : mmap(base + size, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, fd, 0);
        close(fd);
        if (first == MAP_FAILED || second == MAP_FAILED) {
            munmap(reserved, size * 2);
            continue;
        }
        buffer_ = base;
        length_ = int32_t(size);
        head_ = tail_ = 0;
        fillCount_.store(0);
        return true;
    }
    qlog("Couldn't map buffer memory to end of buffer");
    return false;
}

void CircularBuffer::cleanup() {
    if (buffer_) munmap(buffer_, size_t(length_) * 2);
    buffer_ = nullptr;
    length_ = 0;
    head_ = tail_ = 0;
    fillCount_.store(0);
}

void* CircularBuffer::tail(int32_t* availableBytes) {
    const int32_t fill = fillCount_.load(std::memory_order_acquire);
    *availableBytes = fill;
    if (fill == 0) return nullptr;
    return buffer_ + tail_;
}

void CircularBuffer::consume(int32_t amount) {
    tail_ = (tail_ + amount) % length_;
    [[maybe_unused]] int32_t after = fillCount_.fetch_sub(amount, std::memory_order_seq_cst) - amount;
    assert(after >= 0 && "buffer->fillCount >= 0");
}

void* CircularBuffer::head(int32_t* availableBytes) {
    const int32_t space = length_ - fillCount_.load(std::memory_order_acquire);
    *availableBytes = space;
    if (space == 0) return nullptr;
    return buffer_ + head_;
}

void CircularBuffer::produce(int32_t amount) {
    head_ = (head_ + amount) % length_;
    [[maybe_unused]] int32_t after = fillCount_.fetch_add(amount, std::memory_order_seq_cst) + amount;
    assert(after <= length_ && "buffer->fillCount <= buffer->length");
}

bool CircularBuffer::produceBytes(const void* src, int32_t len) {
    int32_t space = 0;
    void* ptr = head(&space);
    if (space < len) return false;
    std::memcpy(ptr, src, size_t(len));
    produce(len);
    return true;
}

void CircularBuffer::clear() {
    int32_t fill = 0;
    if (tail(&fill)) consume(fill);
}
