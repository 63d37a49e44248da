// quillo-cli record -o FILE.wav [--seconds S] [--stereo] [--no-trim]: records
// the microphone the way the sound editor does (the engine's own output is
// mixed in; the silent null device gives silence), trims the silence off both
// ends unless told not to, and saves the take as FILE. Shows the input level
// on one refreshing line; Ctrl-C stops a recording without --seconds.
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <csignal>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "app/cli/CliSession.h"
#include "app/cli/Commands.h"
#include "engine/AudioFileWriter.h"
#include "library/media/Filer.h"
#include "recording/Autotrimmer.h"
#include "recording/OscilloscopeLayer.h"
#include "recording/Recorder.h"

namespace {

volatile std::sig_atomic_t interrupted = 0;
void onInterrupt(int) { interrupted = 1; }

void showLevel(double seconds, double peak, bool terminal) {
    if (!terminal) return;
    const double db = peak > 0 ? 20.0 * std::log10(peak) : -INFINITY;
    // 40 columns for 60 dB.
    const int filled = db <= -60 ? 0 : int(std::lround((db + 60.0) / 60.0 * 40.0));
    std::printf("\rrecording %6.1f s  input [%-40s] %s", seconds, std::string(size_t(filled), '#').c_str(),
                std::isinf(db) ? "  silent" : (std::to_string(int(std::lround(db))) + " dB   ").c_str());
    std::fflush(stdout);
}

}  // namespace

int runRecord(CliContext& context) {
    CliArgs args(context.args);
    auto out = args.take("-o");
    auto secondsText = args.take("--seconds");
    const bool stereo = args.takeFlag("--stereo");
    const bool noTrim = args.takeFlag("--no-trim");
    double seconds = 0;
    if (secondsText) {
        auto s = CliArgs::seconds("--seconds", *secondsText, 0.001, 86400.0);
        if (!s) return 2;
        seconds = *s;
    }
    if (!args.error().empty() || !args.rest().empty() || !out || out->empty()) {
        std::fprintf(stderr, "usage: quillo-cli record -o FILE.wav [--seconds S] [--stereo] [--no-trim]\n");
        return 2;
    }

    CliSession session(context, AudioDriverKind::Automatic, LibraryAccess::Read);
    AppDelegate& app = *session.app;
    AudioController* controller = app.audioController();
    app.recordToStereo = stereo;
    app.setACInputEnabled(true);
    if (!controller->audioInputAvailable())
        std::fprintf(stderr, "quillo-cli: no microphone here; recording what the engine plays (silence)\n");

    // The input trace, as the sound editor shows it; here only its level.
    const bool terminal = isatty(STDOUT_FILENO);
    auto trace = std::make_shared<OscilloscopeLayer>();
    auto* clock = static_cast<ManualRefreshClock*>(&trace->clock());
    trace->onDisplay = [&](const std::vector<OscilloscopePoint>&) {
        showLevel(app.recorder ? app.recorder->currentTime() : 0.0, trace->peak(), terminal);
    };
    app.inputOscilloscope = trace;
    controller->addInputReceiver(trace);
    trace->start();

    app.beginRecordingInput(true, true);
    if (!app.recorder || !app.recorder->writer()->writing()) {
        std::fprintf(stderr, "quillo-cli: cannot write the recording in %s\n", Filer::temporaryDirectory().c_str());
        app.endRecording();
        app.removeOsciloscp();
        return 1;
    }

    std::signal(SIGINT, onInterrupt);
    const auto start = std::chrono::steady_clock::now();
    auto nextTick = start;
    while (!interrupted) {
        session.mainThread.runUntil([] { return interrupted != 0; }, std::chrono::milliseconds(10));
        controller->pollForMessageResponses();
        const auto now = std::chrono::steady_clock::now();
        if (now >= nextTick) {
            clock->tick();
            nextTick = now + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                 std::chrono::duration<double>(OscilloscopeLayer::kRefreshInterval));
        }
        if (seconds > 0 && std::chrono::duration<double>(now - start).count() >= seconds) break;
    }
    std::signal(SIGINT, SIG_DFL);
    if (terminal) std::printf("\n");

    app.endRecording();
    app.removeOsciloscp();
    app.setACInputEnabled(false);

    const std::string scratch = Filer::pathToTemporaryDocument(Recorder::kScratchFileName);
    uint32_t kept = 0;
    if (!noTrim) {
        auto trimmer = Autotrimmer::initDefault();
        trimmer->autoTrimBeginAndEnd(true);
        kept = trimmer->trimLength();
        trimmer->releaseAutotrimmr();
    }
    if (!Filer::renameFileFromPath(scratch, *out)) {
        std::fprintf(stderr, "quillo-cli: cannot save the recording as %s: %s\n", out->c_str(), std::strerror(errno));
        return 1;
    }
    if (noTrim) std::printf("saved %s\n", out->c_str());
    else std::printf("saved %s (%.2f s after trimming)\n", out->c_str(), kept / 44100.0);
    return 0;
}
