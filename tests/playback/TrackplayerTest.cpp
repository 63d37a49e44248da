// Track playing: squares, start square, repeat, the end, and row volumes.
#include "engine/AudioFileLoaderOperation.h"
#include "playback/Trackloopplayer.h"
#include "playback/Trackplayer.h"
#include "tests/playback/PlayerHarness.h"

namespace {

struct RecordingTrackDelegate : TrackplayerDelegate {
    std::vector<uint16_t> squares;
    int finished = 0;
    int tacts = 0;
    void animatePlayingSquare(uint16_t s) override { squares.push_back(s); }
    void animatePlayingTact(uint16_t) override { ++tacts; }
    void trackFinishd() override { ++finished; }
};

constexpr uint64_t kBar = 16 * 5512;  // one square at 120 bpm

}  // namespace

class TrackplayerTest : public PlayerHarness {
protected:
    // A track of `squares` squares at 120 bpm with one row playing a one-hit loop.
    Track* makeTrack(int squares, const std::string& pattern) {
        addSound("Hit", 1, 1000);
        Loop* loop = makeLoop(120, {{"Hit", "1---------------", 100}});
        auto& d = CoreDater::shIns();
        TrackLoop* row = d.createTrackLoopWithLoop(loop, {d.loopSqrsWithSquares(Tacter::tacts(pattern))}, 100, 3);
        return d.createPreloadedTrack("T" + std::to_string(++loops), 120, static_cast<int16_t>(squares), {row}, "X");
    }
    // Renders every slot of every row directly, `frames` at a time, and returns
    // the first row's first slot.
    std::vector<int16_t> play(Trackplayer& p, uint64_t frames, uint32_t chunk = 512) {
        std::vector<int16_t> first(frames, 0), scratchR(chunk);
        for (uint64_t f = 0; f < frames; f += chunk) {
            uint32_t n = static_cast<uint32_t>(std::min<uint64_t>(chunk, frames - f));
            for (int row = 0; row < Trackplayer::kRows; ++row) {
                auto e = p.entry(row);
                if (!e) continue;
                for (int slot = 0; slot < 8; ++slot) {
                    auto c = e->channelAtIndex(slot);
                    if (!c) continue;
                    std::vector<int16_t> l(n, 0);
                    renderChannel(c, controller.get(), n, l.data(), scratchR.data());
                    if (row == 0 && slot == 0) std::copy(l.begin(), l.end(), first.begin() + static_cast<long>(f));
                }
            }
        }
        return first;
    }
    static std::vector<int> soundingSquares(const std::vector<int16_t>& out) {
        std::vector<int> s;
        for (uint64_t q = 0; q * kBar < out.size(); ++q)
            if (out[q * kBar] != 0) s.push_back(static_cast<int>(q));
        return s;
    }
};

TEST_F(TrackplayerTest, RowSoundsOnlyInItsSquaresAndTheTrackEndsOnce) {
    RecordingTrackDelegate d;
    auto p = Trackplayer::create(makeTrack(4, "1-1-------------"), &d, 0, false, &context);
    auto out = play(*p, 6 * kBar);
    EXPECT_EQ(soundingSquares(out), (std::vector<int>{0, 2}));
    EXPECT_EQ(d.squares, (std::vector<uint16_t>{1, 2, 3}));
    EXPECT_EQ(d.finished, 1);
    EXPECT_TRUE(p->entry(0)->isPaused());
    EXPECT_EQ(context.trackplayers.size(), 1u);
    EXPECT_EQ(context.loopplayers.size(), 1u);
}

TEST_F(TrackplayerTest, StartSquareWithoutRepeatPlaysToTheEnd) {
    RecordingTrackDelegate d;
    auto p = Trackplayer::create(makeTrack(4, "1111111111111111"), &d, 2, false, &context);
    auto out = play(*p, 4 * kBar);
    EXPECT_EQ(soundingSquares(out), (std::vector<int>{0, 1}));  // squares 2 and 3, from frame 0
    EXPECT_EQ(d.squares, (std::vector<uint16_t>{3}));
    EXPECT_EQ(d.finished, 1);
}

TEST_F(TrackplayerTest, StartSquareWithRepeatGoesRoundFromSquareZero) {
    RecordingTrackDelegate d;
    auto p = Trackplayer::create(makeTrack(4, "-1-1------------"), &d, 2, true, &context);
    auto out = play(*p, 7 * kBar, 700);
    // Played squares: 2 3 0 1 2 3 0; the pattern has squares 1 and 3 on.
    EXPECT_EQ(soundingSquares(out), (std::vector<int>{1, 3, 5}));
    EXPECT_EQ(d.squares, (std::vector<uint16_t>{3, 0, 0, 1, 2, 3, 0, 0}));
    EXPECT_EQ(d.finished, 0);
}

TEST_F(TrackplayerTest, RowWithoutPatternSoundsInEverySquare) {
    addSound("Hit", 1, 1000);
    Loop* loop = makeLoop(120, {{"Hit", "1---------------", 100}});
    auto row = Trackloopplayer::create(loop, nullptr, nullptr, 5, 120.0f, nullptr, 0, false, &context);
    std::vector<int16_t> out(5 * kBar, 0), r(5 * kBar, 0);
    renderChannel(row->channelAtIndex(0), controller.get(), static_cast<uint32_t>(out.size()), out.data(), r.data());
    EXPECT_EQ(soundingSquares(out), (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST_F(TrackplayerTest, RowVolumeIsOneGroupVolume) {
    RecordingTrackDelegate d;
    auto p = Trackplayer::create(makeTrack(4, "1111111111111111"), &d, 0, true, &context);
    p->setVolume(0.5f, 0);
    EXPECT_FLOAT_EQ(p->entry(0)->channelAtIndex(0)->volume(), 1.0f);
    std::vector<int16_t> l(512), r(512);
    AudioBufferList out{2, {{1, 1024, l.data()}, {1, 1024, r.data()}}};
    controller->renderOffline(512, &out);
    EXPECT_EQ(l[99], 50);  // the hit holds 100 at frame 99 and 200 at frame 199
    EXPECT_EQ(l[199], 100);
    EXPECT_NEAR(r[0], 50.5, 0.5);
    Trackplayer::stopTrack(p);
    EXPECT_TRUE(context.trackplayers.empty());
    EXPECT_TRUE(context.loopplayers.empty());
    EXPECT_TRUE(context.loadedFiles.empty());  // stopping a track row frees the shared cache
}

TEST_F(TrackplayerTest, StoppingATrackKeepsSoundsThatAnotherPlayerStillPlays) {
    RecordingTrackDelegate d;
    Track* track = makeTrack(4, "1111111111111111");
    auto preview = Loopplayer::create(track->trackloops()[0]->loop(), nullptr, &context);
    auto p = Trackplayer::create(track, &d, 0, true, &context);
    Trackplayer::stopTrack(p);
    EXPECT_TRUE(context.loadedFiles.empty());
    ASSERT_EQ(context.retiredFiles.size(), 2u);  // "Hit" and the spare slots' "Kick", held by the preview

    std::vector<int16_t> l(512), r(512);
    renderChannel(preview->channelAtIndex(0), controller.get(), 512, l.data(), r.data());
    EXPECT_EQ(l[511], sounds["Hit"].left[511]);
    EXPECT_EQ(r[0], sounds["Hit"].right[0]);

    Loopplayer::stopLoop(preview);
    EXPECT_EQ(context.freeRetiredFiles(), 0u);
}
