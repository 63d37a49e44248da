// The recorder on a running engine: where a recording starts and stops to the
// frame, microphone and output mixed, and write errors reported.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>

#include <cmath>
#include <thread>

#include "engine/AudioController.h"
#include "engine/AudioFileWriter.h"
#include "recording/OscilloscopeLayer.h"
#include "recording/Recorder.h"
#include "tests/library/TestStore.h"
#include "tests/recording/RecordingTestSupport.h"

namespace {

struct Engine {
    Engine(AudioDriverKind driver, bool input) : c(AudioController::nonInterleaved16BitStereoAudioDescription(), input,
                                                   AudioControllerOptions{driver, &main, std::chrono::milliseconds(0)}) {
        c.addChannels({channel});
    }
    RunLoopMainThread main;
    AudioController c;
    std::shared_ptr<FrameNumberChannel> channel = std::make_shared<FrameNumberChannel>();
};

TEST(Recorder, AttachedAndStartedInOneExchangeRecordsEveryFrameFromThatPassOn) {
    TempDir dir;
    Engine e(AudioDriverKind::Null, false);  // a real render thread
    ASSERT_TRUE(e.c.start(nullptr));
    auto recorder = std::make_shared<Recorder>(&e.c);
    recorder->expectSources(false, true);
    ASSERT_TRUE(recorder->prepareRecordingToFileAtPath(dir.file("take.wav"), kAudioFileWAVEType, nullptr));
    e.main.runUntil([&] { return e.channel->nextFrame.load() > 4410; }, std::chrono::seconds(10));

    std::atomic<int64_t> startFrame{-1};
    Recorder* raw = recorder.get();
    ASSERT_TRUE(e.c.addReceiversWithBlock(nullptr, recorder, [&startFrame, &e, raw] {
        RecorderStartRecording(raw);
        startFrame.store(e.channel->nextFrame.load(std::memory_order_acquire));
    }));
    e.main.runUntil([&] { return recorder->currentTime() > 0.25; }, std::chrono::seconds(10));
    e.c.removeOutputReceiver(recorder);  // as the application stops: detach, then finish
    const double seconds = recorder->currentTime();
    recorder->finishRecording();
    e.c.stop();

    // Frames startFrame, startFrame + 1, ...: none before the start, none lost,
    // and all of them (a lone source is never held back).
    const WavContents w = readWav(dir.file("take.wav"));
    ASSERT_GE(startFrame.load(), 4410);
    ASSERT_EQ(w.frames, int64_t(std::llround(seconds * 44100.0)));
    ASSERT_GE(w.frames, 11025);
    for (int64_t k = 0; k < w.frames; ++k) {
        ASSERT_EQ(w.at(k, 0), frameLeft(startFrame + k)) << k;
        ASSERT_EQ(w.at(k, 1), frameRight(startFrame + k)) << k;
    }
}

TEST(Recorder, MixesMicrophoneAndOutputFromTheFirstFrameAndNothingAfterFinishing) {
    TempDir dir;
    Engine e(AudioDriverKind::Offline, true);
    ASSERT_TRUE(e.c.start(nullptr));
    e.c.renderOffline(1000);  // the engine's clock has moved on
    auto trace = std::make_shared<OscilloscopeLayer>();  // the sound editor's trace listens too
    e.c.addInputReceiver(trace);
    auto recorder = std::make_shared<Recorder>(&e.c);
    recorder->expectSources(true, true);
    ASSERT_TRUE(recorder->prepareRecordingToFileAtPath(dir.file("take.wav"), kAudioFileWAVEType, nullptr));
    Recorder* raw = recorder.get();
    ASSERT_TRUE(e.c.addReceiversWithBlock(recorder, recorder, [raw] { RecorderStartRecording(raw); }));

    const uint32_t frames = 10000;
    std::vector<int16_t> micLeft(frames), micRight(frames);
    for (uint32_t k = 0; k < frames; ++k) {
        micLeft[k] = (k / 50) % 2 ? 32000 : -200;  // loud enough to clamp
        micRight[k] = int16_t(-int32_t(k % 1000));
    }
    AudioBufferList mic{2, {{1, frames * 2, micLeft.data()}, {1, frames * 2, micRight.data()}}};
    e.c.renderOffline(frames, nullptr, &mic);
    recorder->finishRecording();  // still attached: what comes next is ignored
    const double seconds = recorder->currentTime();
    e.c.renderOffline(5000, nullptr, &mic);
    EXPECT_EQ(recorder->currentTime(), seconds);
    EXPECT_NEAR(seconds, 2.0 * frames / 44100.0, 1e-9);  // both sources count
    EXPECT_DOUBLE_EQ(trace->peak(), 32000.0 / 32768.0);

    const WavContents w = readWav(dir.file("take.wav"));
    ASSERT_EQ(w.frames, frames);
    for (uint32_t k = 0; k < frames; ++k) {
        ASSERT_EQ(w.at(k, 0), std::min(micLeft[k] + frameLeft(1000 + k), 32767)) << k;
        ASSERT_EQ(w.at(k, 1), micRight[k] + frameRight(1000 + k)) << k;
    }
}

TEST(Recorder, WriteErrorsReachTheMainThreadAsANotification) {
    Engine e(AudioDriverKind::Offline, false);
    ASSERT_TRUE(e.c.start(nullptr));
    std::vector<std::pair<Recorder*, AudioError>> seen;
    Recorder::setNotificationObserver([&](const std::string& name, Recorder* object, const AudioError& error) {
        EXPECT_EQ(name, "RecorderDidEncounterErrorNotification");
        seen.push_back({object, error});
    });
    // The file cannot be opened, yet begin starts recording: every block fails.
    auto recorder = std::make_shared<Recorder>(&e.c);
    EXPECT_FALSE(recorder->beginRecordingToFileAtPath("/nonexistent-folder/take.wav", kAudioFileWAVEType, nullptr));
    e.c.addOutputReceiver(recorder);
    e.c.renderOffline(512);
    e.c.pollForMessageResponses();
    ASSERT_EQ(seen.size(), 2u);  // one per block
    EXPECT_EQ(seen[0].first, recorder.get());
    EXPECT_EQ(seen[0].second.code, kAudioFileWriterNotWriting);
    EXPECT_EQ(seen[0].second.localizedDescription,
              "Error while saving audio: Code " + std::to_string(kAudioFileWriterNotWriting));

    // A message that arrives after its recorder was dropped names no recorder.
    e.c.renderOffline(256);
    std::thread([&] {  // off the main thread, so the message waits for the main thread's poll
        e.c.removeOutputReceiver(recorder);
        recorder.reset();
    }).join();
    e.c.pollForMessageResponses();
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[2].first, nullptr);
    Recorder::setNotificationObserver(nullptr);
}

TEST(Recorder, ShortTakeOnTheNullDeviceWithInputRequestedKeepsItsOutputFrames) {
    // The sound editor's take on a machine without a microphone: input is
    // expected, never delivered, and must not swallow a short take.
    TempDir dir;
    Engine e(AudioDriverKind::Null, true);
    ASSERT_TRUE(e.c.start(nullptr));
    auto recorder = std::make_shared<Recorder>(&e.c);
    recorder->expectSources(true, true);
    ASSERT_TRUE(recorder->prepareRecordingToFileAtPath(dir.file("take.wav"), kAudioFileWAVEType, nullptr));
    std::atomic<int64_t> startFrame{-1};
    Recorder* raw = recorder.get();
    ASSERT_TRUE(e.c.addReceiversWithBlock(recorder, recorder, [&startFrame, &e, raw] {
        RecorderStartRecording(raw);
        startFrame.store(e.channel->nextFrame.load(std::memory_order_acquire));
    }));
    e.main.runUntil([&] { return recorder->currentTime() >= 0.1; }, std::chrono::seconds(10));
    e.c.removeInputReceiver(recorder);
    e.c.removeOutputReceiver(recorder);
    const double seconds = recorder->currentTime();
    recorder->finishRecording();
    e.c.stop();

    const WavContents w = readWav(dir.file("take.wav"));
    ASSERT_GE(seconds, 0.1);
    ASSERT_EQ(w.frames, int64_t(std::llround(seconds * 44100.0)));
    for (int64_t k = 0; k < w.frames; ++k) ASSERT_EQ(w.at(k, 0), frameLeft(startFrame + k)) << k;
}

TEST(Recorder, AFullDiskDuringATakeIsReportedOnTheMainThread) {
    TempDir dir;
    Engine e(AudioDriverKind::Offline, false);
    ASSERT_TRUE(e.c.start(nullptr));
    std::vector<std::pair<Recorder*, AudioError>> seen;
    const auto mainId = std::this_thread::get_id();
    Recorder::setNotificationObserver([&](const std::string& name, Recorder* object, const AudioError& error) {
        EXPECT_EQ(name, "RecorderDidEncounterErrorNotification");
        EXPECT_EQ(std::this_thread::get_id(), mainId);
        seen.push_back({object, error});
    });
    auto recorder = std::make_shared<Recorder>(&e.c);
    recorder->expectSources(false, true);
    ASSERT_TRUE(recorder->beginRecordingToFileAtPath(dir.file("take.wav"), kAudioFileWAVEType, nullptr));
    e.c.addOutputReceiver(recorder);

    // The disk fills after about 0.2 s of stereo audio.
    rlimit saved{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    rlimit small = saved;
    small.rlim_cur = 32768;
    auto oldHandler = signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    // Rendered as a device would, pass by pass, while the writer thread writes.
    for (int pass = 0; pass < 3000 && seen.empty(); ++pass) {
        e.c.renderOffline(256);
        e.c.pollForMessageResponses();
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
    const size_t duringTake = seen.size();
    e.c.removeOutputReceiver(recorder);
    recorder->finishRecording();
    setrlimit(RLIMIT_FSIZE, &saved);
    signal(SIGXFSZ, oldHandler);
    Recorder::setNotificationObserver(nullptr);

    ASSERT_EQ(duringTake, 1u) << "reported while recording, once";
    EXPECT_EQ(seen[0].first, recorder.get());
    EXPECT_NE(seen[0].second.code, 0);
    EXPECT_EQ(seen[0].second.localizedDescription,
              "Error while saving audio: Code " + std::to_string(seen[0].second.code));
}

}  // namespace
