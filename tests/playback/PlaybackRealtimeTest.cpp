// Players inside the engine's real render pass while the main thread edits
// them. In the RealtimeSanitizer tree any allocation, free, lock or blocking
// call made while rendering ends the run; here the reports must also arrive
// on the main thread through the bridges.
#include <chrono>

#include "engine/AudioFileLoaderOperation.h"
#include "playback/MainThreadDelegates.h"
#include "playback/Trackloopplayer.h"
#include "playback/Trackplayer.h"
#include "tests/playback/PlayerHarness.h"

namespace {
struct Counting : LoopplayerDelegate, TrackplayerDelegate {
    int tacts = 0, starts = 0, squares = 0, ends = 0;
    void animateTact(uint16_t) override { ++tacts; }
    void animateStartPlaying(int) override { ++starts; }
    void animateStopPlaying(int) override {}
    void loopEndRepeating() override { ++ends; }
    void animatePlayingSquare(uint16_t) override { ++squares; }
    void animatePlayingTact(uint16_t) override { ++tacts; }
    void trackFinishd() override { ++ends; }
};
}  // namespace

class PlaybackRealtime : public PlayerHarness {
protected:
    // Plays a loop and a track while editing them; returns what reached the main thread.
    Counting playWhileEditing(AudioController* c, const std::function<void(int)>& renderSome) {
        for (int k = 0; k < 6; ++k) addSound("S" + std::to_string(k), k + 1, 3000 + 4000 * static_cast<uint32_t>(k));
        Loop* loop = makeLoop(128, {{"S0", "1-1-1-1-1-1-1-1-", 80}, {"S1", "1111111111111111", 100},
                                    {"S2", "----1-------1---", 60}, {"S3", "--1---1---1---1-", 100}});
        auto& d = CoreDater::shIns();
        Track* track = d.createPreloadedTrack(
            "T", 128, 8,
            {d.createTrackLoopWithLoop(loop, {d.loopSqrsWithSquares(0xFFFF)}, 100, 1),
             d.createTrackLoopWithLoop(loop, {d.loopSqrsWithSquares(0xAAAA)}, 70, 2)},
            "X");
        Counting seen;
        LoopplayerMainThreadDelegate loopBridge(c, &seen);
        TrackplayerMainThreadDelegate trackBridge(c, &seen);
        auto player = Loopplayer::create(loop, &loopBridge, &context);
        auto trackPlayer = Trackplayer::create(track, &trackBridge, 0, true, &context);
        auto other = Filer::operationWithFileURL(Filer::pathForWavSound("S5"));
        context.loadedFiles[Filer::pathForWavSound("S5")] = other;
        for (int round = 0; round < 40; ++round) {
            player->setTactsAtIndex(round % 8, static_cast<uint16_t>(0x9249 << (round % 3)));
            player->setVolume(0.3f + 0.01f * static_cast<float>(round), round % 4);
            if (round % 5 == 0) player->changeFileAtIndex(round % 8, other);
            if (round % 7 == 0) player->changeItemsAtIndex(2, 3);
            if (round % 9 == 0) player->setNewBpm(90.0f + static_cast<float>(round));
            player->setPausd(round % 11 == 10);
            trackPlayer->setVolume(0.5f, round % 2);
            renderSome(round);
            mainThread.runPending();
            c->pollForMessageResponses();
        }
        Trackplayer::stopTrack(trackPlayer);
        Loopplayer::stopLoop(player);
        mainThread.runPending();
        return seen;
    }
};

TEST_F(PlaybackRealtime, OfflineRenderPassWithEditsBetweenPasses) {
    std::vector<int16_t> l(4096), r(4096);
    AudioBufferList out{2, {{1, 8192, l.data()}, {1, 8192, r.data()}}};
    Counting seen = playWhileEditing(controller.get(), [&](int) { controller->renderOffline(4096, &out); });
    // 40 passes of 4096 frames at 90 to 128 bpm: well over a bar.
    EXPECT_GT(seen.tacts, 100);
    EXPECT_GT(seen.starts, 10);
    EXPECT_GT(seen.squares, 0);
}

TEST_F(PlaybackRealtime, DeviceThreadPlaysWhileTheMainThreadEdits) {
    // The null device: a real render thread paced by the clock, so the edits
    // that need the render thread go through the message exchange for real.
    controller->stop();
    controller.reset();
    AudioControllerOptions options;
    options.driver = AudioDriverKind::Null;
    options.mainThread = &mainThread;
    auto device = std::make_unique<AudioController>(AudioController::nonInterleaved16BitStereoAudioDescription(),
                                                    false, options);
    ASSERT_TRUE(device->start(nullptr));
    context.audioController = device.get();
    Counting seen = playWhileEditing(device.get(), [&](int) {
        mainThread.runUntil([] { return false; }, std::chrono::milliseconds(15));
    });
    // How much plays in 0.6 s depends on the machine's clock; that anything
    // arrives shows the reports crossed threads.
    EXPECT_GT(seen.tacts, 0);
    device->stop();
    controller = std::move(device);
}

TEST_F(PlaybackRealtime, FiniteLoopAndTrackWithoutRepeatPlayToTheirEndsInTheRenderPass) {
    // The ends are decided on the render thread: the loop's last repeat, and
    // the track's last square, where the track player pauses all its rows
    // (setPausd) from inside the render pass.
    addSound("S0", 1, 3000);
    Loop* loop = makeLoop(140, {{"S0", "1---1---1---1---", 100}});
    auto& d = CoreDater::shIns();
    Track* track = d.createPreloadedTrack(
        "T", 140, 2,
        {d.createTrackLoopWithLoop(loop, {d.loopSqrsWithSquares(0xFFFF)}, 100, 1),
         d.createTrackLoopWithLoop(loop, {d.loopSqrsWithSquares(0x4000)}, 60, 2)},
        "X");
    Counting seen;
    LoopplayerMainThreadDelegate loopBridge(controller.get(), &seen);
    TrackplayerMainThreadDelegate trackBridge(controller.get(), &seen);
    auto player = Loopplayer::create(loop, &loopBridge, 3, 140.0f, &context);
    auto trackPlayer = Trackplayer::create(track, &trackBridge, 0, false, &context);
    std::vector<int16_t> l(4096), r(4096);
    AudioBufferList out{2, {{1, 8192, l.data()}, {1, 8192, r.data()}}};
    const uint64_t bar = 16 * framesPerStep(140.0f);
    for (uint64_t done = 0; done < 4 * bar; done += 4096) {
        controller->renderOffline(4096, &out);
        mainThread.runPending();
        controller->pollForMessageResponses();
    }
    EXPECT_EQ(seen.ends, 2) << "the loop's end and the track's, once each";
    EXPECT_TRUE(trackPlayer->entry(0)->isPaused() && trackPlayer->entry(1)->isPaused());
    controller->renderOffline(4096, &out);
    EXPECT_TRUE(std::all_of(l.begin(), l.end(), [](int16_t s) { return s == 0; })) << "all silent after the ends";
    Trackplayer::stopTrack(trackPlayer);
    Loopplayer::stopLoop(player);
}
