// The recorder on a running engine: where a recording starts and stops to the
// frame, the microphone and the output mixed, and write errors reported.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <thread>

#include "engine/AudioController.h"
#include "engine/AudioFileWriter.h"
#include "recording/OscilloscopeLayer.h"
#include "recording/Recorder.h"
#include "tests/library/TestStore.h"
#include "tests/recording/RecordingTestSupport.h"

namespace {

const AudioStreamDescription kEngine = AudioController::nonInterleaved16BitStereoAudioDescription();

AudioControllerOptions options(AudioDriverKind driver, MainThread* main) {
    AudioControllerOptions o;
    o.driver = driver;
    o.mainThread = main;
    o.rebuildDelay = std::chrono::milliseconds(0);
    return o;
}

// The file holds frames first, first + 1, ... of the frame-number channel.
void expectConsecutiveFrames(const WavContents& w, int64_t first) {
    ASSERT_EQ(w.channels, 2);
    for (int64_t k = 0; k < w.frames; ++k) {
        ASSERT_EQ(w.at(k, 0), frameLeft(first + k)) << "file frame " << k;
        ASSERT_EQ(w.at(k, 1), frameRight(first + k)) << "file frame " << k;
    }
}

TEST(Recorder, StartsStopsAndFinishesToTheFrameWhileTheEngineRuns) {
    TempDir dir;
    RunLoopMainThread main;
    AudioController c(kEngine, false, options(AudioDriverKind::Null, &main));
    auto channel = std::make_shared<FrameNumberChannel>();
    c.addChannels({channel});
    ASSERT_TRUE(c.start(nullptr));

    auto recorder = std::make_shared<Recorder>(&c);
    recorder->expectSources(false, true);
    AudioError error;
    ASSERT_TRUE(recorder->prepareRecordingToFileAtPath(dir.file("take.wav"), kAudioFileWAVEType, &error))
        << error.localizedDescription;
    // Let the engine play a while first: nothing of it may reach the file.
    main.runUntil([&] { return channel->nextFrame.load() > 4410; }, std::chrono::seconds(10));
    ASSERT_EQ(recorder->currentTime(), 0.0);

    std::atomic<int64_t> startFrame{-1};
    Recorder* raw = recorder.get();
    ASSERT_TRUE(c.addReceiversWithBlock(nullptr, recorder, [&startFrame, &channel, raw] {
        RecorderStartRecording(raw);
        startFrame.store(channel->nextFrame.load(std::memory_order_acquire));
    }));
    ASSERT_GE(startFrame.load(), 4410);
    main.runUntil([&] { return recorder->currentTime() > 0.25; }, std::chrono::seconds(10));

    // Stopping as the application does: detach, then finish.
    c.removeOutputReceiver(recorder);
    const double seconds = recorder->currentTime();
    recorder->finishRecording();
    c.stop();

    const WavContents w = readWav(dir.file("take.wav"));
    EXPECT_GE(w.frames, 11025);
    // Every frame received went to the file (a lone source is not held back).
    EXPECT_EQ(w.frames, int64_t(std::llround(seconds * 44100.0)));
    expectConsecutiveFrames(w, startFrame.load());
}

TEST(Recorder, MixesTheMicrophoneWithTheOutputFromTheFirstFrame) {
    TempDir dir;
    RunLoopMainThread main;
    AudioController c(kEngine, true, options(AudioDriverKind::Offline, &main));
    ASSERT_TRUE(c.start(nullptr));
    c.addChannels({std::make_shared<FrameNumberChannel>()});
    c.renderOffline(1000);  // the engine's clock has moved on before the recording

    // The sound editor's input trace listens too.
    auto trace = std::make_shared<OscilloscopeLayer>();
    c.addInputReceiver(trace);
    auto recorder = std::make_shared<Recorder>(&c);
    recorder->expectSources(true, true);
    ASSERT_TRUE(recorder->prepareRecordingToFileAtPath(dir.file("take.wav"), kAudioFileWAVEType, nullptr));
    Recorder* raw = recorder.get();
    ASSERT_TRUE(c.addReceiversWithBlock(recorder, recorder, [raw] { RecorderStartRecording(raw); }));

    // The microphone hears a loud square wave: the sum clamps at the top.
    const uint32_t frames = 10000;
    std::vector<int16_t> micLeft(frames), micRight(frames);
    for (uint32_t k = 0; k < frames; ++k) {
        micLeft[k] = (k / 50) % 2 ? 32000 : -200;
        micRight[k] = int16_t(-int32_t(k % 1000));
    }
    AudioBufferList mic{};
    mic.mNumberBuffers = 2;
    mic.mBuffers[0] = {1, frames * 2, micLeft.data()};
    mic.mBuffers[1] = {1, frames * 2, micRight.data()};
    c.renderOffline(frames, nullptr, &mic);
    // Finishing while still attached: whatever the engine renders next is ignored.
    recorder->finishRecording();
    const double seconds = recorder->currentTime();
    c.renderOffline(5000, nullptr, &mic);
    EXPECT_EQ(recorder->currentTime(), seconds);
    c.removeInputReceiver(recorder);
    c.removeOutputReceiver(recorder);
    EXPECT_DOUBLE_EQ(trace->peak(), 32000.0 / 32768.0);

    const WavContents w = readWav(dir.file("take.wav"));
    ASSERT_EQ(w.frames, frames);
    EXPECT_NEAR(seconds, 2.0 * frames / 44100.0, 1e-9);  // both sources count
    for (uint32_t k = 0; k < frames; ++k) {
        const int32_t l = int32_t(micLeft[k]) + frameLeft(1000 + k);
        ASSERT_EQ(w.at(k, 0), int16_t(std::min(l, 32767))) << k;
        ASSERT_EQ(w.at(k, 1), int16_t(micRight[k] + frameRight(1000 + k))) << k;
    }
}

TEST(Recorder, WriteErrorsReachTheMainThreadAsANotification) {
    RunLoopMainThread main;
    AudioController c(kEngine, false, options(AudioDriverKind::Offline, &main));
    ASSERT_TRUE(c.start(nullptr));
    c.addChannels({std::make_shared<FrameNumberChannel>()});

    struct Seen {
        std::string name;
        Recorder* object;
        AudioError error;
    };
    std::vector<Seen> seen;
    Recorder::setNotificationObserver(
        [&](const std::string& name, Recorder* object, const AudioError& error) { seen.push_back({name, object, error}); });

    // The file cannot be opened, yet begin starts recording: every block fails.
    auto recorder = std::make_shared<Recorder>(&c);
    AudioError error;
    EXPECT_FALSE(recorder->beginRecordingToFileAtPath("/nonexistent-folder/take.wav", kAudioFileWAVEType, &error));
    EXPECT_NE(error.code, 0);
    EXPECT_TRUE(recorder->recording());
    c.addOutputReceiver(recorder);
    c.renderOffline(512);
    c.pollForMessageResponses();
    main.runPending();
    ASSERT_EQ(seen.size(), 2u);  // one per block
    EXPECT_EQ(seen[0].name, "RecorderDidEncounterErrorNotification");
    EXPECT_EQ(seen[0].object, recorder.get());
    EXPECT_EQ(seen[0].error.code, kAudioFileWriterNotWriting);
    EXPECT_EQ(seen[0].error.localizedDescription,
              "Error while saving audio: Code " + std::to_string(kAudioFileWriterNotWriting));

    // A message that arrives after its recorder was dropped names no object.
    c.renderOffline(256);
    // Dropped from another thread, so the main thread cannot see the message first.
    std::thread([&] {
        c.removeOutputReceiver(recorder);
        recorder.reset();
    }).join();
    c.pollForMessageResponses();
    main.runPending();
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[2].object, nullptr);
    Recorder::setNotificationObserver(nullptr);
}

}  // namespace
