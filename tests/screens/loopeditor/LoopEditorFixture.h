#pragma once
// The loop editor on a real store and the offline engine: every sound is an
// encoded WAV (its right channel names the sound), so a rendered bar says
// which sound sounds on which step.
#include <QCoreApplication>
#include <memory>

#include "playback/StepTiming.h"
#include "screens/loopeditor/OneLoopVC.h"
#include "tests/playback/PlayerHarness.h"

class LoopEditorFixture : public PlayerHarness {
protected:
    static constexpr int kBpm = 120;

    void TearDown() override {
        vc.reset();
        PlayerHarness::TearDown();
    }

    // A built-in loop of the given rows; sounds "S<id>" are created on demand
    // (1000 frames, shorter than a step).
    Loop* builtIn(const std::vector<Row>& rows) {
        for (const Row& r : rows)
            if (!sounds.count(r.sound)) addSound(r.sound, std::stoi(r.sound.substr(1)), 1000);
        return makeLoop(kBpm, rows);
    }

    void open(Loop* loop) {
        vc = std::make_unique<OneLoopVC>();
        vc->openLoop(loop);
        ASSERT_NE(vc->loopplayer(), nullptr);
    }

    // Renders one whole bar (the player starts at a bar line and tests edit between bars).
    struct Bar {
        std::vector<int16_t> left, right;
        // The sound heard just after step s begins: 0 for silence, else the
        // sum of the sounding sounds' ids (sounds are encoded 100 * id + 1).
        int soundsAtStep(int s) const {
            const int v = right[static_cast<size_t>(s) * framesPerStep(kBpm) + 10];
            return v == 0 ? 0 : v / 100;
        }
        int16_t leftAtStep(int s) const { return left[static_cast<size_t>(s) * framesPerStep(kBpm) + 10]; }
    };
    Bar renderBar() {
        const uint32_t frames = static_cast<uint32_t>(16 * framesPerStep(kBpm));
        Bar bar{std::vector<int16_t>(frames), std::vector<int16_t>(frames)};
        AudioBufferList out{2, {{1, frames * 2, bar.left.data()}, {1, frames * 2, bar.right.data()}}};
        controller->renderOffline(frames, &out);
        mainThread.runPending();
        controller->pollForMessageResponses();
        return bar;
    }
    // What each step of a bar sounds like, e.g. {0, 0, 0, 0, 2, ...}.
    std::vector<int> heard(const Bar& bar) {
        std::vector<int> v;
        for (int s = 0; s < 16; ++s) v.push_back(bar.soundsAtStep(s));
        return v;
    }
    static std::vector<int> steps(std::initializer_list<std::pair<int, int>> stepAndSound) {
        std::vector<int> v(16, 0);
        for (auto [s, id] : stepAndSound) v[static_cast<size_t>(s)] += id;
        return v;
    }

    // The tile object shown in a slot, as its index in the tile pool.
    int tileIndexAtSlot(int slot) const { return static_cast<int>(vc->tiles().indexOf(vc->tileAtSlot(slot))); }

    std::unique_ptr<OneLoopVC> vc;
};
