// The controller's mixer, groups, limits and receivers, rendered offline and
// checked frame by frame.
#include <gtest/gtest.h>

#include <cmath>
#include <thread>

#include "engine/AudioController.h"
#include "tests/engine/EngineTestSupport.h"

namespace {

const AudioStreamDescription kEngine = AudioController::nonInterleaved16BitStereoAudioDescription();

std::unique_ptr<AudioController> offlineController(bool input = false) {
    auto c = std::make_unique<AudioController>(kEngine, input, offlineOptions());
    AudioError error;
    EXPECT_TRUE(c->start(&error));
    return c;
}

// Every frame distinct, both signs, the full 16-bit range at the ends.
int16_t rampSample(uint64_t frame, int side) {
    return int16_t(int32_t((frame * 7919 + uint64_t(side) * 104729) % 65536) - 32768);
}

class RampChannel : public AudioChannel {
public:
    void render(AudioController*, const AudioTimeStamp& time, uint32_t frames,
                AudioBufferList* audio) QUILLO_NONBLOCKING override {
        auto* l = static_cast<int16_t*>(audio->mBuffers[0].mData);
        auto* r = static_cast<int16_t*>(audio->mBuffers[1].mData);
        for (uint32_t k = 0; k < frames; ++k) {
            l[k] = rampSample(uint64_t(time.mSampleTime) + k, 0);
            r[k] = rampSample(uint64_t(time.mSampleTime) + k, 1);
        }
    }
};

TEST(AudioControllerFormat, EngineDescriptionIsNonInterleavedSigned16BitStereo) {
    EXPECT_EQ(kEngine.mSampleRate, 44100.0);
    EXPECT_EQ(kEngine.mFormatID, kAudioFormatLinearPCM);
    EXPECT_EQ(kEngine.mFormatFlags, 0x2Cu);
    EXPECT_EQ(kEngine.mBytesPerPacket, 2u);
    EXPECT_EQ(kEngine.mFramesPerPacket, 1u);
    EXPECT_EQ(kEngine.mBytesPerFrame, 2u);
    EXPECT_EQ(kEngine.mChannelsPerFrame, 2u);
    EXPECT_EQ(kEngine.mBitsPerChannel, 16u);
    EXPECT_EQ(kEngine.mReserved, 0u);

    AudioBufferList* list = allocateBufferList(kEngine, 1001);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->mNumberBuffers, 2u);
    for (int b = 0; b < 2; ++b) {
        EXPECT_EQ(list->mBuffers[b].mNumberChannels, 1u);
        EXPECT_EQ(list->mBuffers[b].mDataByteSize, 2002u);
        auto* s = static_cast<int16_t*>(list->mBuffers[b].mData);
        EXPECT_TRUE(std::all_of(s, s + 1001, [](int16_t v) { return v == 0; }));
    }
    // The application frees lists its own way: free() on buffers 0 and 1, then the list.
    free(list->mBuffers[0].mData);
    free(list->mBuffers[1].mData);
    free(list);
}

TEST(AudioControllerMix, LoneChannelAtUnityPassesThroughBitExactly) {
    auto c = offlineController();
    c->addChannels({std::make_shared<RampChannel>()});
    EngineBuffer out(10000);  // not a multiple of the 256-frame pass
    c->renderOffline(out.frames, out.list);
    for (uint32_t k = 0; k < out.frames; ++k) {
        ASSERT_EQ(out.left()[k], rampSample(k, 0)) << "frame " << k;
        ASSERT_EQ(out.right()[k], rampSample(k, 1)) << "frame " << k;
    }
}

TEST(AudioControllerMix, ChannelsSumRoundAndClampAtTheTop) {
    auto c = offlineController();
    auto a = constantChannel(30000, -30000);
    auto b = constantChannel(10000, -10000);
    auto d = constantChannel(3, 5);
    c->addChannels({a, b});
    EngineBuffer out(512);
    c->renderOffline(512, out.list);
    EXPECT_EQ(out.left()[0], 32767);
    EXPECT_EQ(out.right()[511], -32768);

    c->removeChannels({b});
    c->addChannels({d});
    d->setVolume(0.5f);  // 1.5 and 2.5 round away from zero
    a->setVolume(0.0f);
    c->renderOffline(512, out.list);
    EXPECT_EQ(out.left()[100], 2);
    EXPECT_EQ(out.right()[100], 3);
}

TEST(AudioControllerMix, VolumePanAndMuteAreAppliedByTheMixer) {
    auto c = offlineController();
    auto ch = constantChannel(10000, 10000);
    c->addChannels({ch});
    EngineBuffer out(256);

    ch->setVolume(0.25f);
    c->renderOffline(256, out.list);
    EXPECT_EQ(out.left()[7], 2500);
    EXPECT_EQ(out.right()[7], 2500);

    ch->setVolume(1.0f);
    ch->setPan(0.5f);  // right of centre: the left fades, the right stays
    c->renderOffline(256, out.list);
    EXPECT_EQ(out.left()[7], 5000);
    EXPECT_EQ(out.right()[7], 10000);
    ch->setPan(-1.0f);
    c->renderOffline(256, out.list);
    EXPECT_EQ(out.left()[7], 10000);
    EXPECT_EQ(out.right()[7], 0);

    ch->setPan(0.0f);
    ch->setChannelIsMuted(true);
    const int rendersBefore = ch->renders.load();
    c->renderOffline(256, out.list);
    EXPECT_EQ(out.left()[7], 0);
    EXPECT_GT(ch->renders.load(), rendersBefore) << "a muted channel keeps rendering (keeps its time)";
}

TEST(AudioControllerMix, PausedChannelIsSilentAndNotRendered) {
    auto c = offlineController();
    auto paused = constantChannel(1000, 1000);
    auto playing = constantChannel(7, 9);
    paused->setChannelIsPlaying(false);
    c->addChannels({paused, playing});
    EngineBuffer out(1024);
    c->renderOffline(1024, out.list);
    EXPECT_EQ(paused->renders.load(), 0);
    EXPECT_EQ(out.left()[1023], 7);
    EXPECT_EQ(out.right()[0], 9);

    // Resuming: its own sample time starts where it stopped (it never advanced).
    paused->setChannelIsPlaying(true);
    c->renderOffline(256, out.list);
    EXPECT_EQ(paused->renders.load(), 1);
    EXPECT_EQ(paused->lastSampleTime.load(), 0.0);
    EXPECT_EQ(out.left()[0], 1007);
}

TEST(AudioControllerGroups, GroupAndChannelVolumesMultiplyIntoTheMix) {
    auto c = offlineController();
    AudioChannelGroup* outer = c->createChannelGroup();
    AudioChannelGroup* inner = c->createChannelGroupWithinChannelGroup(outer);
    ASSERT_NE(outer, nullptr);
    ASSERT_NE(inner, nullptr);
    auto ch = constantChannel(16000, -16000);
    auto top = constantChannel(100, 100);
    c->addChannels({ch}, inner);
    c->addChannels({top});
    ch->setVolume(0.5f);
    c->setVolume(0.5f, inner);
    c->setVolume(0.25f, outer);
    EngineBuffer out(256);
    c->renderOffline(256, out.list);
    EXPECT_EQ(out.left()[0], 1000 + 100);
    EXPECT_EQ(out.right()[255], -1000 + 100);
    EXPECT_FLOAT_EQ(c->volume(outer), 0.25f);

    c->setPlaying(false, outer);
    const int renders = ch->renders.load();
    c->renderOffline(256, out.list);
    EXPECT_EQ(out.left()[0], 100);
    EXPECT_EQ(ch->renders.load(), renders) << "a paused group renders nothing inside it";

    c->setPlaying(true, outer);
    c->setMuted(true, inner);
    c->renderOffline(256, out.list);
    EXPECT_EQ(out.left()[0], 100);

    EXPECT_EQ(c->channels().size(), 2u);
    EXPECT_EQ(c->channelsInChannelGroup(outer).size(), 1u);
    c->removeChannelGroup(outer);
    EXPECT_EQ(c->channels().size(), 1u);
    EXPECT_EQ(ch.use_count(), 1) << "the controller released the channel";
    c->renderOffline(256, out.list);
    EXPECT_EQ(out.left()[0], 100);
}

TEST(AudioControllerGroups, AddingAChannelThatIsElsewhereMovesIt) {
    auto c = offlineController();
    AudioChannelGroup* quiet = c->createChannelGroup();
    c->setVolume(0.0f, quiet);
    auto ch = constantChannel(1234, 1234);
    c->addChannels({ch});
    c->addChannels({ch}, quiet);
    EXPECT_EQ(c->channels().size(), 1u);
    EXPECT_EQ(c->channelsInChannelGroup(quiet).size(), 1u);
    EngineBuffer out(256);
    c->renderOffline(256, out.list);
    EXPECT_EQ(out.left()[0], 0);
    EXPECT_EQ(ch->renders.load(), 1) << "rendered once per pass, in its new group only";

    c->addChannels({ch});  // back to the top
    c->renderOffline(256, out.list);
    EXPECT_EQ(out.left()[0], 1234);
    EXPECT_TRUE(c->channelsInChannelGroup(quiet).empty());
}

TEST(AudioControllerLimits, AHundredEntriesPerGroupWithTheirLogLines) {
    LogCapture log;
    auto c = offlineController();
    std::vector<std::shared_ptr<AudioChannel>> many;
    for (int i = 0; i < 101; ++i) many.push_back(constantChannel(1, 1));
    c->addChannels(many);
    EXPECT_EQ(c->channels().size(), 100u);
    EXPECT_EQ(log.count("Engine: Warning: Channel limit reached"), 1);
    EngineBuffer out(256);
    c->renderOffline(256, out.list);
    EXPECT_EQ(out.left()[0], 100);

    EXPECT_EQ(c->createChannelGroup(), nullptr);
    char expected[128];
    std::snprintf(expected, sizeof expected, "Engine: Maximum channels reached in group %p\n",
                  static_cast<void*>(c->topLevelChannelGroup()));
    EXPECT_EQ(log.count(expected), 1);

    // A full group still moves its channels elsewhere.
    AudioChannelGroup* g = nullptr;
    c->removeChannels({many[0]});
    g = c->createChannelGroup();
    ASSERT_NE(g, nullptr);
    c->addChannels({many[1], many[2]}, g);
    EXPECT_EQ(c->channelsInChannelGroup(g).size(), 2u);
    EXPECT_EQ(c->channels().size(), 99u);
}

class CountingReceiver : public AudioReceiver {
public:
    void receiverCallback(AudioController*, const void* source, const AudioTimeStamp& time, uint32_t frames,
                          const AudioBufferList* audio) QUILLO_NONBLOCKING override {
        lastSource.store(source);
        frameCount.fetch_add(frames);
        lastSampleTime.store(time.mSampleTime);
        firstLeft.store(static_cast<const int16_t*>(audio->mBuffers[0].mData)[0]);
        lastRight.store(static_cast<const int16_t*>(audio->mBuffers[1].mData)[frames - 1]);
        calls.fetch_add(1);
    }
    std::atomic<const void*> lastSource{nullptr};
    std::atomic<uint64_t> frameCount{0};
    std::atomic<double> lastSampleTime{-1};
    std::atomic<int> firstLeft{0}, lastRight{0}, calls{0};
};

TEST(AudioControllerReceivers, OutputReceiversGetTheMixedOutputInEngineFormat) {
    LogCapture log;
    auto c = offlineController();
    auto ch = constantChannel(40000 / 2, -300);
    c->addChannels({ch, constantChannel(20000, 0)});  // clamps at the top
    auto r = std::make_shared<CountingReceiver>();
    EXPECT_TRUE(c->addOutputReceiver(r));
    c->renderOffline(1000);
    EXPECT_EQ(r->lastSource.load(), AudioController::outputSource());
    EXPECT_NE(AudioController::outputSource(), AudioController::inputSource());
    EXPECT_EQ(r->frameCount.load(), 1000u);
    EXPECT_EQ(r->calls.load(), 4);
    EXPECT_EQ(r->lastSampleTime.load(), 768.0);
    EXPECT_EQ(r->firstLeft.load(), 32767);
    EXPECT_EQ(r->lastRight.load(), -300);

    std::vector<std::shared_ptr<CountingReceiver>> more;
    for (int i = 0; i < 14; ++i) {
        more.push_back(std::make_shared<CountingReceiver>());
        EXPECT_TRUE(c->addOutputReceiver(more.back()));
    }
    EXPECT_FALSE(c->addOutputReceiver(std::make_shared<CountingReceiver>()));
    EXPECT_EQ(log.count("Engine: Warning: Maximum number of callbacks reached"), 1);
    EXPECT_EQ(c->outputReceivers().size(), 15u);

    c->removeOutputReceiver(r);
    c->renderOffline(256);
    EXPECT_EQ(r->calls.load(), 4);
    EXPECT_EQ(more[13]->calls.load(), 1);
    EXPECT_EQ(r.use_count(), 1);
}

TEST(AudioControllerReceivers, InputReceiversGetTheMicrophoneOnlyWhileInputIsEnabled) {
    auto c = offlineController(true);
    auto r = std::make_shared<CountingReceiver>();
    EXPECT_TRUE(c->addInputReceiver(r));
    EngineBuffer mic(512);
    for (uint32_t k = 0; k < 512; ++k) {
        mic.left()[k] = int16_t(k);
        mic.right()[k] = int16_t(-int(k));
    }
    c->renderOffline(512, nullptr, mic.list);
    EXPECT_EQ(r->lastSource.load(), AudioController::inputSource());
    EXPECT_EQ(r->calls.load(), 2);
    EXPECT_EQ(r->firstLeft.load(), 256);
    EXPECT_EQ(r->lastRight.load(), -511);
    EXPECT_EQ(c->inputReceivers().size(), 1u);

    // The microphone off: receivers stay attached but hear nothing.
    EXPECT_TRUE(c->updateWithAudioDescription(kEngine, false, false, true));
    EXPECT_TRUE(c->running());
    c->renderOffline(512, nullptr, mic.list);
    EXPECT_EQ(r->calls.load(), 2);
    EXPECT_TRUE(c->updateWithAudioDescription(kEngine, true, false, true));
    c->renderOffline(256);
    EXPECT_EQ(r->calls.load(), 3);
    EXPECT_EQ(r->firstLeft.load(), 0) << "no microphone buffer given: silence";
}

TEST(AudioControllerLifecycle, UpdateStopsRebuildsAndRestoresTheRunningState) {
    LogCapture log;
    AudioControllerOptions o = offlineOptions();
    o.rebuildDelay = std::chrono::milliseconds(20);
    AudioController c(kEngine, false, o);
    EXPECT_TRUE(log.count("Engine: Engine setup") == 1);
    EXPECT_FALSE(c.running());
    const auto before = std::chrono::steady_clock::now();
    EXPECT_TRUE(c.updateWithAudioDescription(kEngine, true, false, true));
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(20));
    EXPECT_FALSE(c.running()) << "it was stopped, it stays stopped";
    EXPECT_TRUE(c.inputEnabled());

    AudioError error;
    EXPECT_TRUE(c.start(&error));
    EXPECT_EQ(log.count("Engine: Starting Engine"), 1);
    EXPECT_TRUE(c.updateWithAudioDescription(kEngine, false, false, true));
    EXPECT_TRUE(c.running());
    EXPECT_EQ(log.count("Engine: Stopping Engine"), 1);
    EXPECT_EQ(log.count("Engine: Starting Engine"), 2);
    EXPECT_EQ(log.count("Engine: Setting audio session category to PlayAndRecord (input and output)"), 1);

    // Channels survive a change of format, and render in the new one.
    c.addChannels({BlockChannel::channelWithBlock([](const AudioTimeStamp&, uint32_t frames, AudioBufferList* audio) {
        for (uint32_t k = 0; k < frames; ++k) {
            static_cast<float*>(audio->mBuffers[0].mData)[k] = 0.5f;
            static_cast<float*>(audio->mBuffers[1].mData)[k] = -0.5f;
        }
    })});
    EXPECT_TRUE(c.updateWithAudioDescription(AudioController::nonInterleavedFloatStereoAudioDescription(), false,
                                             false, true));
    AudioBufferList* out = allocateBufferList(c.audioDescription(), 256);
    c.renderOffline(256, out);
    EXPECT_FLOAT_EQ(static_cast<float*>(out->mBuffers[0].mData)[0], 0.5f);
    EXPECT_FLOAT_EQ(static_cast<float*>(out->mBuffers[1].mData)[255], -0.5f);
    freeBufferList(out);
}

// A channel that notes whether it was rendered after it was declared gone.
class WatchedChannel : public AudioChannel {
public:
    void render(AudioController*, const AudioTimeStamp&, uint32_t frames,
                AudioBufferList* audio) QUILLO_NONBLOCKING override {
        inRender.store(true);
        if (removed.load()) renderedAfterRemoval.store(true);
        auto* l = static_cast<int16_t*>(audio->mBuffers[0].mData);
        for (uint32_t k = 0; k < frames; ++k) l[k] = 1;
        renders.fetch_add(1);
        inRender.store(false);
    }
    std::atomic<bool> removed{false}, renderedAfterRemoval{false}, inRender{false};
    std::atomic<int> renders{0};
};

void removeWhileRendering(AudioController& c, const std::function<void()>& renderSome, int rounds) {
    std::atomic<bool> stopRendering{false};
    std::thread renderer;
    if (renderSome) {
        renderer = std::thread([&] {
            while (!stopRendering.load()) renderSome();
        });
    }
    for (int round = 0; round < rounds; ++round) {
        std::vector<std::shared_ptr<WatchedChannel>> watched;
        std::vector<std::shared_ptr<AudioChannel>> all;
        for (int i = 0; i < 8; ++i) {
            watched.push_back(std::make_shared<WatchedChannel>());
            all.push_back(watched.back());
        }
        c.addChannels(all);
        while (watched[0]->renders.load() == 0) std::this_thread::yield();
        c.removeChannels(all);
        for (auto& w : watched) {
            EXPECT_FALSE(w->inRender.load());
            w->removed.store(true);
        }
        const int rendersAtRemoval = watched[0]->renders.load();
        // Give the render thread a few passes to prove it let go.
        const int target = watched[0]->renders.load();
        (void)target;
        all.clear();
        for (int spin = 0; spin < 3; ++spin) std::this_thread::sleep_for(std::chrono::milliseconds(2));
        for (auto& w : watched) EXPECT_FALSE(w->renderedAfterRemoval.load()) << "round " << round;
        EXPECT_EQ(watched[0]->renders.load(), rendersAtRemoval);
        for (auto& w : watched) EXPECT_EQ(w.use_count(), 1) << "the controller let go of the channel";
    }
    stopRendering.store(true);
    if (renderer.joinable()) renderer.join();
}

TEST(AudioControllerRemoval, RemovedChannelIsNeverRenderedAfterRemoveReturnsOffline) {
    auto c = offlineController();
    auto keep = constantChannel(1, 1);
    c->addChannels({keep});
    removeWhileRendering(*c, [&] { c->renderOffline(256); }, 50);
}

TEST(AudioControllerRemoval, RemovedChannelIsNeverRenderedAfterRemoveReturnsOnTheNullDevice) {
    AudioControllerOptions o;
    o.driver = AudioDriverKind::Null;
    AudioController c(kEngine, false, o);
    AudioError error;
    ASSERT_TRUE(c.start(&error));
    removeWhileRendering(c, nullptr, 10);
    c.stop();
}

TEST(AudioControllerLifecycle, NullDeviceRendersInRealTime) {
    AudioControllerOptions o;
    o.driver = AudioDriverKind::Null;
    AudioController c(kEngine, false, o);
    auto ch = constantChannel(1, 1);
    c.addChannels({ch});
    EXPECT_EQ(ch->renders.load(), 0) << "nothing renders before start";
    AudioError error;
    ASSERT_TRUE(c.start(&error));
    EXPECT_STREQ(c.driverName(), "Null");
    const auto t0 = std::chrono::steady_clock::now();
    while (ch->renders.load() < 20) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    c.stop();
    // 20 blocks of 256 frames are 116 ms of audio; the clock paces them.
    EXPECT_GT(seconds, 0.08);
    const int after = ch->renders.load();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ(ch->renders.load(), after) << "stopped means stopped";
}

}  // namespace
