// The real players against the frame-by-frame reference, under seeded random
// schedules of edits applied between render calls of random sizes. Every
// output frame and every report must match.
#include <random>

#include "engine/AudioFileLoaderOperation.h"
#include "playback/Trackloopplayer.h"
#include "playback/Trackplayer.h"
#include "tests/playback/PlayerHarness.h"

namespace {

struct CapturingDelegate : LoopplayerDelegate, TrackloopplayerDelegate {
    std::vector<RefEvent> events;
    void animateTact(uint16_t s) override { events.push_back({"tact", s}); }
    void animateStartPlaying(int i) override { events.push_back({"start", i}); }
    void animateStopPlaying(int i) override { events.push_back({"stop", i}); }
    void loopEndRepeating() override { events.push_back({"end", 0}); }
    void animateSquare(uint16_t s) override { events.push_back({"square", s}); }
    void animateTact(uint16_t s, Trackloopplayer*) override { events.push_back({"ttact", s}); }
};

}  // namespace

class ModelBasedPlayerTest : public PlayerHarness {
protected:
    void SetUp() override {
        PlayerHarness::SetUp();
        const uint32_t lengths[] = {1, 700, 2756, 5000, 9000, 15000};
        for (int k = 0; k < 6; ++k) {
            std::string name = "S" + std::to_string(k);
            addSound(name, k + 1, lengths[k]);
            names.push_back(name);
        }
    }
    std::shared_ptr<AudioFileLoaderOperation> loaded(const std::string& name) {
        std::string url = Filer::pathForWavSound(name);
        auto it = context.loadedFiles.find(url);
        if (it != context.loadedFiles.end()) return it->second;
        auto op = Filer::operationWithFileURL(url);
        context.loadedFiles[url] = op;
        return op;
    }
    std::vector<std::string> names;
};

TEST_F(ModelBasedPlayerTest, LoopPlayerMatchesTheReferenceUnderRandomEdits) {
    for (uint32_t seed = 1; seed <= 12; ++seed) {
        std::mt19937 rng(seed);
        auto pick = [&](int n) { return static_cast<int>(rng() % static_cast<uint32_t>(n)); };
        const int bpms[] = {60, 90, 100, 120, 128, 140, 173};
        int bpm = bpms[pick(7)];
        int rows = 1 + pick(8);
        std::vector<Row> rows_;
        RefLoop ref;
        ref.bpm = static_cast<float>(bpm);
        for (int r = 0; r < 8; ++r) {
            if (r < rows) {
                int s = pick(6);
                uint16_t mask = static_cast<uint16_t>(rng());
                rows_.push_back({names[static_cast<size_t>(s)], Tacter::printBinary(mask).substr(2, 16), 100});
                ref.slot[r].sound = &sounds[names[static_cast<size_t>(s)]];
                ref.slot[r].mask = mask;
            } else {
                ref.slot[r].sound = &sounds["Kick"];
            }
        }
        bool finite = seed % 3 == 0;
        ref.repeatTimes = finite ? 1 + rng() % 3 : ~0ull;
        CapturingDelegate d;
        auto player = finite ? Loopplayer::create(makeLoop(bpm, rows_), &d, ref.repeatTimes, float(bpm), &context)
                             : Loopplayer::create(makeLoop(bpm, rows_), &d, &context);
        std::vector<RefEvent> refEvents;
        uint64_t frame = 0;
        for (int call = 0; call < 400; ++call) {
            // An edit between calls, now and then.
            switch (pick(14)) {
            case 0: {
                int slot = pick(8);
                uint16_t m = static_cast<uint16_t>(rng());
                player->setTactsAtIndex(slot, m);
                ref.slot[slot].mask = m;
                break;
            }
            case 1: {
                float b = static_cast<float>(bpms[pick(7)]);
                player->setNewBpm(b);
                ref.bpm = b;
                break;
            }
            case 2:
                ref.paused = !ref.paused;
                player->setPausd(ref.paused);
                break;
            case 3: {
                int slot = pick(8);
                const std::string& n = names[static_cast<size_t>(pick(6))];
                player->changeFileAtIndex(slot, loaded(n));
                RefSlot& s = ref.slot[slot];
                s.sound = &sounds[n];
                s.needStart = s.playing = false;
                s.position = 0;
                break;
            }
            case 4: {
                // Rows deleted while playing: the ones below move up.
                int from = 1 + pick(7);
                player->changeItemsAtIndex(from - 1, from);
                ref.slot[from - 1] = ref.slot[from];
                break;
            }
            case 5: {
                float g = static_cast<float>(pick(101)) / 100.0f;
                int slot = pick(8);
                player->setVolume(g, slot);
                ASSERT_FLOAT_EQ(player->channelAtIndex(slot)->volume(), g);
                break;
            }
            default: break;
            }
            uint32_t n = 1 + static_cast<uint32_t>(rng() % (pick(4) == 0 ? 9000 : 700));
            for (int slot = 0; slot < 8; ++slot) {
                std::vector<int16_t> l(n, 0), r(n, 0), el(n, 0), er(n, 0);
                renderChannel(player->channelAtIndex(slot), controller.get(), n, l.data(), r.data());
                ref.render(slot, n, el.data(), er.data(), refEvents);
                for (uint32_t k = 0; k < n; ++k) {
                    ASSERT_EQ(l[k], el[k]) << "seed " << seed << " slot " << slot << " frame " << frame + k;
                    ASSERT_EQ(r[k], er[k]) << "seed " << seed << " slot " << slot << " frame " << frame + k;
                }
            }
            frame += n;
        }
        ASSERT_EQ(d.events, refEvents) << "seed " << seed;
        Loopplayer::stopLoop(player);
    }
}

TEST_F(ModelBasedPlayerTest, TrackRowsMatchTheReferenceUnderRandomEdits) {
    for (uint32_t seed = 1; seed <= 10; ++seed) {
        std::mt19937 rng(seed * 7919);
        auto pick = [&](int n) { return static_cast<int>(rng() % static_cast<uint32_t>(n)); };
        int bpm = 100 + pick(80);
        int rows = 1 + pick(8);
        std::vector<Row> rows_;
        RefTrackRow ref;
        ref.bpm = static_cast<float>(bpm);
        ref.trackLen = 1 + rng() % 20;
        ref.repeat = pick(2);
        ref.reports = true;
        uint32_t start = static_cast<uint32_t>(rng() % ref.trackLen);
        std::vector<LoopSquares*> blocks;
        for (int b = 0; b < 2; ++b) {
            ref.parts[b] = static_cast<uint16_t>(rng());
            blocks.push_back(CoreDater::shIns().loopSqrsWithSquares(ref.parts[b]));
        }
        for (int r = 0; r < rows; ++r) {
            int s = pick(6);
            uint16_t mask = static_cast<uint16_t>(rng());
            rows_.push_back({names[static_cast<size_t>(s)], Tacter::printBinary(mask).substr(2, 16), 100});
            ref.slot[r].sound = &sounds[names[static_cast<size_t>(s)]];
            ref.slot[r].mask = mask;
            ref.slot[r].square = static_cast<uint16_t>(start);
        }
        CapturingDelegate d;
        auto row = Trackloopplayer::create(makeLoop(bpm, rows_), &d, &d, ref.trackLen, float(bpm), &blocks, start,
                                           ref.repeat, &context);
        row->reallyAddChannelsToControlla(controller.get());
        std::vector<RefEvent> refEvents;
        for (int call = 0; call < 300; ++call) {
            switch (pick(10)) {
            case 0: {
                ref.parts[pick(2)] = static_cast<uint16_t>(rng());
                std::vector<LoopSquares*> now = {CoreDater::shIns().loopSqrsWithSquares(ref.parts[0]),
                                                 CoreDater::shIns().loopSqrsWithSquares(ref.parts[1])};
                row->setSquaresPartFromSet(&now);
                break;
            }
            case 1: {
                float b = static_cast<float>(100 + pick(80));
                row->setNewBpm(b);
                ref.bpm = b;
                break;
            }
            case 2:
                ref.paused = !ref.paused;
                row->setPausd(ref.paused);
                break;
            default: break;
            }
            uint32_t n = 1 + static_cast<uint32_t>(rng() % 2000);
            for (int slot = 0; slot < rows; ++slot) {
                std::vector<int16_t> l(n, 0), r(n, 0), el(n, 0), er(n, 0);
                renderChannel(row->channelAtIndex(slot), controller.get(), n, l.data(), r.data());
                ref.render(slot, n, el.data(), er.data(), refEvents);
                ASSERT_EQ(l, el) << "seed " << seed << " slot " << slot << " call " << call;
                ASSERT_EQ(r, er) << "seed " << seed << " slot " << slot << " call " << call;
            }
        }
        ASSERT_EQ(d.events, refEvents) << "seed " << seed;
        Loopplayer::stopLoop(row);
    }
}
