// quillo-cli render loop NAME -o FILE.wav [--repeats N]
// quillo-cli render track NAME -o FILE.wav [--start-square S]
// The same players and engine as live playing, driven by the offline driver:
// the file is sample-identical to what the device would have played.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "app/cli/CliSession.h"
#include "app/cli/Commands.h"
#include "engine/AudioFileLoaderOperation.h"
#include "engine/AudioFileWriter.h"
#include "library/model/Model.h"
#include "playback/Loopplayer.h"
#include "playback/StepTiming.h"
#include "playback/Trackplayer.h"

namespace {

// Ctrl-C or SIGTERM while rendering: stop, remove the partial file, exit.
volatile std::sig_atomic_t stopSignal = 0;
void onStopSignal(int signal) { stopSignal = signal; }

// The longest loop render, in bars (about 45 minutes at 90 bpm).
constexpr long kMaxRepeats = 1000;

// Renders `frames` frames of whatever plays into `path` (16-bit stereo WAVE).
// Writes to a temporary name first, so a failure or an interruption leaves
// nothing behind. Returns the exit status.
int renderToFile(AudioController* controller, uint64_t frames, const std::string& path) {
    const uint32_t kChunk = 8192;
    std::string partial = path + ".part";
    // Caught before the partial file exists, so that it never outlives us.
    stopSignal = 0;
    auto previousInt = std::signal(SIGINT, onStopSignal);
    auto previousTerm = std::signal(SIGTERM, onStopSignal);
    AudioFileWriter writer(controller->audioDescription());
    AudioError error;
    if (!writer.beginWritingToFileAtPath(partial, kAudioFileWAVEType, 16, 2, &error)) {
        std::fprintf(stderr, "quillo-cli: cannot write %s: %s\n", path.c_str(), error.localizedDescription.c_str());
        std::signal(SIGINT, previousInt);
        std::signal(SIGTERM, previousTerm);
        return 1;
    }
    AudioBufferList* buffer = allocateBufferList(controller->audioDescription(), kChunk);
    controller->setOfflinePassFrames(1024);
    ProgressLine progress;
    int writeErrno = 0;
    bool ok = true;
    for (uint64_t done = 0; done < frames && ok && !stopSignal;) {
        uint32_t n = static_cast<uint32_t>(std::min<uint64_t>(kChunk, frames - done));
        buffer->mBuffers[0].mDataByteSize = buffer->mBuffers[1].mDataByteSize = n * 2;
        controller->renderOffline(n, buffer);
        errno = 0;
        ok = AudioFileWriterAddAudioSynchronously(&writer, buffer, n) == 0;
        if (!ok) writeErrno = errno ? errno : EIO;
        done += n;
        progress.update(static_cast<double>(done) / static_cast<double>(frames));
    }
    writer.finishWriting();
    progress.finish();
    freeBufferList(buffer);
    std::error_code ec;
    if (ok && !stopSignal) {
        // The header is written on closing: check the file is whole.
        AudioStreamDescription format{};
        uint64_t written = 0;
        if (!AudioFileLoaderOperation::infoForFileAtURL(partial, &format, &written, &error) || written != frames)
            ok = false, writeErrno = ENOSPC;
    }
    if (ok && !stopSignal) std::filesystem::rename(partial, path, ec);
    const int signal = stopSignal;
    if (!ok || ec || signal) {
        std::error_code ignored;
        std::filesystem::remove(partial, ignored);
    }
    std::signal(SIGINT, previousInt);
    std::signal(SIGTERM, previousTerm);
    if (signal) {
        std::fprintf(stderr, "quillo-cli: interrupted; %s was not written\n", path.c_str());
        return 128 + signal;
    }
    if (!ok || ec) {
        std::fprintf(stderr, "quillo-cli: writing %s failed: %s\n", path.c_str(),
                     ec ? ec.message().c_str() : std::strerror(writeErrno));
        return 1;
    }
    std::printf("%s\n", path.c_str());
    return 0;
}

}  // namespace

int runRender(CliContext& context) {
    CliArgs args(context.args);
    auto output = args.take("-o");
    auto repeatsText = args.take("--repeats");
    auto startText = args.take("--start-square");
    const auto& rest = args.rest();
    if (!args.error().empty() || rest.size() != 2 || !output || (rest[0] != "loop" && rest[0] != "track")) {
        std::fprintf(stderr,
                     "usage: quillo-cli render loop NAME -o FILE.wav [--repeats N]\n"
                     "       quillo-cli render track NAME -o FILE.wav [--start-square S]\n");
        return 2;
    }
    std::optional<long> repeats = 1, start = 0;
    if (repeatsText && !(repeats = CliArgs::wholeNumber("--repeats", *repeatsText, 1, kMaxRepeats))) return 2;
    if (startText && !(start = CliArgs::wholeNumber("--start-square", *startText, 0, 127))) return 2;
    CliSession session(context, AudioDriverKind::Offline, LibraryAccess::Read);
    AudioController* controller = session.app->audioController();
    if (rest[0] == "loop") {
        Loop* loop = session.loopNamed(rest[1]);
        if (!loop) return 1;
        auto player = Loopplayer::create(loop, nullptr, static_cast<uint64_t>(*repeats), static_cast<float>(loop->bpm()));
        uint64_t frames = static_cast<uint64_t>(*repeats) * 16 * framesPerStep(static_cast<float>(loop->bpm()));
        int status = renderToFile(controller, frames, *output);
        Loopplayer::stopLoop(player);
        return status;
    }
    Track* track = session.trackNamed(rest[1]);
    if (!track) return 1;
    if (*start >= track->squaresnum()) {
        std::fprintf(stderr, "quillo-cli: --start-square must be 0 to %d for \"%s\"\n", track->squaresnum() - 1,
                     track->name().c_str());
        return 2;
    }
    auto player = Trackplayer::create(track, nullptr, static_cast<uint32_t>(*start), false);
    uint64_t frames = static_cast<uint64_t>(track->squaresnum() - *start) * 16 *
                      framesPerStep(static_cast<float>(track->bpm()));
    int status = renderToFile(controller, frames, *output);
    Trackplayer::stopTrack(player);
    return status;
}
