// Players as screens use them: started and stopped over and over, delegates
// and bridges that go while their player plays, track players dropped without
// a stop, and report handlers that stop players while another stop waits.
#include <chrono>

#include "engine/AudioFileLoaderOperation.h"
#include "tests/library/LogCapture.h"
#include "playback/MainThreadDelegates.h"
#include "playback/Trackloopplayer.h"
#include "playback/Trackplayer.h"
#include "tests/playback/PlayerHarness.h"

namespace {

// Counts every call, and whether any came after it was destroyed.
std::atomic<int> gCallsAfterDeath{0};
struct Watched : LoopplayerDelegate, TrackplayerDelegate {
    ~Watched() override {
        LoopplayerDelegate::stopReceivingReports();
        TrackplayerDelegate::stopReceivingReports();
        alive = 0;
    }
    void hit() {
        if (alive != 0x600D) gCallsAfterDeath.fetch_add(1);
        calls.fetch_add(1);
    }
    void animateTact(uint16_t) override { hit(); }
    void animateStartPlaying(int) override { hit(); }
    void animateStopPlaying(int) override { hit(); }
    void loopEndRepeating() override { hit(); }
    void animatePlayingSquare(uint16_t) override { hit(); }
    void animatePlayingTact(uint16_t) override { hit(); }
    void trackFinishd() override { hit(); }
    volatile int alive = 0x600D;
    std::atomic<int> calls{0};
};

}  // namespace

class PlayerLifetime : public PlayerHarness {
protected:
    Track* twoRowTrack(int squares) {
        addSound("A", 1, 2000);
        addSound("B", 2, 3000);
        Loop* loop = makeLoop(140, {{"A", "1---1---1---1---", 90}, {"B", "--1---1---1---1-", 100}});
        auto& d = CoreDater::shIns();
        return d.createPreloadedTrack(
            "T" + std::to_string(++loops), 140, static_cast<int16_t>(squares),
            {d.createTrackLoopWithLoop(loop, {d.loopSqrsWithSquares(0xFFFF)}, 100, 1),
             d.createTrackLoopWithLoop(loop, {d.loopSqrsWithSquares(0xAAAA)}, 70, 2)},
            "X");
    }
    void useNullDevice() {
        controller->stop();
        AudioControllerOptions options;
        options.driver = AudioDriverKind::Null;
        options.mainThread = &mainThread;
        controller = std::make_unique<AudioController>(AudioController::nonInterleaved16BitStereoAudioDescription(),
                                                       false, options);
        ASSERT_TRUE(controller->start(nullptr));
        context.audioController = controller.get();
    }
    void playFor(std::chrono::milliseconds time) {
        mainThread.runUntil([] { return false; }, time);
        controller->pollForMessageResponses();
    }
};

TEST_F(PlayerLifetime, FiveHundredTrackPlaysLeaveTheGroupCountFlat) {
    Track* track = twoRowTrack(2);
    LogCapture log;
    std::vector<int16_t> l(1024), r(1024);
    AudioBufferList out{2, {{1, 2048, l.data()}, {1, 2048, r.data()}}};
    for (int play = 0; play < 500; ++play) {
        auto p = Trackplayer::create(track, nullptr, 0, play % 2 == 0, &context);
        controller->renderOffline(1024, &out);
        ASSERT_EQ(controller->channels().size(), 4u) << "play " << play;
        Trackplayer::stopTrack(p);
    }
    EXPECT_LE(controller->topLevelChannelGroups().size(), 2u);
    EXPECT_FALSE(log.contains("Channel limit reached"));
    EXPECT_FALSE(log.contains("Maximum channels reached"));
}

TEST_F(PlayerLifetime, DelegatesAndBridgesThatGoWhileTheirPlayerPlays) {
    useNullDevice();
    Track* track = twoRowTrack(1);  // one square, repeating: reports all the time
    gCallsAfterDeath.store(0);

    // A delegate called on the render thread, destroyed mid-play.
    auto direct = std::make_unique<Watched>();
    auto loopPlayer = Loopplayer::create(track->trackloops()[0]->loop(), direct.get(), &context);
    auto trackPlayer = Trackplayer::create(track, direct.get(), 0, true, &context);
    playFor(std::chrono::milliseconds(150));
    EXPECT_GT(direct->calls.load(), 0);
    direct.reset();
    playFor(std::chrono::milliseconds(150));

    // Bridges destroyed mid-play, and a screen (the bridge's target) that
    // goes while its reports are still queued.
    auto screen = std::make_unique<Watched>();
    auto loopBridge = std::make_unique<LoopplayerMainThreadDelegate>(controller.get(), screen.get());
    auto trackBridge = std::make_unique<TrackplayerMainThreadDelegate>(controller.get(), screen.get());
    loopPlayer->setDelegate(loopBridge.get());
    trackPlayer->setDelegate(trackBridge.get());
    playFor(std::chrono::milliseconds(150));
    EXPECT_GT(screen->calls.load(), 0);
    mainThread.runUntil([] { return false; }, std::chrono::milliseconds(100));  // reports pile up unread
    screen.reset();
    controller->pollForMessageResponses();
    loopBridge.reset();
    trackBridge.reset();
    playFor(std::chrono::milliseconds(150));

    // A track player dropped without a stop takes its rows out of the engine.
    auto keptDelegate = std::make_unique<Watched>();
    trackPlayer->setDelegate(keptDelegate.get());
    context.trackplayers.clear();
    trackPlayer.reset();
    playFor(std::chrono::milliseconds(100));
    EXPECT_EQ(controller->channels().size(), 8u) << "only the loop player's eight channels are left";
    Loopplayer::stopLoop(loopPlayer);
    EXPECT_EQ(gCallsAfterDeath.load(), 0);
}

// A screen that stops everything when the loop's repeats end.
struct StopsEverything : LoopplayerDelegate {
    std::shared_ptr<Loopplayer> loop;
    std::shared_ptr<Trackplayer> track;
    int ends = 0;
    void animateTact(uint16_t) override {}
    void animateStartPlaying(int) override {}
    void animateStopPlaying(int) override {}
    void loopEndRepeating() override {
        ++ends;
        Loopplayer::stopLoop(loop);
        loop.reset();
        Trackplayer::stopTrack(track);
        track.reset();
    }
};

TEST_F(PlayerLifetime, ReportHandlerStopsPlayersWhileAnotherStopWaits) {
    Track* track = twoRowTrack(4);
    StopsEverything screen;
    LoopplayerMainThreadDelegate bridge(controller.get(), &screen);
    screen.loop = Loopplayer::create(track->trackloops()[0]->loop(), &bridge, 1, 140.0f, &context);
    screen.track = Trackplayer::create(track, nullptr, 0, true, &context);
    auto track2 = screen.track;
    auto loop2 = screen.loop;
    controller->renderOffline(static_cast<uint32_t>(16 * framesPerStep(140.0f) + 512));  // the end is reported
    // Stopping waits for the render thread; the queued end report runs inside
    // and stops the same players again.
    Trackplayer::stopTrack(track2);
    Loopplayer::stopLoop(loop2);
    EXPECT_EQ(screen.ends, 1);
    EXPECT_TRUE(controller->channels().empty());
    EXPECT_TRUE(context.loopplayers.empty());
    EXPECT_TRUE(context.trackplayers.empty());
}

// Another device or buffer size chosen in the settings while a loop plays:
// the device reopens under the player, which keeps its channels and goes on
// reporting steps.
TEST_F(PlayerLifetime, ALoopKeepsPlayingWhileTheDeviceIsReopened) {
    useNullDevice();
    Track* track = twoRowTrack(1);
    Watched screen;
    LoopplayerMainThreadDelegate bridge(controller.get(), &screen);
    auto loop = Loopplayer::create(track->trackloops()[0]->loop(), &bridge, &context);
    auto stepsAfter = [&](int before) {
        for (int i = 0; i < 40 && screen.calls.load() <= before; ++i) playFor(std::chrono::milliseconds(50));
        return screen.calls.load() > before;
    };
    ASSERT_TRUE(stepsAfter(0));
    const size_t channels = controller->channels().size();

    ASSERT_TRUE(controller->switchDevices({"", "", 1024}));
    EXPECT_NEAR(controller->preferredBufferDuration(), 1024 / 44100.0, 1e-9);
    const int atSwitch = screen.calls.load();
    EXPECT_TRUE(stepsAfter(atSwitch + 8)) << "the loop plays on after the switch";
    EXPECT_EQ(controller->channels().size(), channels);
    EXPECT_EQ(context.loopplayers.size(), 1u);
    Loopplayer::stopLoop(loop);
}
