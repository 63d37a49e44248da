// The message exchange between the main side and the render thread: requests
// (a block to run on the render thread, and optionally a response for the
// thread that sent it) and render-to-main messages, in two lock-free rings.
#include <cassert>
#include <cstring>
#include <thread>

#include "engine/AudioControllerRecords.h"
#include "library/util/Log.h"

using namespace audio_controller_detail;
using Message = AudioController::Message;


void AudioController::sendRequest(std::function<void()> block, std::function<void()> response, bool fromThisThread) {
    Message m{};
    m.block = block ? new std::function<void()>(std::move(block)) : nullptr;
    m.responseBlock = response ? new std::function<void()>(std::move(response)) : nullptr;
    m.responseExpected = m.responseBlock != nullptr;
    m.hasSourceThread = fromThisThread;
    m.sourceThread = pthread_self();
    if (!m.block && !m.responseBlock) return;

    for (int attempt = 0;; ++attempt) {
        {
            std::lock_guard<std::mutex> lock(messageMutex_);
            int32_t avail = 0;
            void* head = requests_.head(&avail);
            if (avail >= kMessageSize) {
                if (m.responseExpected) {
                    pendingResponses_.fetch_add(1);
                    pollWake_.notify_all();  // poll faster while answers are due
                }
                std::memcpy(head, &m, sizeof m);
                requests_.produce(kMessageSize);
                return;
            }
        }
        // The request ring is full: let the render thread drain it, or drain
        // it here when nothing renders.
        if (!rendersConcurrently() || attempt > 1000) {
            assert(attempt <= 1000 && "availableBytes >= sizeof(message_t)");
            runPendingRequestsHere();
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
}

void AudioController::performAsynchronousMessageExchangeWithBlock(std::function<void()> block,
                                                                  std::function<void()> response) {
    sendRequest(std::move(block), std::move(response), false);
    if (rendersConcurrently()) return;
    // Nothing reads the ring on its own: the engine is stopped, or the offline
    // driver renders only inside renderOffline. Run the request now; the render
    // guard keeps it apart from an offline render on another thread.
    if (offline_ || mainThread_->isCurrent()) {
        runPendingRequestsHere();
        if (mainThread_->isCurrent()) pollForMessageResponses();
        else requestPoll();
        return;
    }
    std::weak_ptr<int> alive = alive_;
    mainThread_->post([this, alive] {
        if (alive.expired()) return;
        runPendingRequestsHere();
        pollForMessageResponses();
    });
}

void AudioController::performSynchronousMessageExchangeWithBlock(std::function<void()> block) {
    auto done = std::make_shared<std::atomic<bool>>(false);
    sendRequest(std::move(block), [done] { done->store(true); }, true);

    if (rendersConcurrently()) {
        const uint64_t deadline = AudioCurrentHostTime() + uint64_t(1.0 * AudioHostTicksPerSecond());
        double interval = preferredBufferDuration();
        if (interval <= 0) interval = 0.01;
        while (!done->load() && running() && AudioCurrentHostTime() < deadline) {
            pollForMessageResponses();
            if (done->load()) break;
            std::this_thread::sleep_for(std::chrono::duration<double>(interval));
        }
        if (!done->load() && running()) qlog("Engine: Timed out while performing message exchange");
    }
    if (!done->load()) {
        // Nobody rendered it (stopped, offline, or stalled): run it here.
        runPendingRequestsHere();
        pollForMessageResponses();
    }
}

void AudioController::runPendingRequestsHere() {
    while (renderGuard_.exchange(true, std::memory_order_acquire)) std::this_thread::yield();
    processPendingMessagesOnRealtimeThread();
    renderGuard_.store(false, std::memory_order_release);
}

void AudioController::processPendingMessagesOnRealtimeThread() {
    int32_t avail = 0;
    char* p = static_cast<char*>(requests_.tail(&avail));
    while (p && avail >= kMessageSize) {
        Message m;
        std::memcpy(&m, p, sizeof m);
        assert(m.userInfoLength == 0 && "buffer->userInfoLength == 0");
        requests_.consume(kMessageSize);
        p += kMessageSize;
        avail -= kMessageSize;
        if (m.block) (*m.block)();
        // Back to the main side: for the response, and to free the blocks there.
        if (!responses_.produceBytes(&m, kMessageSize)) {
            assert(false && "availableBytes >= sizeof(message_t)");
            droppedMessages_.fetch_add(1, std::memory_order_relaxed);
        }
    }
}

bool AudioController::sendMessageToMainThread(AudioControllerMainThreadMessageHandler handler, const void* userInfo,
                                              int32_t userInfoLength) {
    const bool inlineData = userInfo && userInfoLength > 0;
    if (userInfoLength < 0) userInfoLength = 0;
    const int32_t size = kMessageSize + (inlineData ? roundUp(userInfoLength) : 0);
    int32_t avail = 0;
    char* head = static_cast<char*>(responses_.head(&avail));
    // Keep room for the answers to requests: those must never be lost.
    if (!head || avail < size + kRequestRingBytes) {
        droppedMessages_.fetch_add(1, std::memory_order_relaxed);
        return false;
    }
    Message m{};
    m.handler = handler;
    m.userInfoByReference = inlineData ? nullptr : userInfo;
    m.userInfoLength = inlineData ? userInfoLength : 0;
    std::memcpy(head, &m, sizeof m);
    if (inlineData) std::memcpy(head + kMessageSize, userInfo, size_t(userInfoLength));
    responses_.produce(size);
    return true;
}

void AudioControllerSendAsynchronousMessageToMainThread(AudioController* controller,
                                                        AudioControllerMainThreadMessageHandler handler,
                                                        const void* userInfo, int32_t userInfoLength) {
    if (controller) controller->sendMessageToMainThread(handler, userInfo, userInfoLength);
}

void AudioController::pollForMessageResponses() {
    const bool onMain = mainThread_->isCurrent();
    const pthread_t self = pthread_self();
    char small[256];
    std::vector<char> large;
    for (;;) {
        Message m{};
        const char* data = nullptr;
        bool found = false;
        {
            std::lock_guard<std::mutex> lock(messageMutex_);
            int32_t avail = 0;
            char* p = static_cast<char*>(responses_.tail(&avail));
            int32_t offset = 0, consumable = 0;
            bool prefixServiced = true;
            while (p && offset < avail) {
                auto* r = reinterpret_cast<Message*>(p + offset);
                const int32_t size = recordSize(r);
                if (!r->replyServiced && !found) {
                    const bool mine = r->hasSourceThread ? pthread_equal(r->sourceThread, self) != 0 : onMain;
                    if (mine) {
                        std::memcpy(&m, r, sizeof m);
                        if (!r->userInfoByReference && r->userInfoLength > 0) {
                            char* dst = small;
                            if (size_t(r->userInfoLength) > sizeof small) {
                                large.resize(size_t(r->userInfoLength));
                                dst = large.data();
                            }
                            std::memcpy(dst, p + offset + kMessageSize, size_t(r->userInfoLength));
                            data = dst;
                        } else {
                            data = static_cast<const char*>(r->userInfoByReference);
                        }
                        r->replyServiced = true;
                        found = true;
                    }
                }
                if (prefixServiced && r->replyServiced) consumable += size;
                else prefixServiced = false;
                offset += size;
                if (found && !prefixServiced) break;
            }
            if (consumable > 0) responses_.consume(consumable);
        }
        if (!found) return;
        if (m.responseBlock) (*m.responseBlock)();
        if (m.handler) m.handler(this, const_cast<char*>(data), m.userInfoLength);
        delete m.block;
        delete m.responseBlock;
        if (m.responseExpected) pendingResponses_.fetch_sub(1);
    }
}
