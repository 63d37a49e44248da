// Calls into the controller from handlers that run while another call waits
// for the render thread, and main-thread calls made while the driver is
// rebuilt on a background thread.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

#include "engine/AudioController.h"
#include "engine/AudioFilePlayer.h"
#include "tests/engine/EngineTestSupport.h"

namespace {

const AudioStreamDescription kEngine = AudioController::nonInterleaved16BitStereoAudioDescription();

// A one-shot preview of `frames` frames of (1000, -1000), removed upon finish.
std::shared_ptr<AudioFilePlayer> preview(AudioController* c, uint32_t frames) {
    AudioBufferList* audio = allocateBufferList(kEngine, frames);
    for (uint32_t k = 0; k < frames; ++k) {
        static_cast<int16_t*>(audio->mBuffers[0].mData)[k] = 1000;
        static_cast<int16_t*>(audio->mBuffers[1].mData)[k] = -1000;
    }
    auto player = std::make_shared<AudioFilePlayer>("preview.wav", c, audio, frames);
    player->setRemoveUponFinish(true);
    return player;
}

TEST(ControllerReentry, PreviewRemovedWhileItsFinishReportIsQueued) {
    // The application's removeOnesht just as the preview ends: the removal's
    // own exchange runs the queued finish report, which removes the same
    // channel again from inside the first removal.
    RunLoopMainThread main;
    AudioController c(kEngine, false, offlineOptions(&main));
    ASSERT_TRUE(c.start(nullptr));
    for (int round = 0; round < 3; ++round) {
        auto player = preview(&c, 300);
        int completions = 0;
        player->completionBlock = [&] { ++completions; };
        c.addChannels({player});
        c.renderOffline(512);  // it ends; the report waits for the main thread
        c.removeChannels({player});
        EXPECT_EQ(completions, 1);
        EXPECT_TRUE(c.channels().empty());
    }
}

// Sends a report to the main thread from its first render.
class ReportingChannel : public ConstantChannel {
public:
    ReportingChannel(AudioControllerMainThreadMessageHandler handler, void* target)
        : ConstantChannel(7, 7), handler_(handler), target_(target) {}
    void render(AudioController* c, const AudioTimeStamp& time, uint32_t frames,
                AudioBufferList* audio) QUILLO_NONBLOCKING override {
        ConstantChannel::render(c, time, frames, audio);
        if (!sent_) AudioControllerSendAsynchronousMessageToMainThread(c, handler_, target_, 0);
        sent_ = true;
    }

private:
    AudioControllerMainThreadMessageHandler handler_;
    void* target_;
    bool sent_ = false;
};

struct Scene {
    AudioController* c;
    AudioChannelGroup* group;
    std::shared_ptr<ConstantChannel> a, b, added;
    std::shared_ptr<AudioReceiver> tap;
    int handled = 0;
};

class NullReceiver : public AudioReceiver {
    void receiverCallback(AudioController*, const void*, const AudioTimeStamp&, uint32_t,
                          const AudioBufferList*) QUILLO_NONBLOCKING override {}
};

// A screen's report handler that tears down and builds up at once.
void tearDownAndAdd(AudioController*, void* userInfo, int32_t) {
    auto* s = static_cast<Scene*>(userInfo);
    ++s->handled;
    s->c->removeChannels({s->a, s->b});
    s->c->removeOutputReceiver(s->tap);
    s->c->removeChannelGroup(s->group);
    s->c->addChannels({s->added});
}

TEST(ControllerReentry, HandlerRemovesAndAddsFromInsideAnotherExchange) {
    // The report waits until one of the three removals below waits for the
    // render thread; then the handler removes, from inside it, what all
    // three remove, and adds a channel.
    for (int first = 0; first < 3; ++first) {
        for (AudioDriverKind driver : {AudioDriverKind::Offline, AudioDriverKind::Null}) {
            SCOPED_TRACE(std::string(driver == AudioDriverKind::Offline ? "offline" : "null device") + ", first call " +
                         std::to_string(first));
            RunLoopMainThread main;
            AudioControllerOptions options = offlineOptions(&main);
            options.driver = driver;
            AudioController c(kEngine, false, options);
            Scene s{&c, c.createChannelGroup(), constantChannel(1, 1), constantChannel(2, 2),
                    constantChannel(100, 100), std::make_shared<NullReceiver>()};
            c.addChannels({s.a}, s.group);
            c.addChannels({s.b});
            c.addOutputReceiver(s.tap);
            auto reporter = std::make_shared<ReportingChannel>(tearDownAndAdd, &s);
            c.addChannels({reporter});
            ASSERT_TRUE(c.start(nullptr));
            if (driver == AudioDriverKind::Offline) c.renderOffline(256);
            else ASSERT_TRUE(main.runUntil([&] { return reporter->renders.load() > 0; }, std::chrono::seconds(10)));

            const std::function<void()> removals[3] = {[&] { c.removeChannels({s.a, s.b}); },
                                                       [&] { c.removeOutputReceiver(s.tap); },
                                                       [&] { c.removeChannelGroup(s.group); }};
            for (int k = 0; k < 3; ++k) removals[(first + k) % 3]();
            EXPECT_EQ(s.handled, 1);
            const auto left = c.channels();
            ASSERT_EQ(left.size(), 2u);
            EXPECT_EQ(left[0], reporter);
            EXPECT_EQ(left[1], s.added);
            EXPECT_TRUE(c.outputReceivers().empty());
            EXPECT_TRUE(c.topLevelChannelGroups().empty());
            const int aRenders = s.a->renders.load();
            if (driver == AudioDriverKind::Offline) c.renderOffline(256);
            EXPECT_TRUE(main.runUntil([&] { return s.added->renders.load() > 0; }, std::chrono::seconds(10)));
            EXPECT_EQ(s.a->renders.load(), aRenders);
            c.stop();
        }
    }
}

TEST(ControllerReentry, ReleasedGroupsAreReusedSoTheTopLevelNeverFills) {
    RunLoopMainThread main;
    AudioController c(kEngine, false, offlineOptions(&main));
    ASSERT_TRUE(c.start(nullptr));
    for (int play = 0; play < 300; ++play) {
        // A two-row track: a group per row, filled, then stopped.
        AudioChannelGroup* rows[2] = {c.createChannelGroup(), c.createChannelGroup()};
        for (AudioChannelGroup* g : rows) {
            ASSERT_NE(g, nullptr) << "play " << play;
            EXPECT_EQ(c.volume(g), 1.0f);
            c.setVolume(0.5f, g);
            c.addChannels({constantChannel(1, 1)}, g);
        }
        c.releaseChannelGroup(rows[0]);
        c.releaseChannelGroup(rows[1]);  // emptied by the release if still filled
    }
    EXPECT_EQ(c.topLevelChannelGroups().size(), 2u);
    EXPECT_TRUE(c.channels().empty());
}

TEST(ControllerRebuild, MainThreadCallsDoNotWaitForAnInputSwitchInTheBackground) {
    RunLoopMainThread main;
    AudioControllerOptions options;
    options.driver = AudioDriverKind::Null;
    options.mainThread = &main;
    options.rebuildDelay = std::chrono::milliseconds(2000);
    AudioController c(kEngine, false, options);
    ASSERT_TRUE(c.start(nullptr));
    auto channel = constantChannel(3, 3);
    c.addChannels({channel});

    std::atomic<bool> rebuilt{false};
    std::thread background([&] {
        c.updateWithAudioDescription(kEngine, true, false, true);  // the sound editor's microphone switch
        rebuilt.store(true);
    });
    // The rebuild has stopped the device and now waits before restarting it.
    while (c.running()) std::this_thread::yield();

    const auto t0 = std::chrono::steady_clock::now();
    EXPECT_EQ(c.audioDescription(), kEngine);
    EXPECT_FALSE(c.audioInputAvailable());
    auto added = constantChannel(4, 4);
    c.addChannels({added});
    c.removeChannels({channel});
    auto tap = std::make_shared<NullReceiver>();
    EXPECT_TRUE(c.addOutputReceiver(tap));
    c.removeOutputReceiver(tap);
    c.performSynchronousMessageExchangeWithBlock([] {});
    EXPECT_EQ(c.channels().size(), 1u);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    EXPECT_FALSE(rebuilt.load()) << "the calls waited for the rebuild (" << seconds << " s)";
    background.join();
    EXPECT_TRUE(c.running());
    EXPECT_TRUE(c.inputEnabled());
    EXPECT_TRUE(main.runUntil([&] { return added->renders.load() > 0; }, std::chrono::seconds(10)));
    c.stop();
}

}  // namespace
