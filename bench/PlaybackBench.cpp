// Offline rendering of the heaviest track, and launching the application.
#include <benchmark/benchmark.h>
#include <sndfile.h>
#include <stdlib.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "app/AppDelegate.h"
#include "engine/AudioController.h"
#include "engine/MainThread.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "library/patterns/Tacter.h"
#include "library/store/LibraryStore.h"
#include "playback/Loopplayer.h"
#include "playback/PlaybackContext.h"
#include "playback/StepTiming.h"
#include "playback/Trackplayer.h"

namespace {

std::string freshFolder() {
    std::string tmpl = (std::filesystem::temp_directory_path() / "quillo-bench-XXXXXX").string();
    return mkdtemp(tmpl.data());
}

void writeTone(const std::string& path, double hz, int frames) {
    SF_INFO info{};
    info.samplerate = 44100;
    info.channels = 2;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* f = sf_open(path.c_str(), SFM_WRITE, &info);
    std::vector<short> data(static_cast<size_t>(frames) * 2);
    for (int k = 0; k < frames; ++k)
        data[2 * static_cast<size_t>(k)] = data[2 * static_cast<size_t>(k) + 1] =
            static_cast<short>(2000.0 * std::sin(2 * M_PI * hz * k / 44100.0));
    sf_writef_short(f, data.data(), frames);
    sf_close(f);
}

// 10 rows, each a loop of 8 instruments with every step on, 128 squares at 120 bpm.
void BM_RenderHeaviestTrackOffline(benchmark::State& state) {
    std::string folder = freshFolder();
    Filer::setDocumentsDirectory(folder);
    auto store = LibraryStore::open(folder + "/fladrix.sqlite", nullptr);
    CoreDater& d = CoreDater::shIns();
    d.setManagedObjectContext(store.get());
    for (int s = 0; s < 8; ++s) {
        std::string name = "Tone " + std::to_string(s);
        writeTone(Filer::pathForWavSound(name), 110.0 * (s + 1), 30000);
        d.createRecordedSound(name, 1, "Bench");
    }
    std::vector<TrackLoop*> rows;
    for (int r = 0; r < 10; ++r) {
        std::vector<Instrument*> instruments;
        for (int s = 0; s < 8; ++s)
            instruments.push_back(d.createInstrumentWithSound("Tone " + std::to_string(s), 0xFFFF, 100));
        Loop* loop = d.createPreloadedLoop("Row " + std::to_string(r), 120, instruments, "Bench", "Bench");
        std::vector<LoopSquares*> blocks;
        for (int b = 0; b < 8; ++b) blocks.push_back(d.loopSqrsWithSquares(0xFFFF));
        rows.push_back(d.createTrackLoopWithLoop(loop, blocks, 100, 1));
    }
    Track* track = d.createPreloadedTrack("Heaviest", 120, 128, rows, "Bench");

    RunLoopMainThread mainThread;
    AudioControllerOptions options;
    options.driver = AudioDriverKind::Offline;
    options.mainThread = &mainThread;
    AudioController controller(AudioController::nonInterleaved16BitStereoAudioDescription(), false, options);
    controller.start(nullptr);
    controller.setOfflinePassFrames(1024);  // as quillo-cli render does
    PlaybackContext context;
    context.audioController = &controller;
    PlaybackContext::setShared(&context);
    Filer::setAudioController(&controller);

    const uint64_t frames = 128ull * 16 * framesPerStep(120.0f);
    const uint32_t chunk = 4096;
    AudioBufferList* out = allocateBufferList(controller.audioDescription(), chunk);
    for (auto _ : state) {
        auto player = Trackplayer::create(track, nullptr, 0, false, &context);
        for (uint64_t done = 0; done < frames; done += chunk) {
            uint32_t n = static_cast<uint32_t>(std::min<uint64_t>(chunk, frames - done));
            controller.renderOffline(n, out);
        }
        benchmark::DoNotOptimize(out->mBuffers[0].mData);
        state.PauseTiming();
        Trackplayer::stopTrack(player);
        mainThread.runPending();
        state.ResumeTiming();
    }
    double audioSeconds = static_cast<double>(frames) / 44100.0;
    state.counters["audio_s"] = audioSeconds;
    state.counters["x_realtime"] = benchmark::Counter(audioSeconds * static_cast<double>(state.iterations()),
                                                     benchmark::Counter::kIsRate);
    freeBufferList(out);
    controller.stop();
    PlaybackContext::setShared(nullptr);
    d.setManagedObjectContext(nullptr);
    Filer::setAudioController(nullptr);
    std::filesystem::remove_all(folder);
}
// Measured in processor time: "times real time on one core".
BENCHMARK(BM_RenderHeaviestTrackOffline)->Unit(benchmark::kMillisecond)->Iterations(3);

// The application as launched on a machine without a sound card.
AppDelegateOptions launchOptions(const std::string& folder, MainThread* mainThread) {
    AppDelegateOptions options;
    options.libraryFolder = folder;
    options.settingsFile = folder + "/settings.ini";
    options.driver = AudioDriverKind::Null;
    options.mainThread = mainThread;
    return options;
}

// First launch: an empty library gets its built-in content and the engine starts.
void BM_FirstLaunch(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        std::string folder = freshFolder();
        RunLoopMainThread mainThread;
        AppDelegateOptions options = launchOptions(folder, &mainThread);
        state.ResumeTiming();
        {
            AppDelegate app(options);
            app.didFinishLaunching();
            benchmark::DoNotOptimize(app.audioController());
            state.PauseTiming();
        }
        std::filesystem::remove_all(folder);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_FirstLaunch)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();

// A later launch of a library that already holds the built-in content.
void BM_LaterLaunch(benchmark::State& state) {
    std::string folder = freshFolder();
    RunLoopMainThread mainThread;
    AppDelegateOptions options = launchOptions(folder, &mainThread);
    {
        AppDelegate first(options);
        first.didFinishLaunching();
    }
    for (auto _ : state) {
        auto app = std::make_unique<AppDelegate>(options);
        app->didFinishLaunching();
        benchmark::DoNotOptimize(app->audioController());
        state.PauseTiming();
        app.reset();
        state.ResumeTiming();
    }
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_LaterLaunch)->Unit(benchmark::kMillisecond)->Iterations(10)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
