// Frame-exact behaviour of the loop player, driven one frame per render call
// so that every report is pinned to its frame.
#include "tests/playback/PlayerHarness.h"

namespace {

struct SlotOutput {
    std::vector<int16_t> left, right;
};

// Renders `frames` frames of one slot in calls of `chunk` frames.
SlotOutput renderSlot(Loopplayer& player, int slot, AudioController* c, uint64_t frames,
                      RecordingLoopDelegate* clock = nullptr, uint32_t chunk = 1) {
    SlotOutput out;
    out.left.assign(frames, 0);
    out.right.assign(frames, 0);
    auto channel = player.channelAtIndex(slot);
    for (uint64_t f = 0; f < frames; f += chunk) {
        uint32_t n = static_cast<uint32_t>(std::min<uint64_t>(chunk, frames - f));
        if (clock) clock->now = f;
        PlayerHarness::renderChannel(channel, c, n, out.left.data() + f, out.right.data() + f);
    }
    return out;
}

}  // namespace

using LoopplayerTest = PlayerHarness;

TEST_F(LoopplayerTest, StepsFallOnMultiplesOfTheTruncatedStepLength) {
    const RefSound& hit = addSound("Hit", 1, 3000);  // shorter than a step
    RecordingLoopDelegate d;
    auto player = Loopplayer::create(makeLoop(120, {{"Hit", "1-------1-------", 100}}), &d, &context);
    SlotOutput out = renderSlot(*player, 0, controller.get(), 3 * 5512, &d);

    std::vector<uint64_t> tacts;
    for (auto& e : d.events)
        if (e.second.what == "tact") tacts.push_back(e.first);
    EXPECT_EQ(tacts, (std::vector<uint64_t>{0, 5512, 11024}));
    EXPECT_EQ(d.framesOf("start", 0), (std::vector<uint64_t>{0}));
    // Step 0 sounds from frame 0, the sound runs out at frame 3000 and the slot is silent after it.
    EXPECT_EQ(out.left[0], hit.left[0]);
    EXPECT_EQ(out.right[2999], hit.right[2999]);
    EXPECT_EQ(out.left[3000], 0);
    EXPECT_EQ(out.left[5512], 0);
    EXPECT_EQ(d.framesOf("stop", 0), (std::vector<uint64_t>{3000}));
    EXPECT_EQ(player->loop()->instruments().size(), 1u);
}

TEST_F(LoopplayerTest, EveryStepOnRestartsTheSoundAndStopsTheAnimationHalfAStepEarly) {
    const RefSound& pad = addSound("Pad", 2, 8000);  // longer than a step
    RecordingLoopDelegate d;
    auto player = Loopplayer::create(makeLoop(120, {{"Pad", "1111111111111111", 100}}), &d, &context);
    SlotOutput out = renderSlot(*player, 0, controller.get(), 3 * 5512, &d);
    EXPECT_EQ(d.framesOf("start", 0), (std::vector<uint64_t>{0, 5512, 11024}));
    EXPECT_EQ(d.framesOf("stop", 0), (std::vector<uint64_t>{2756, 5512 + 2756, 11024 + 2756}));
    // The sound itself plays on until the restart.
    EXPECT_EQ(out.left[5511], pad.left[5511]);
    EXPECT_EQ(out.right[5511], pad.right[5511]);
    EXPECT_EQ(out.left[5512], pad.left[0]);
    EXPECT_EQ(out.right[11023], pad.right[5511]);
}

TEST_F(LoopplayerTest, FiniteRepeatsFallSilentAtTheEndFrameAndReportOnce) {
    addSound("Pad", 2, 50000);  // still sounding when the repeats end
    RecordingLoopDelegate d;
    auto player = Loopplayer::create(makeLoop(120, {{"Pad", "1-------1-------", 100}, {"Pad", "1111111111111111", 100}}),
                                     &d, 2, 120.0f, &context);
    const uint64_t end = 2 * 16 * 5512;  // 176384
    for (int slot : {0, 1}) {
        SlotOutput out = renderSlot(*player, slot, controller.get(), end + 3000, &d, 64);
        EXPECT_NE(out.left[end - 1], 0) << "slot " << slot;
        for (uint64_t f = end; f < end + 3000; ++f) ASSERT_EQ(out.left[f], 0) << "slot " << slot << " frame " << f;
    }
    int ends = 0;
    for (auto& e : d.events) ends += e.second.what == "end";
    EXPECT_EQ(ends, 1);
}

TEST_F(LoopplayerTest, PauseFreezesMidSoundAndResumesAtTheSameFrame) {
    const RefSound& pad = addSound("Pad", 3, 20000);
    auto player = Loopplayer::create(makeLoop(100, {{"Pad", "1---------------", 100}}), nullptr, &context);
    SlotOutput a = renderSlot(*player, 0, controller.get(), 1000, nullptr, 100);
    player->setPausd(true);
    SlotOutput paused = renderSlot(*player, 0, controller.get(), 5000, nullptr, 256);
    player->setPausd(false);
    SlotOutput b = renderSlot(*player, 0, controller.get(), 1000, nullptr, 100);
    for (int16_t v : paused.left) ASSERT_EQ(v, 0);
    EXPECT_EQ(a.left[999], pad.left[999]);
    EXPECT_EQ(b.left[0], pad.left[1000]);
    EXPECT_EQ(b.right[999], pad.right[1999]);
}

TEST_F(LoopplayerTest, TempoChangeBitesAfterTheStepInProgress) {
    addSound("Hit", 4, 100);
    RecordingLoopDelegate d;
    auto player = Loopplayer::create(makeLoop(120, {{"Hit", "1111111111111111", 100}}), &d, &context);
    renderSlot(*player, 0, controller.get(), 1000, &d);
    player->setNewBpm(60.0f);  // 11025 frames per step from the next step on
    SlotOutput rest = renderSlot(*player, 0, controller.get(), 30000, &d);
    std::vector<uint64_t> starts = d.framesOf("start", 0);
    ASSERT_GE(starts.size(), 3u);
    EXPECT_EQ(starts[1], 5512u - 1000u);          // the step in progress keeps its old length
    EXPECT_EQ(starts[2], 5512u - 1000u + 11025u);  // the next one is a 60 bpm step
}

TEST_F(LoopplayerTest, SpareSlotsCarryTheBuiltInSoundAndStaySilent) {
    addSound("Hit", 5, 400);
    auto player = Loopplayer::create(
        makeLoop(90, {{"Hit", "1---------------", 100}, {"Hit", "----1-----------", 50}, {"Hit", "--------1-------", 25}}),
        nullptr, &context);
    for (int slot = 0; slot < 8; ++slot) ASSERT_NE(player->channelAtIndex(slot), nullptr) << slot;
    EXPECT_EQ(controller->channels().size(), 8u);
    EXPECT_FLOAT_EQ(player->channelAtIndex(1)->volume(), 0.5f);
    EXPECT_FLOAT_EQ(player->channelAtIndex(7)->volume(), 1.0f);
    for (int slot = 3; slot < 8; ++slot) {
        SlotOutput out = renderSlot(*player, slot, controller.get(), 40000, nullptr, 256);
        for (int16_t v : out.left) ASSERT_EQ(v, 0) << "slot " << slot;
    }
    // Giving a spare slot a sound and a mask makes it play, without a new channel.
    player->setTactsAtIndex(5, Tacter::tacts("1111111111111111"));
    SlotOutput now = renderSlot(*player, 5, controller.get(), 8000, nullptr, 256);
    const size_t nextStep = 6 * 7350 - 40000;  // 90 bpm: 7350 frames per step
    EXPECT_EQ(now.left[nextStep - 1], 0);
    EXPECT_EQ(now.left[nextStep], sounds["Kick"].left[0]);
    EXPECT_EQ(controller->channels().size(), 8u);
}

TEST_F(LoopplayerTest, StoppedPlayerLeavesTheEngineAndTheList) {
    addSound("Hit", 6, 400);
    auto player = Loopplayer::create(makeLoop(90, {{"Hit", "1---------------", 100}}), nullptr, &context);
    ASSERT_EQ(context.loopplayers.size(), 1u);
    Loopplayer::stopLoop(player);
    EXPECT_TRUE(context.loopplayers.empty());
    EXPECT_TRUE(controller->channels().empty());
    EXPECT_FALSE(context.loadedFiles.empty());  // a loop player keeps the shared cache
    player->stopLoopplayer();                    // a second stop does nothing
    player->reallyFreeLoadedFiles();
    EXPECT_TRUE(context.loadedFiles.empty());
}
