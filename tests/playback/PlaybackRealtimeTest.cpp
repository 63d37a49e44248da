// Players inside the engine's real render pass while the main thread edits
// them. In the RealtimeSanitizer tree any allocation, free, lock or blocking
// call made while rendering ends the run; here the reports must also arrive
// on the main thread through the bridges.
#include <chrono>

#include "engine/AudioFileLoaderOperation.h"
#include "playback/MainThreadDelegates.h"
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
