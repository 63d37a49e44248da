// Recording as the application does it: the export capture of a playing
// loop, the sound editor's microphone take, teardown and a file that cannot open.
#include <gtest/gtest.h>

#include <fstream>

#include "app/AppDelegate.h"
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
        app = std::make_unique<AppDelegate>(
            AppDelegateOptions{docs.path(), docs.file("settings.ini"), AudioDriverKind::Offline, &main});
        app->addAudioControlla();
        app->managedObjectContext();
        Filer::setResourceDirectory(res.path());
        Filer::setTemporaryDirectory(temp.path());
        writeStereoWav(res.file("Kick.wav"), std::vector<int16_t>(100, 0), std::vector<int16_t>(100, 0));
    }
    AudioController* engine() { return app->audioController(); }
    std::string scratch() const { return temp.file(Recorder::kScratchFileName); }

    TempDir docs, res, temp;
    RunLoopMainThread main;
    std::unique_ptr<AppDelegate> app;
};

// Renders `frames` of `loop` played once on an engine of its own.
void renderAlone(Loop* loop, uint32_t frames, std::vector<int16_t>& left, std::vector<int16_t>& right) {
    RunLoopMainThread main;
    AudioController c(AudioController::nonInterleaved16BitStereoAudioDescription(), false,
                      AudioControllerOptions{AudioDriverKind::Offline, &main});
    c.start(nullptr);
    PlaybackContext context;
    context.audioController = &c;
    auto player = Loopplayer::create(loop, nullptr, 1, float(loop->bpm()), &context);
    left.assign(frames, 0);
    right.assign(frames, 0);
    AudioBufferList out{2, {{1, frames * 2, left.data()}, {1, frames * 2, right.data()}}};
    c.renderOffline(frames, &out);
    Loopplayer::stopLoop(player);
    player->reallyFreeLoadedFiles();
}

TEST_F(AppRecordingTest, CapturedLoopEqualsItsOfflineRenderAfterTheLeadIn) {
    std::vector<int16_t> hitLeft, hitRight;
    for (int k = 0; k < 9000; ++k) {
        hitLeft.push_back(int16_t(k % 3000 - 1500));
        hitRight.push_back(int16_t(2000 - k % 4000));
    }
    writeStereoWav(Filer::pathForWavSound("Hit"), hitLeft, hitRight);
    CoreDater::shIns().createRecordedSound("Hit", 1, "Test");
    Loop* loop = CoreDater::shIns().createPreloadedLoop(
        "Beat", 130,
        {CoreDater::shIns().createInstrumentWithSound("Hit", Tacter::tacts("1---1---1-1-----"), 100),
         CoreDater::shIns().createInstrumentWithSound("Hit", Tacter::tacts("--1---1-1---1--1"), 60)},
        "Test", "Tester");
    const uint32_t bar = uint32_t(16 * framesPerStep(130));
    const uint32_t leadIn = 15876;  // the export screen starts playback 0.36 s after the recorder
    std::vector<int16_t> left, right;
    renderAlone(loop, bar, left, right);

    for (bool stereo : {true, false}) {
        SCOPED_TRACE(stereo ? "stereo" : "mono");
        app->recordToStereo = stereo;
        app->beginRecordingInput(false, true, true);
        ASSERT_TRUE(app->recorder && !app->recorder->recording());
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
            ASSERT_EQ(w.at(leadIn + k, 0), stereo ? left[k] : (left[k] + right[k]) / 2) << k;
            if (stereo) {
                ASSERT_EQ(w.at(leadIn + k, 1), right[k]) << k;
            }
        }
    }
}

TEST_F(AppRecordingTest, MicrophoneTakeWithTraceIsTornDownByRemoveAll) {
    ASSERT_TRUE(app->setACInputEnabled(true));
    EXPECT_TRUE(engine()->inputEnabled() && engine()->running());
    app->inputOscilloscope = std::make_shared<OscilloscopeLayer>();
    bool offScreen = false;
    app->inputOscilloscope->onRemoveFromSuperlayer = [&] { offScreen = true; };
    engine()->addInputReceiver(app->inputOscilloscope);
    app->recordToStereo = true;
    app->beginRecordingInput(true, true);
    ASSERT_TRUE(app->recorder && app->recorder->recording());
    engine()->addChannels({std::make_shared<FrameNumberChannel>()});
    engine()->renderOffline(3000);  // the microphone of the offline engine is silent

    app->removeAllChannelsFromAC();
    EXPECT_FALSE(app->recorder || app->inputOscilloscope);
    EXPECT_TRUE(offScreen);
    EXPECT_TRUE(engine()->inputReceivers().empty() && engine()->outputReceivers().empty());
    EXPECT_TRUE(engine()->channels().empty());
    const WavContents w = readWav(scratch());  // closed, and the whole take is in it
    ASSERT_EQ(w.frames, 3000);
    EXPECT_EQ(w.at(2999, 0), frameLeft(2999));
    EXPECT_EQ(w.at(2999, 1), frameRight(2999));
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
    engine()->renderOffline(512);
    EXPECT_EQ(app->recorder->currentTime(), 0.0);
    app->endRecording();
    EXPECT_TRUE(engine()->outputReceivers().empty());
    EXPECT_FALSE(log.contains("RecorderStartRecording"));
    EXPECT_TRUE(log.contains("Couldn't open the output file"));
}

}  // namespace
