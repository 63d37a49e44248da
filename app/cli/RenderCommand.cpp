// quillo-cli render loop NAME -o FILE.wav [--repeats N]
// quillo-cli render track NAME -o FILE.wav [--start-square S]
// The same players and engine as live playing, driven by the offline driver:
// the file is sample-identical to what the device would have played.
#include <cstdio>
#include <filesystem>

#include "app/cli/CliSession.h"
#include "app/cli/Commands.h"
#include "engine/AudioFileWriter.h"
#include "library/model/Model.h"
#include "playback/Loopplayer.h"
#include "playback/StepTiming.h"
#include "playback/Trackplayer.h"

namespace {

// Renders `frames` frames of whatever plays into `path` (16-bit stereo WAVE).
// Writes to a temporary name first, so a failure leaves nothing behind.
bool renderToFile(AudioController* controller, uint64_t frames, const std::string& path) {
    const uint32_t kChunk = 8192;
    AudioBufferList* buffer = allocateBufferList(controller->audioDescription(), kChunk);
    std::string partial = path + ".part";
    AudioFileWriter writer(controller->audioDescription());
    AudioError error;
    if (!writer.beginWritingToFileAtPath(partial, kAudioFileWAVEType, 16, 2, &error)) {
        std::fprintf(stderr, "quillo-cli: cannot write %s: %s\n", path.c_str(), error.localizedDescription.c_str());
        freeBufferList(buffer);
        return false;
    }
    controller->setOfflinePassFrames(1024);
    ProgressLine progress;
    bool ok = true;
    for (uint64_t done = 0; done < frames && ok;) {
        uint32_t n = static_cast<uint32_t>(std::min<uint64_t>(kChunk, frames - done));
        buffer->mBuffers[0].mDataByteSize = buffer->mBuffers[1].mDataByteSize = n * 2;
        controller->renderOffline(n, buffer);
        ok = AudioFileWriterAddAudioSynchronously(&writer, buffer, n) == 0;
        done += n;
        progress.update(static_cast<double>(done) / static_cast<double>(frames));
    }
    writer.finishWriting();
    progress.finish();
    freeBufferList(buffer);
    std::error_code ec;
    if (ok) std::filesystem::rename(partial, path, ec);
    if (!ok || ec) {
        std::filesystem::remove(partial, ec);
        std::fprintf(stderr, "quillo-cli: writing %s failed\n", path.c_str());
        return false;
    }
    std::printf("%s\n", path.c_str());
    return true;
}

long parseCount(const std::optional<std::string>& text, long fallback) {
    if (!text) return fallback;
    char* end = nullptr;
    long v = std::strtol(text->c_str(), &end, 10);
    return end && *end == '\0' ? v : -1;
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
    CliSession session(context, AudioDriverKind::Offline);
    AudioController* controller = session.app->audioController();
    if (rest[0] == "loop") {
        Loop* loop = session.loopNamed(rest[1]);
        if (!loop) return 1;
        long repeats = parseCount(repeatsText, 1);
        if (repeats < 1) {
            std::fprintf(stderr, "quillo-cli: --repeats needs a whole number of at least 1\n");
            return 2;
        }
        auto player = Loopplayer::create(loop, nullptr, static_cast<uint64_t>(repeats), static_cast<float>(loop->bpm()));
        uint64_t frames = static_cast<uint64_t>(repeats) * 16 * framesPerStep(static_cast<float>(loop->bpm()));
        bool ok = renderToFile(controller, frames, *output);
        Loopplayer::stopLoop(player);
        return ok ? 0 : 1;
    }
    Track* track = session.trackNamed(rest[1]);
    if (!track) return 1;
    long start = parseCount(startText, 0);
    if (start < 0 || start >= track->squaresnum()) {
        std::fprintf(stderr, "quillo-cli: --start-square must be 0 to %d for \"%s\"\n", track->squaresnum() - 1,
                     track->name().c_str());
        return 2;
    }
    auto player = Trackplayer::create(track, nullptr, static_cast<uint32_t>(start), false);
    uint64_t frames = static_cast<uint64_t>(track->squaresnum() - start) * 16 *
                      framesPerStep(static_cast<float>(track->bpm()));
    bool ok = renderToFile(controller, frames, *output);
    Trackplayer::stopTrack(player);
    return ok ? 0 : 1;
}
