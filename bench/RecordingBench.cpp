// Trimming a 10-minute stereo recording, against the cost of only reading
// that file into memory and writing it out again with libsndfile. The trim
// reads, converts, scans, copies and writes the whole take, so the second
// number is the floor it is measured against (aim: at most 1.5 times it).
#include <benchmark/benchmark.h>
#include <sndfile.h>
#include <stdlib.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "BenchFolder.h"
#include "library/media/Filer.h"
#include "recording/Autotrimmer.h"
#include "recording/Recorder.h"

namespace fs = std::filesystem;

namespace {

constexpr sf_count_t kFrames = 10 * 60 * 44100;

// A 10-minute stereo take: a second of room noise below the threshold at each
// end, a busy signal in between.
const std::string& takePath() {
    static BenchFolder folder;
    static std::string path;
    if (!path.empty()) return path;
    const std::string& dir = folder.path;
    Filer::setTemporaryDirectory(dir);
    path = dir + "/take.wav";
    SF_INFO info{};
    info.samplerate = 44100;
    info.channels = 2;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* f = sf_open(path.c_str(), SFM_WRITE, &info);
    std::vector<int16_t> block(2 * 44100);
    for (sf_count_t at = 0; at < kFrames; at += 44100) {
        const bool quiet = at == 0 || at + 44100 >= kFrames;
        for (sf_count_t k = 0; k < 44100; ++k) {
            const auto n = uint32_t(at + k);
            const int16_t s = quiet ? int16_t(n % 64) : int16_t((n * 2654435761u) >> 18) - 8192;
            block[size_t(2 * k)] = s;
            block[size_t(2 * k + 1)] = int16_t(-s / 2);
        }
        sf_writef_short(f, block.data(), 44100);
    }
    sf_close(f);
    return path;
}

void BM_TrimTenMinuteStereoRecording(benchmark::State& state) {
    const std::string& take = takePath();
    const std::string scratch = Filer::pathToTemporaryDocument(Recorder::kScratchFileName);
    Autotrimmer::setRecordToStereoSource([] { return true; });
    for (auto _ : state) {
        state.PauseTiming();
        fs::copy_file(take, scratch, fs::copy_options::overwrite_existing);
        state.ResumeTiming();
        auto trimmer = Autotrimmer::initDefault();
        trimmer->autoTrimBeginAndEnd(true);
        const uint32_t kept = trimmer->trimLength();
        trimmer->releaseAutotrimmr();
        if (kept < kFrames - 2 * 44100 || kept > kFrames) {
            state.SkipWithError("the take was not trimmed");
            break;
        }
    }
    state.counters["MB/s"] = benchmark::Counter(double(kFrames) * 4 / 1e6 * double(state.iterations()),
                                                benchmark::Counter::kIsRate);
}
BENCHMARK(BM_TrimTenMinuteStereoRecording)->Unit(benchmark::kMillisecond)->MinTime(3.0);

// The floor: libsndfile reads the whole file into fresh memory and writes it again.
void BM_SndfileReadAndWriteTenMinutes(benchmark::State& state) {
    const std::string& take = takePath();
    const std::string out = Filer::pathToTemporaryDocument("copy.wav");
    for (auto _ : state) {
        SF_INFO info{};
        SNDFILE* in = sf_open(take.c_str(), SFM_READ, &info);
        std::unique_ptr<int16_t[]> samples(new int16_t[size_t(info.frames) * size_t(info.channels)]);
        const sf_count_t got = sf_readf_short(in, samples.get(), info.frames);
        sf_close(in);
        SF_INFO outInfo{};
        outInfo.samplerate = info.samplerate;
        outInfo.channels = info.channels;
        outInfo.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
        SNDFILE* f = sf_open(out.c_str(), SFM_WRITE, &outInfo);
        if (!f || sf_writef_short(f, samples.get(), got) != kFrames) {
            state.SkipWithError("could not write the copy");
            break;
        }
        sf_close(f);
    }
    state.counters["MB/s"] = benchmark::Counter(double(kFrames) * 4 / 1e6 * double(state.iterations()),
                                                benchmark::Counter::kIsRate);
}
BENCHMARK(BM_SndfileReadAndWriteTenMinutes)->Unit(benchmark::kMillisecond)->MinTime(3.0);

}  // namespace

BENCHMARK_MAIN();
