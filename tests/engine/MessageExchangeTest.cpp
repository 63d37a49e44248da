// The lock-free exchange between the main thread and the render thread, with
// the null device rendering on its own thread (as a device would) and with the
// offline driver. Also built with ThreadSanitizer (test_engine_tsan).
#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "engine/AudioController.h"
#include "engine/CircularBuffer.h"
#include "tests/engine/EngineTestSupport.h"

namespace {

const AudioStreamDescription kEngine = AudioController::nonInterleaved16BitStereoAudioDescription();

struct NullEngine {
    explicit NullEngine(bool startIt = true) {
        AudioControllerOptions o;
        o.driver = AudioDriverKind::Null;
        o.mainThread = &main;
        controller = std::make_unique<AudioController>(kEngine, false, o);
        if (startIt) {
            AudioError error;
            EXPECT_TRUE(controller->start(&error));
        }
    }
    RunLoopMainThread main;
    std::unique_ptr<AudioController> controller;
};

TEST(CircularBuffer, MirroredMemoryMakesEveryRegionContiguous) {
    CircularBuffer ring;
    ASSERT_TRUE(ring.init(100));
    EXPECT_EQ(ring.length() % 4096, 0) << "rounded up to whole pages";
    const int32_t len = ring.length();
    std::vector<char> pattern(size_t(len) - 10);
    for (size_t i = 0; i < pattern.size(); ++i) pattern[i] = char(i * 31 + 7);
    for (int round = 0; round < 5; ++round) {
        // Each round wraps at a different place.
        int32_t space = 0;
        ASSERT_NE(ring.head(&space), nullptr);
        EXPECT_EQ(space, len);
        ASSERT_TRUE(ring.produceBytes(pattern.data(), int32_t(pattern.size())));
        EXPECT_FALSE(ring.produceBytes(pattern.data(), 11));
        int32_t avail = 0;
        const char* tail = static_cast<const char*>(ring.tail(&avail));
        ASSERT_EQ(avail, int32_t(pattern.size()));
        EXPECT_EQ(std::memcmp(tail, pattern.data(), pattern.size()), 0);
        ring.consume(avail);
        EXPECT_EQ(ring.fillCount(), 0);
        EXPECT_EQ(ring.tail(&avail), nullptr);
    }
}

TEST(MessageExchange, ResponseRunsOnTheMainThreadAfterItsBlock) {
    NullEngine e;
    std::atomic<int> order{0};
    std::atomic<int> blockAt{0}, responseAt{0};
    std::thread::id responseThread;
    e.controller->performAsynchronousMessageExchangeWithBlock([&] { blockAt.store(++order); },
                                                              [&] {
                                                                  responseAt.store(++order);
                                                                  responseThread = std::this_thread::get_id();
                                                              });
    EXPECT_EQ(responseAt.load(), 0) << "the response waits for the render thread";
    EXPECT_TRUE(e.main.runUntil([&] { return responseAt.load() != 0; }, std::chrono::seconds(5)));
    EXPECT_EQ(blockAt.load(), 1);
    EXPECT_EQ(responseAt.load(), 2);
    EXPECT_EQ(responseThread, std::this_thread::get_id());
    EXPECT_EQ(e.controller->pendingResponses(), 0);
}

TEST(MessageExchange, SynchronousExchangeFromABackgroundThreadGetsItsOwnResponse) {
    NullEngine e;
    std::atomic<bool> mainResponse{false};
    std::atomic<int> ran{0};
    std::atomic<bool> finished{false};
    // Main-thread traffic at the same time, polled by the main thread.
    for (int i = 0; i < 20; ++i)
        e.controller->performAsynchronousMessageExchangeWithBlock([] {}, [&] { mainResponse.store(true); });
    std::thread background([&] {
        for (int i = 0; i < 10; ++i) e.controller->performSynchronousMessageExchangeWithBlock([&] { ran.fetch_add(1); });
        finished.store(true);
    });
    EXPECT_TRUE(e.main.runUntil([&] { return finished.load(); }, std::chrono::seconds(10)));
    background.join();
    EXPECT_EQ(ran.load(), 10);
    EXPECT_TRUE(e.main.runUntil([&] { return e.controller->pendingResponses() == 0; }, std::chrono::seconds(5)));
    EXPECT_TRUE(mainResponse.load());
}

TEST(MessageExchange, SynchronousExchangeOnTheMainThreadRunsOnTheRenderThread) {
    NullEngine e;
    std::thread::id blockThread;
    e.controller->performSynchronousMessageExchangeWithBlock([&] { blockThread = std::this_thread::get_id(); });
    EXPECT_NE(blockThread, std::thread::id());
    EXPECT_NE(blockThread, std::this_thread::get_id());
}

TEST(MessageExchange, StoppedEngineCompletesAtOnceWithoutATimeOut) {
    LogCapture log;
    NullEngine e(false);
    const auto t0 = std::chrono::steady_clock::now();
    bool ran = false;
    e.controller->performSynchronousMessageExchangeWithBlock([&] { ran = true; });
    EXPECT_TRUE(ran);
    bool responded = false;
    ran = false;
    e.controller->performAsynchronousMessageExchangeWithBlock([&] { ran = true; }, [&] { responded = true; });
    EXPECT_TRUE(ran);
    EXPECT_TRUE(responded) << "on the main thread a stopped engine answers at once";

    std::atomic<bool> bgRan{false};
    std::thread([&] { e.controller->performSynchronousMessageExchangeWithBlock([&] { bgRan.store(true); }); }).join();
    EXPECT_TRUE(bgRan.load());
    EXPECT_LT(std::chrono::steady_clock::now() - t0, std::chrono::milliseconds(500));
    EXPECT_EQ(log.countContaining("Timed out"), 0);

    // Stopping a running engine applies what is still queued.
    AudioError error;
    ASSERT_TRUE(e.controller->start(&error));
    e.controller->stop();
    EXPECT_EQ(e.controller->pendingResponses(), 0);
}

TEST(MessageExchange, AsynchronousExchangeFromABackgroundThreadOfAStoppedEngineGoesThroughTheMainThread) {
    NullEngine e(false);
    std::atomic<bool> ran{false}, responded{false};
    std::thread([&] {
        e.controller->performAsynchronousMessageExchangeWithBlock([&] { ran.store(true); },
                                                                  [&] { responded.store(true); });
    }).join();
    EXPECT_TRUE(e.main.runUntil([&] { return responded.load(); }, std::chrono::seconds(5)));
    EXPECT_TRUE(ran.load());
}

struct Note {
    int32_t player;
    int32_t step;
    char text[8];
};

void recordNote(AudioController*, void* userInfo, int32_t length);
std::vector<Note>* gNotes = nullptr;
void recordNote(AudioController*, void* userInfo, int32_t length) {
    ASSERT_EQ(length, int32_t(sizeof(Note)));
    gNotes->push_back(*static_cast<Note*>(userInfo));
}

// Sends `perPass` notes from the render thread on every pass.
class ChattyChannel : public AudioChannel {
public:
    explicit ChattyChannel(int player, int perPass) : player_(player), perPass_(perPass) {}
    void render(AudioController* c, const AudioTimeStamp&, uint32_t, AudioBufferList*) QUILLO_NONBLOCKING override {
        for (int i = 0; i < perPass_; ++i) {
            Note n{player_, step_++, "step"};
            AudioControllerSendAsynchronousMessageToMainThread(c, recordNote, &n, sizeof n);
        }
    }

private:
    int player_, perPass_;
    int step_ = 0;
};

TEST(MessageExchange, RenderToMainMessagesArriveInOrderWithTheirDataCopied) {
    std::vector<Note> notes;
    gNotes = &notes;
    RunLoopMainThread main;
    AudioController c(kEngine, false, offlineOptions(&main));
    AudioError error;
    ASSERT_TRUE(c.start(&error));
    c.addChannels({std::make_shared<ChattyChannel>(1, 3), std::make_shared<ChattyChannel>(2, 1)});
    c.renderOffline(256 * 10);
    EXPECT_TRUE(notes.empty()) << "delivered on the main thread only";
    c.pollForMessageResponses();
    ASSERT_EQ(notes.size(), 40u);
    int next1 = 0, next2 = 0;
    for (const Note& n : notes) {
        EXPECT_STREQ(n.text, "step");
        if (n.player == 1) EXPECT_EQ(n.step, next1++);
        else EXPECT_EQ(n.step, next2++);
    }
    gNotes = nullptr;
}

TEST(MessageExchange, ABurstOfHundredMillisecondsOfHeavyTrafficFits) {
    // 100 ms are 18 passes of 256 frames. 30 players sending 10 notes per
    // step at 300 bpm (20 steps per second) send 600 notes in that time. Send
    // more than three times as much without polling: nothing may be dropped.
    std::vector<Note> notes;
    gNotes = &notes;
    RunLoopMainThread main;
    AudioController c(kEngine, false, offlineOptions(&main));
    AudioError error;
    ASSERT_TRUE(c.start(&error));
    std::vector<std::shared_ptr<AudioChannel>> chatty;
    for (int p = 0; p < 30; ++p) chatty.push_back(std::make_shared<ChattyChannel>(p, 4));
    c.addChannels(chatty);
    c.renderOffline(256 * 18);
    EXPECT_EQ(c.droppedMessages(), 0);
    c.pollForMessageResponses();
    EXPECT_EQ(notes.size(), size_t(30 * 4 * 18));

    // Past the ring's size messages are dropped and counted, never blocking.
    LogCapture log;
    c.renderOffline(256 * 200);
    EXPECT_GT(c.droppedMessages(), 0);
    c.housekeeping();
    EXPECT_EQ(log.countContaining("Engine: Dropped"), 1);
    c.pollForMessageResponses();
    // Requests still get through after a flood.
    bool ran = false;
    c.performSynchronousMessageExchangeWithBlock([&] { ran = true; });
    EXPECT_TRUE(ran);
    gNotes = nullptr;
}

TEST(MessageExchange, StressManyThreadsAndTheMainThreadAgainstTheRenderThread) {
    NullEngine e;
    constexpr int kThreads = 3;
    constexpr int kPerThread = 40;
    std::atomic<int> blocks{0}, responses{0}, finishedThreads{0};
    std::atomic<int> counter{0};  // touched by render-thread blocks only
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < kPerThread; ++i) {
                int before = -1;
                e.controller->performSynchronousMessageExchangeWithBlock([&] {
                    before = counter.fetch_add(1);
                    blocks.fetch_add(1);
                });
                EXPECT_GE(before, 0) << "the block ran before the exchange returned";
            }
            finishedThreads.fetch_add(1);
        });
    }
    int sent = 0;
    auto allDone = [&] { return finishedThreads.load() == kThreads && responses.load() == sent; };
    for (int i = 0; i < 200; ++i) {
        e.controller->performAsynchronousMessageExchangeWithBlock([&] { blocks.fetch_add(1); },
                                                                  [&] { responses.fetch_add(1); });
        ++sent;
        if (i % 20 == 0) e.main.runPending();
    }
    EXPECT_TRUE(e.main.runUntil(allDone, std::chrono::seconds(30)));
    for (auto& t : threads) t.join();
    EXPECT_EQ(blocks.load(), kThreads * kPerThread + sent);
    EXPECT_EQ(responses.load(), sent);
    EXPECT_EQ(e.controller->pendingResponses(), 0);
}

TEST(MessageExchange, OfflineDriverRunsRequestsAtOnceOnTheCallingThread) {
    // Nothing renders concurrently with the offline driver unless someone
    // calls renderOffline, so waiting for a render pass could wait for ever.
    LogCapture log;
    RunLoopMainThread main;
    AudioController c(kEngine, false, offlineOptions(&main));
    AudioError error;
    ASSERT_TRUE(c.start(&error));
    std::thread::id where;
    c.performSynchronousMessageExchangeWithBlock([&] { where = std::this_thread::get_id(); });
    EXPECT_EQ(where, std::this_thread::get_id());
    bool responded = false;
    c.performAsynchronousMessageExchangeWithBlock([] {}, [&] { responded = true; });
    EXPECT_TRUE(responded);
    EXPECT_EQ(log.countContaining("Timed out"), 0);
}

}  // namespace
