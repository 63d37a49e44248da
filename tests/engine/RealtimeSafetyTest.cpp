// The render path under load: 80 channels in 10 groups, receivers attached and
// messages flowing both ways, with edits made while it plays. In the
// RealtimeSanitizer tree (make build-rtsan) any allocation, free, lock or
// blocking call on the render thread stops the program, so these cases pass
// there only if the render path is clean.
//
// One case is deliberately bad: it locks and allocates inside a channel's
// render block and expects RealtimeSanitizer to kill the program. In the
// RealtimeSanitizer tree it is a death test (the child process must die with
// the sanitizer's report), which proves the checks above are armed; the
// other trees have no sanitizer to catch it and skip it.
#include <gtest/gtest.h>

#include <mutex>
#include <thread>

#include "engine/AudioController.h"
#include "tests/engine/EngineTestSupport.h"

namespace {

const AudioStreamDescription kEngine = AudioController::nonInterleaved16BitStereoAudioDescription();

struct Step {
    int32_t channel;
    int32_t frame;
};
std::atomic<int> gStepsSeen{0};
void onStep(AudioController*, void*, int32_t) { gStepsSeen.fetch_add(1); }

class Tap : public AudioReceiver {
public:
    void receiverCallback(AudioController*, const void*, const AudioTimeStamp&, uint32_t frames,
                          const AudioBufferList* audio) QUILLO_NONBLOCKING override {
        const auto* l = static_cast<const int16_t*>(audio->mBuffers[0].mData);
        int64_t sum = 0;
        for (uint32_t k = 0; k < frames; ++k) sum += l[k];
        total.fetch_add(sum, std::memory_order_relaxed);
        calls.fetch_add(1, std::memory_order_relaxed);
    }
    std::atomic<int64_t> total{0};
    std::atomic<int> calls{0};
};

// A sounding channel like a player's: a block that copies samples from a
// buffer and tells the main thread when it passes a "step".
std::shared_ptr<BlockChannel> soundingChannel(AudioController* c, int index, const int16_t* sound, uint32_t length) {
    auto position = std::make_shared<uint32_t>(0);
    return BlockChannel::channelWithBlock([c, index, sound, length, position](const AudioTimeStamp& time,
                                                                              uint32_t frames, AudioBufferList* audio) {
        auto* l = static_cast<int16_t*>(audio->mBuffers[0].mData);
        auto* r = static_cast<int16_t*>(audio->mBuffers[1].mData);
        for (uint32_t k = 0; k < frames; ++k) {
            const int16_t s = sound[(*position)++ % length];
            l[k] = s;
            r[k] = s;
        }
        if (uint64_t(time.mSampleTime) % 5512 < frames) {
            Step step{index, int32_t(time.mSampleTime)};
            AudioControllerSendAsynchronousMessageToMainThread(c, onStep, &step, sizeof step);
        }
    });
}

struct HeavyScene {
    explicit HeavyScene(AudioController& c) : sound(4410) {
        for (size_t i = 0; i < sound.size(); ++i) sound[i] = int16_t((i * 37) % 2000 - 1000);
        for (int g = 0; g < 10; ++g) {
            AudioChannelGroup* group = c.createChannelGroup();
            c.setVolume(0.8f, group);
            std::vector<std::shared_ptr<AudioChannel>> row;
            for (int i = 0; i < 8; ++i) {
                auto ch = soundingChannel(&c, g * 8 + i, sound.data(), uint32_t(sound.size()));
                ch->setVolume(0.5f);
                ch->setPan(float(i - 4) / 4.0f);
                row.push_back(ch);
                channels.push_back(ch);
            }
            c.addChannels(row, group);
            groups.push_back(group);
        }
        c.addOutputReceiver(output);
        c.addInputReceiver(input);
    }
    std::vector<int16_t> sound;
    std::vector<AudioChannelGroup*> groups;
    std::vector<std::shared_ptr<AudioChannel>> channels;
    std::shared_ptr<Tap> output = std::make_shared<Tap>();
    std::shared_ptr<Tap> input = std::make_shared<Tap>();
};

// Edits made from the main side while the render thread plays: volume, pan,
// pause, moving channels between groups, adding and removing channels,
// attaching receivers, and plain message exchanges.
void editWhilePlaying(AudioController& c, HeavyScene& scene, int rounds) {
    for (int i = 0; i < rounds; ++i) {
        auto& ch = scene.channels[size_t(i) % scene.channels.size()];
        ch->setVolume(float(i % 10) / 10.0f);
        ch->setChannelIsPlaying(i % 3 != 0);
        c.setVolume(float(i % 7) / 7.0f, scene.groups[size_t(i) % scene.groups.size()]);
        c.addChannels({ch}, scene.groups[size_t(i + 1) % scene.groups.size()]);
        auto extra = constantChannel(1, 1);
        c.addChannels({extra});
        c.removeChannels({extra});
        auto tap = std::make_shared<Tap>();
        c.addOutputReceiver(tap);
        c.removeOutputReceiver(tap);
        c.performAsynchronousMessageExchangeWithBlock([] {}, [] {});
        c.performSynchronousMessageExchangeWithBlock([] {});
    }
}

TEST(RealtimeSafety, HeavyRenderPassWithTrafficOffline) {
    RunLoopMainThread main;
    AudioController c(kEngine, true, offlineOptions(&main));
    AudioError error;
    ASSERT_TRUE(c.start(&error));
    HeavyScene scene(c);
    gStepsSeen.store(0);
    EngineBuffer out(256);
    std::atomic<bool> stop{false};
    std::thread renderer([&] {
        while (!stop.load()) c.renderOffline(256, out.list);
    });
    editWhilePlaying(c, scene, 100);
    stop.store(true);
    renderer.join();
    c.renderOffline(44100);
    main.runPending();
    c.pollForMessageResponses();
    EXPECT_GT(scene.output->calls.load(), 172);
    EXPECT_GT(scene.input->calls.load(), 172);
    EXPECT_GT(gStepsSeen.load(), 0);
    // No check on dropped messages here: this renderer runs unpaced, far faster
    // than a device, so whether the busy main thread keeps up depends on the
    // machine's load. Ring capacity under device-paced traffic is its own test.
}

TEST(RealtimeSafety, HeavyRenderPassWithTrafficOnTheNullDevice) {
    RunLoopMainThread main;
    AudioControllerOptions o;
    o.driver = AudioDriverKind::Null;
    o.mainThread = &main;
    AudioController c(kEngine, false, o);
    HeavyScene scene(c);
    gStepsSeen.store(0);
    AudioError error;
    ASSERT_TRUE(c.start(&error));
    // Messages to the render thread from a background thread and the main
    // thread at once, while the main thread also polls for answers.
    std::atomic<bool> done{false};
    std::thread background([&] {
        for (int i = 0; i < 30; ++i) c.performSynchronousMessageExchangeWithBlock([] {});
        done.store(true);
    });
    editWhilePlaying(c, scene, 10);
    EXPECT_TRUE(main.runUntil([&] { return done.load() && gStepsSeen.load() > 0; }, std::chrono::seconds(20)));
    background.join();
    c.stop();
    EXPECT_GT(scene.output->calls.load(), 0);
}

#if defined(QUILLO_RTSAN)
TEST(RealtimeSafety, AllocationOnTheRenderThreadIsCaught) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            AudioController c(kEngine, false, offlineOptions());
            AudioError error;
            c.start(&error);
            auto held = std::make_shared<std::mutex>();
            c.addChannels({BlockChannel::channelWithBlock([held](const AudioTimeStamp&, uint32_t frames,
                                                                 AudioBufferList* audio) {
                // Two classic mistakes on a render thread: a lock and an allocation.
                std::lock_guard<std::mutex> lock(*held);
                auto* copy = new int16_t[frames];
                copy[0] = static_cast<int16_t*>(audio->mBuffers[0].mData)[0];
                delete[] copy;
            })});
            c.renderOffline(256);
        },
        "RealtimeSanitizer");
}
#else
TEST(RealtimeSafety, AllocationOnTheRenderThreadIsCaught) {
    GTEST_SKIP() << "only meaningful in the RealtimeSanitizer tree (make build-rtsan)";
}
#endif

}  // namespace
