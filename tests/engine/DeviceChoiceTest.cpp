// The devices and buffer size the settings choose: a saved device that is
// gone, and a new buffer size while the engine runs.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <thread>

#include "engine/AudioController.h"
#include "tests/engine/EngineTestSupport.h"

namespace {

const AudioStreamDescription kEngine = AudioController::nonInterleaved16BitStereoAudioDescription();

// Notes the length of the blocks it is asked for. Real-time safe.
class BlockSizeChannel : public AudioChannel {
public:
    void render(AudioController*, const AudioTimeStamp&, uint32_t frames, AudioBufferList*) QUILLO_NONBLOCKING override {
        lastFrames.store(frames, std::memory_order_relaxed);
        renders.fetch_add(1, std::memory_order_relaxed);
    }
    std::atomic<uint32_t> lastFrames{0};
    std::atomic<int> renders{0};
};

bool waitFor(const std::function<bool()>& done) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

TEST(AudioDeviceChoice, ASavedDeviceThatIsGoneFallsBackAndSaysSo) {
    // The automatic choice, as at launch: the sound card, else the null device.
    const char* saved = std::getenv("QUILLO_AUDIO");
    const std::string before = saved ? saved : "";
    unsetenv("QUILLO_AUDIO");
    LogCapture log;
    AudioControllerOptions o;
    o.devices = {"Quillo Test Card That Is Not There", "Quillo Test Microphone That Is Not There", 512};
    {
        AudioController c(kEngine, true, o);
        AudioError error;
        ASSERT_TRUE(c.start(&error)) << error.localizedDescription;
        EXPECT_TRUE(c.running());
        EXPECT_EQ(log.countContaining("Output device \"Quillo Test Card That Is Not There\" is missing; using the "
                                      "default output device"),
                  1);
        EXPECT_EQ(log.countContaining("Input device \"Quillo Test Microphone That Is Not There\" is missing"), 1);
        // Whatever opened (the default card, or the null device without one)
        // plays with the chosen buffer size.
        EXPECT_NEAR(c.preferredBufferDuration(), 512 / 44100.0, 1e-9) << c.driverName();
        if (std::string(c.driverName()) == "Null") {
            EXPECT_EQ(log.countContaining("using the null device"), 1);
        }
        c.stop();
    }
    if (saved) setenv("QUILLO_AUDIO", before.c_str(), 1);
}

TEST(AudioDeviceChoice, ANewBufferSizeReopensTheRunningDeviceAndKeepsItsChannels) {
    LogCapture log;
    AudioControllerOptions o;
    o.driver = AudioDriverKind::Null;
    AudioController c(kEngine, false, o);
    auto channel = std::make_shared<BlockSizeChannel>();
    c.addChannels({channel});
    ASSERT_TRUE(c.start(nullptr));
    EXPECT_NEAR(c.preferredBufferDuration(), 256 / 44100.0, 1e-9);
    ASSERT_TRUE(waitFor([&] { return channel->lastFrames.load() == 256; }));

    ASSERT_TRUE(c.switchDevices({"", "", 1024}));
    EXPECT_TRUE(c.running());
    EXPECT_NEAR(c.preferredBufferDuration(), 1024 / 44100.0, 1e-9);
    EXPECT_EQ(c.devices().framesPerBuffer, 1024u);
    const int rendersAtSwitch = channel->renders.load();
    EXPECT_TRUE(waitFor([&] { return channel->renders.load() > rendersAtSwitch + 2; }));
    EXPECT_EQ(channel->lastFrames.load(), 1024u) << "the device renders the new block size";
    EXPECT_EQ(c.channels().size(), 1u);
    EXPECT_EQ(log.countContaining("Engine: Buffer duration 0.023, 1024 frames (requested 0.023s, 1024 frames)"), 1);

    // Out-of-range sizes are held to what the engine can render in one slice.
    ASSERT_TRUE(c.switchDevices({"", "", 100000}));
    EXPECT_NEAR(c.preferredBufferDuration(), AudioDeviceChoice::kMaxFrames / 44100.0, 1e-9);
    c.stop();

    // A stopped engine keeps the choice for its next start.
    ASSERT_TRUE(c.switchDevices({"", "", 128}));
    EXPECT_FALSE(c.running());
    ASSERT_TRUE(c.start(nullptr));
    EXPECT_NEAR(c.preferredBufferDuration(), 128 / 44100.0, 1e-9);
    c.stop();
}

}  // namespace
