// Recording as the application does it: the export capture of a playing loop,
// the sound editor's microphone recording, and tearing it all down.
#include <gtest/gtest.h>

#include <fstream>

#include "app/AppDelegate.h"
#include "engine/AudioController.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/patterns/Tacter.h"
#include "playback/Loopplayer.h"
#include "recording/OscilloscopeLayer.h"
#include "recording/Recorder.h"
#include "tests/library/TestStore.h"
#include "tests/recording/RecordingTestSupport.h"

namespace {

class AppRecordingTest : public ::testing::Test {
protected:
    void SetUp() override {
        AppDelegateOptions options;
        options.libraryFolder = docs.path();
        options.settingsFile = docs.file("settings.ini");
        options.driver = AudioDriverKind::Offline;
        options.mainThread = &main;
        app = std::make_unique<AppDelegate>(options);
        app->addAudioControlla();
        app->managedObjectContext();
        Filer::setResourceDirectory(res.path());
        Filer::setTemporaryDirectory(temp.path());
        // The built-in sound that empty slots fall back to.
        writeStereoWav(res.file("Kick.wav"), std::vector<int16_t>(100, 0), std::vector<int16_t>(100, 0));
    }
    void TearDown() override { app.reset(); }

    AudioController* engine() { return app->audioController(); }
    std::string scratch() const { return temp.file(Recorder::kScratchFileName); }

    // A user sound whose frames all differ, and a one-bar loop playing it.
    Loop* makeLoop() {
        std::vector<int16_t> left, right;
        for (int k = 0; k < 9000; ++k) {
            left.push_back(int16_t(k % 3000 - 1500));
            right.push_back(int16_t(2000 - k % 4000));
        }
        writeStereoWav(Filer::pathForWavSound("Hit"), left, right);
        CoreDater::shIns().createRecordedSound("Hit", 1, "Test");
        std::vector<Instrument*> instruments{
            CoreDater::shIns().createInstrumentWithSound("Hit", Tacter::tacts("1---1---1-1-----"), 100),
            CoreDater::shIns().createInstrumentWithSound("Hit", Tacter::tacts("--1---1-1---1--1"), 60)};
        return CoreDater::shIns().createPreloadedLoop("Beat", 130, instruments, "Test", "Tester");
    }

    TempDir docs, res, temp;
    RunLoopMainThread main;
    std::unique_ptr<AppDelegate> app;
};

TEST_F(AppRecordingTest, CapturedLoopEqualsItsOfflineRenderAfterTheLeadIn) {
    Loop* loop = makeLoop();
    const uint32_t bar = uint32_t(16 * framesPerStep(130));
    const uint32_t leadIn = 15876;  // the export screen starts playback 0.36 s after the recorder

    // The loop rendered on an engine of its own.
    RunLoopMainThread refMain;
    AudioControllerOptions o;
    o.driver = AudioDriverKind::Offline;
    o.mainThread = &refMain;
    AudioController ref(AudioController::nonInterleaved16BitStereoAudioDescription(), false, o);
    ASSERT_TRUE(ref.start(nullptr));
    PlaybackContext refContext;
    refContext.audioController = &ref;
    auto refPlayer = Loopplayer::create(loop, nullptr, 1, 130.0f, &refContext);
    std::vector<int16_t> left(bar), right(bar);
    AudioBufferList out{};
    out.mNumberBuffers = 2;
    out.mBuffers[0] = {1, bar * 2, left.data()};
    out.mBuffers[1] = {1, bar * 2, right.data()};
    ref.renderOffline(bar, &out);
    Loopplayer::stopLoop(refPlayer);
    refPlayer->reallyFreeLoadedFiles();
    ASSERT_NE(std::count(left.begin(), left.end(), 0), int(bar));

    for (bool stereo : {true, false}) {
        SCOPED_TRACE(stereo ? "stereo" : "mono");
        app->recordToStereo = stereo;
        app->beginRecordingInput(false, true, true);
        ASSERT_TRUE(app->recorder);
        EXPECT_FALSE(app->recorder->recording());
        RecorderStartRecording(app->recorder.get());
        engine()->renderOffline(leadIn);
        Loopplayer::create(loop, nullptr, 1, 130.0f);  // joins the application's players
        engine()->renderOffline(bar);
        app->endRecording();
        EXPECT_FALSE(app->recorder);
        app->removeAllChannelsFromAC();

        const WavContents w = readWav(scratch());
        ASSERT_EQ(w.channels, stereo ? 2 : 1);
        ASSERT_EQ(w.frames, leadIn + bar);
        for (uint32_t k = 0; k < leadIn; ++k) ASSERT_EQ(w.at(k, 0), 0) << k;
        for (uint32_t k = 0; k < bar; ++k) {
            if (stereo) {
                ASSERT_EQ(w.at(leadIn + k, 0), left[k]) << k;
                ASSERT_EQ(w.at(leadIn + k, 1), right[k]) << k;
            } else {
                ASSERT_EQ(w.at(leadIn + k, 0), int16_t((int32_t(left[k]) + right[k]) / 2)) << k;
            }
        }
    }
}

TEST_F(AppRecordingTest, MicrophoneRecordingWithTraceIsTornDownByRemoveAll) {
    ASSERT_TRUE(app->setACInputEnabled(true));
    EXPECT_TRUE(engine()->inputEnabled());
    EXPECT_TRUE(engine()->running());
    app->inputOscilloscope = std::make_shared<OscilloscopeLayer>();
    bool removedFromScreen = false;
    app->inputOscilloscope->onRemoveFromSuperlayer = [&] { removedFromScreen = true; };
    engine()->addInputReceiver(app->inputOscilloscope);
    app->inputOscilloscope->start();

    app->recordToStereo = true;
    app->beginRecordingInput(true, true);
    ASSERT_TRUE(app->recorder && app->recorder->recording());
    std::vector<int16_t> micLeft(3000), micRight(3000);
    for (int k = 0; k < 3000; ++k) {
        micLeft[k] = int16_t(k * 10 - 15000);
        micRight[k] = int16_t(-k);
    }
    auto tone = std::make_shared<FrameNumberChannel>();
    engine()->addChannels({tone});
    AudioBufferList mic{};
    mic.mNumberBuffers = 2;
    mic.mBuffers[0] = {1, 6000, micLeft.data()};
    mic.mBuffers[1] = {1, 6000, micRight.data()};
    engine()->renderOffline(3000, nullptr, &mic);
    EXPECT_DOUBLE_EQ(app->inputOscilloscope->points(100, 100)[126].y,
                     micLeft[2969] / 32768.0 * 50 + 50);  // the trace hears the microphone

    app->removeAllChannelsFromAC();
    EXPECT_FALSE(app->recorder);
    EXPECT_FALSE(app->inputOscilloscope);
    EXPECT_TRUE(removedFromScreen);
    EXPECT_TRUE(engine()->inputReceivers().empty());
    EXPECT_TRUE(engine()->outputReceivers().empty());
    EXPECT_TRUE(engine()->channels().empty());
    // The file is closed and holds the whole take, microphone and output
    // mixed from the first frame.
    const WavContents w = readWav(scratch());
    ASSERT_EQ(w.frames, 3000);
    for (int k = 0; k < 3000; ++k) {
        ASSERT_EQ(w.at(k, 0), int16_t(micLeft[size_t(k)] + frameLeft(k))) << k;
        ASSERT_EQ(w.at(k, 1), int16_t(micRight[size_t(k)] + frameRight(k))) << k;
    }
    app->removeAllChannelsFromAC();  // with nothing left it does nothing
    ASSERT_TRUE(app->setACInputEnabled(false));
    EXPECT_FALSE(engine()->inputEnabled());
}

TEST_F(AppRecordingTest, AFileThatCannotBeOpenedIsLoggedAndRecordsNothing) {
    LogCapture log;
    { std::ofstream(temp.file("plain")) << "x"; }
    Filer::setTemporaryDirectory(temp.file("plain") + "/tmp");

    app->beginRecordingInput(false, true);
    EXPECT_TRUE(engine()->outputReceivers().empty());  // not attached
    app->endRecording();

    app->beginRecordingInput(false, true, false);
    ASSERT_TRUE(app->recorder);
    EXPECT_EQ(engine()->outputReceivers().size(), 1u);  // attached, not started
    EXPECT_FALSE(app->recorder->recording());
    engine()->renderOffline(512);
    EXPECT_EQ(app->recorder->currentTime(), 0.0);
    app->endRecording();
    EXPECT_TRUE(engine()->outputReceivers().empty());
    EXPECT_FALSE(log.contains("RecorderStartRecording"));
    EXPECT_TRUE(log.contains("Couldn't open the output file"));
}

}  // namespace
