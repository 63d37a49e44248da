// The loop editor while it plays: how soon a tapped step sounds in the
// rendered output, and what one tap costs the main thread with its save.
#include <benchmark/benchmark.h>
#include <sndfile.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <vector>

#include "bench/BenchFolder.h"
#include "engine/AudioController.h"
#include "engine/MainThread.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "library/store/LibraryStore.h"
#include "playback/Loopplayer.h"
#include "playback/PlaybackContext.h"
#include "playback/StepTiming.h"
#include "screens/loopeditor/OneLoopVC.h"

namespace {

constexpr uint32_t kPass = 256;  // frames per render pass, as a sound device asks

void writeClick(const std::string& path, int frames) {
    SF_INFO info{};
    info.samplerate = 44100;
    info.channels = 2;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* f = sf_open(path.c_str(), SFM_WRITE, &info);
    std::vector<short> data(static_cast<size_t>(frames) * 2, 3000);
    sf_writef_short(f, data.data(), frames);
    sf_close(f);
}

// A user loop of two instruments playing in an editor on the offline engine.
struct Editing {
    BenchFolder folder;
    std::unique_ptr<LibraryStore> store;
    RunLoopMainThread mainThread;
    std::unique_ptr<AudioController> controller;
    PlaybackContext context;
    std::unique_ptr<OneLoopVC> vc;
    std::vector<int16_t> left = std::vector<int16_t>(kPass), right = std::vector<int16_t>(kPass);
    AudioBufferList out{2, {{1, kPass * 2, left.data()}, {1, kPass * 2, right.data()}}};
    uint64_t rendered = 0;

    Editing() {
        Filer::setDocumentsDirectory(folder.path);
        Filer::setResourceDirectory(folder.path);
        writeClick(folder.path + "/Kick.wav", 1000);
        store = LibraryStore::open(folder.path + "/library.sqlite", nullptr);
        CoreDater& d = CoreDater::shIns();
        d.setManagedObjectContext(store.get());
        writeClick(Filer::pathForWavSound("Click"), 1000);  // shorter than a step
        d.createRecordedSound("Click", 1, "Bench");
        Loop* loop = d.createPreloaded(false, "Bench", 120,
                                       {d.createInstrumentWithSound("Click", 0, 100), d.createInstrumentWithSound("Click", 0, 100)},
                                       "Bench", "Bench");
        AudioControllerOptions options;
        options.driver = AudioDriverKind::Offline;
        options.mainThread = &mainThread;
        controller = std::make_unique<AudioController>(AudioController::nonInterleaved16BitStereoAudioDescription(), false,
                                                       options);
        controller->start(nullptr);
        context.audioController = controller.get();
        PlaybackContext::setShared(&context);
        vc = std::make_unique<OneLoopVC>();
        vc->openLoop(loop);
        vc->instrPressed(vc->tiles().indexOf(vc->tileAtSlot(0)));
    }
    ~Editing() {
        vc.reset();
        PlaybackContext::setShared(nullptr);
        controller->stop();
        CoreDater::shIns().setManagedObjectContext(nullptr);
    }
    // Renders one pass; answers the first sounding frame in it, or -1.
    int64_t renderPass() {
        controller->renderOffline(kPass, &out);
        mainThread.runPending();
        for (uint32_t k = 0; k < kPass; ++k)
            if (left[k] != 0) return static_cast<int64_t>(rendered + k);
        return -1;
    }
};

// Taps the next step and renders pass by pass until it sounds. Reported:
// frames from the step's boundary to its sound (0: it sounds on the
// boundary), and from the tap to the sound.
void BM_StepTapToSounding(benchmark::State& state) {
    Editing e;
    const uint64_t f = framesPerStep(120.0f);
    std::vector<double> late, wait;
    for (auto _ : state) {
        const uint64_t tap = e.rendered;
        const uint64_t boundary = (tap / f + 1) * f;
        const int step = static_cast<int>((tap / f + 1) % 16);
        e.vc->instrumentView()->tactPressed(step);
        int64_t heard = -1;
        while (heard < 0 && e.rendered < tap + 2 * 16 * f) {
            heard = e.renderPass();
            e.rendered += kPass;
        }
        e.vc->instrumentView()->tactPressed(step);  // off again
        while (e.rendered < boundary + f) {  // past the click, silence again
            e.renderPass();
            e.rendered += kPass;
        }
        late.push_back(static_cast<double>(heard - static_cast<int64_t>(boundary)));
        wait.push_back(static_cast<double>(heard - static_cast<int64_t>(tap)) / 44.1);
    }
    std::sort(late.begin(), late.end());
    std::sort(wait.begin(), wait.end());
    state.counters["late_frames_max"] = late.back();
    state.counters["late_frames_median"] = late[late.size() / 2];
    state.counters["tap_to_sound_ms_median"] = wait[wait.size() / 2];
    state.counters["tap_to_sound_ms_max"] = wait.back();
}
BENCHMARK(BM_StepTapToSounding)->Iterations(64)->Unit(benchmark::kMillisecond);

// One step tap on the main thread: the mask, the save, and every mask sent to the player.
void BM_StepTapMainThreadCost(benchmark::State& state) {
    Editing e;
    std::vector<double> us;
    int step = 0;
    for (auto _ : state) {
        const auto t0 = std::chrono::steady_clock::now();
        e.vc->instrumentView()->tactPressed(step);
        const auto t1 = std::chrono::steady_clock::now();
        us.push_back(std::chrono::duration<double, std::micro>(t1 - t0).count());
        step = (step + 5) % 16;
        state.PauseTiming();
        e.renderPass();  // the player keeps playing between taps
        e.rendered += kPass;
        state.ResumeTiming();
    }
    std::sort(us.begin(), us.end());
    state.counters["tap_us_median"] = us[us.size() / 2];
    state.counters["tap_us_p99"] = us[us.size() * 99 / 100];
}
BENCHMARK(BM_StepTapMainThreadCost)->Iterations(500)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
