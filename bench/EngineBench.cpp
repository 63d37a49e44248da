// The engine's costs: one render pass of a heavy scene against its real-time
// budget, and loading a sound against libsndfile's raw read of the same file
// (and, when the rate differs, against the raw read plus a standalone soxr
// conversion of the same samples).
#include <benchmark/benchmark.h>
#include <sndfile.h>
#include <soxr.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <map>
#include <memory>
#include <vector>

#include "engine/AudioController.h"
#include "engine/AudioFileLoaderOperation.h"

namespace {

const AudioStreamDescription kEngine = AudioController::nonInterleaved16BitStereoAudioDescription();
constexpr double kBudgetSeconds = 256.0 / 44100.0;  // 5.8 ms

// 80 channels in 10 groups, each copying a sound like a player's slot.
void BM_RenderPass80Channels(benchmark::State& state) {
    RunLoopMainThread main;
    AudioControllerOptions options;
    options.driver = AudioDriverKind::Offline;
    options.mainThread = &main;
    AudioController c(kEngine, false, options);
    AudioError error;
    c.start(&error);
    std::vector<int16_t> sound(44100);
    for (size_t i = 0; i < sound.size(); ++i) sound[i] = int16_t(8000 * std::sin(double(i) * 0.03));
    for (int g = 0; g < 10; ++g) {
        AudioChannelGroup* group = c.createChannelGroup();
        c.setVolume(0.7f, group);
        std::vector<std::shared_ptr<AudioChannel>> row;
        for (int i = 0; i < 8; ++i) {
            auto position = std::make_shared<uint32_t>(uint32_t(g * 800 + i * 100));
            auto ch = BlockChannel::channelWithBlock([&sound, position](const AudioTimeStamp&, uint32_t frames,
                                                                        AudioBufferList* audio) {
                auto* l = static_cast<int16_t*>(audio->mBuffers[0].mData);
                auto* r = static_cast<int16_t*>(audio->mBuffers[1].mData);
                for (uint32_t k = 0; k < frames; ++k) {
                    const int16_t s = sound[(*position)++ % sound.size()];
                    l[k] = s;
                    r[k] = s;
                }
            });
            ch->setVolume(0.5f);
            row.push_back(ch);
        }
        c.addChannels(row, group);
    }
    AudioBufferList* out = allocateBufferList(kEngine, 256);
    double seconds = 0;
    for (auto _ : state) {
        const auto t0 = std::chrono::steady_clock::now();
        c.renderOffline(256, out);
        seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        benchmark::DoNotOptimize(out->mBuffers[0].mData);
    }
    freeBufferList(out);
    // Share of the 5.8 ms a 256-frame callback may take, in percent.
    state.counters["budget_pct"] = 100.0 * seconds / double(state.iterations()) / kBudgetSeconds;
    state.counters["channels"] = 80;
}
BENCHMARK(BM_RenderPass80Channels)->Unit(benchmark::kMicrosecond);

// A 10 s stereo WAV at `rate`, written once per rate.
std::string testFile(int rate) {
    static std::map<int, std::string> paths;
    std::string& path = paths[rate];
    if (!path.empty()) return path;
    path = (std::filesystem::temp_directory_path() /
            ("quillo-bench-" + std::to_string(getpid()) + "-" + std::to_string(rate) + ".wav"))
               .string();
    const sf_count_t frames = rate * 10;
    SF_INFO info{};
    info.samplerate = rate;
    info.channels = 2;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* f = sf_open(path.c_str(), SFM_WRITE, &info);
    std::vector<int16_t> s(size_t(frames) * 2);
    for (size_t i = 0; i < size_t(frames); ++i) s[2 * i] = s[2 * i + 1] = int16_t(10000 * std::sin(double(i) * 0.02));
    sf_writef_short(f, s.data(), frames);
    sf_close(f);
    static bool cleanup = [] {
        std::atexit([] {
            for (auto& [r, p] : paths) std::filesystem::remove(p);
        });
        return true;
    }();
    (void)cleanup;
    return path;
}

double rawReadSeconds(const std::string& path) {
    const auto t0 = std::chrono::steady_clock::now();
    SF_INFO info{};
    SNDFILE* f = sf_open(path.c_str(), SFM_READ, &info);
    std::vector<int16_t> s(size_t(info.frames * info.channels));
    sf_readf_short(f, s.data(), info.frames);
    sf_close(f);
    benchmark::DoNotOptimize(s.data());
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

// A standalone conversion of the file's samples to 44.1 kHz with soxr at high
// quality, 16-bit in and out, as the loader converts (the read not counted).
double soxrSeconds(const std::string& path) {
    SF_INFO info{};
    SNDFILE* f = sf_open(path.c_str(), SFM_READ, &info);
    std::vector<int16_t> in(size_t(info.frames * info.channels));
    sf_readf_short(f, in.data(), info.frames);
    sf_close(f);
    const double ratio = 44100.0 / info.samplerate;
    std::vector<int16_t> out((size_t(double(info.frames) * ratio) + 1024) * size_t(info.channels));
    const auto t0 = std::chrono::steady_clock::now();
    soxr_io_spec_t io = soxr_io_spec(SOXR_INT16_I, SOXR_INT16_I);
    io.flags |= SOXR_NO_DITHER;
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    soxr_t s = soxr_create(info.samplerate, 44100.0, unsigned(info.channels), nullptr, &io, &quality, nullptr);
    const size_t outFrames = out.size() / size_t(info.channels);
    const size_t ch = size_t(info.channels);
    size_t used = 0, made = 0, total = 0;
    // In pieces of 64k frames, as a streaming converter works (and the loader does).
    for (size_t at = 0; at < size_t(info.frames); at += used) {
        const size_t piece = std::min<size_t>(65536, size_t(info.frames) - at);
        soxr_process(s, in.data() + at * ch, piece, &used, out.data() + total * ch, outFrames - total, &made);
        total += made;
    }
    do {
        soxr_process(s, nullptr, 0, nullptr, out.data() + total * ch, outFrames - total, &made);
        total += made;
    } while (made > 0 && total < outFrames);
    soxr_delete(s);
    benchmark::DoNotOptimize(out.data());
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

void BM_StandaloneSoxrConversion(benchmark::State& state) {
    const std::string path = testFile(int(state.range(0)));
    double total = 0;
    for (auto _ : state) {
        const double seconds = soxrSeconds(path);
        total += seconds;
        state.SetIterationTime(seconds);
    }
}
BENCHMARK(BM_StandaloneSoxrConversion)->Arg(48000)->UseManualTime()->Unit(benchmark::kMillisecond);

// libsndfile's raw read: the whole file as interleaved 16-bit samples.
void BM_RawSndfileRead(benchmark::State& state) {
    const std::string path = testFile(int(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(rawReadSeconds(path));
}
BENCHMARK(BM_RawSndfileRead)->Arg(48000)->Arg(44100)->Unit(benchmark::kMillisecond);

// Loading into the engine format (44.1 kHz, non-interleaved) from the same
// file; vs_raw is the ratio to the raw read, measured in the same run. At
// 48 kHz the load includes the rate conversion to 44.1 kHz, and
// vs_raw_plus_soxr is the ratio to the raw read plus a standalone conversion.
void BM_LoadWavIntoEngineFormat(benchmark::State& state) {
    const std::string path = testFile(int(state.range(0)));
    const bool converts = state.range(0) != 44100;
    double loadTotal = 0, rawTotal = 0, soxrTotal = 0;
    for (auto _ : state) {
        const auto t0 = std::chrono::steady_clock::now();
        AudioFileLoaderOperation op(path, kEngine);
        op.start();
        loadTotal += std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        state.PauseTiming();
        freeBufferList(op.bufferList());
        rawTotal += rawReadSeconds(path);
        if (converts) soxrTotal += soxrSeconds(path);
        state.ResumeTiming();
    }
    state.counters["vs_raw"] = rawTotal > 0 ? loadTotal / rawTotal : 0;
    if (converts) state.counters["vs_raw_plus_soxr"] = loadTotal / (rawTotal + soxrTotal);
}
BENCHMARK(BM_LoadWavIntoEngineFormat)->Arg(48000)->Arg(44100)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
