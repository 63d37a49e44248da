// quillo-cli trim IN.wav -o OUT.wav [--export]: cuts the silence off both ends
// of a sound the way Quillo trims a fresh recording (threshold 1000, 10 frames
// kept before the sound, 100 after it) or, with --export, a captured loop
// (everything from the first to the last non-zero sample). The result is a
// 16-bit WAV file with the channel count of IN (mono or stereo).
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "app/cli/Commands.h"
#include "engine/AudioFileLoaderOperation.h"
#include "library/media/Filer.h"
#include "recording/Autotrimmer.h"
#include "recording/Recorder.h"

int runTrim(CliContext& context) {
    CliArgs args(context.args);
    auto out = args.take("-o");
    const bool forExport = args.takeFlag("--export");
    if (!args.error().empty() || args.rest().size() != 1 || !out || out->empty()) {
        std::fprintf(stderr, "usage: quillo-cli trim IN.wav -o OUT.wav [--export]\n");
        return 2;
    }
    const std::string in = args.rest()[0];
    AudioStreamDescription format{};
    uint64_t frames = 0;
    AudioError error;
    if (!AudioFileLoaderOperation::infoForFileAtURL(in, &format, &frames, &error)) {
        std::fprintf(stderr, "quillo-cli: cannot read %s: %s\n", in.c_str(), error.localizedDescription.c_str());
        return 1;
    }

    // The header alone proves little: the whole file must decode, or there
    // is nothing to trim (and no output is written).
    {
        AudioFileLoaderOperation check(in, AudioStreamDescription{});
        check.audioReceiverBlock = [](const AudioBufferList*, uint32_t) {};
        check.start();
        if (check.error()) {
            std::fprintf(stderr, "quillo-cli: cannot read %s: %s\n", in.c_str(),
                         check.error()->localizedDescription.c_str());
            return 1;
        }
    }

    // The trimmer works on the scratch recording (in this process's own
    // temporary folder): put a copy of IN there.
    const std::string scratch = Filer::pathToTemporaryDocument(Recorder::kScratchFileName);
    Filer::deleteFileAtPath(scratch);
    if (!Filer::copyFile(in, scratch)) {
        std::fprintf(stderr, "quillo-cli: cannot copy %s to %s: %s\n", in.c_str(), scratch.c_str(),
                     std::strerror(errno));
        return 1;
    }
    const bool stereo = format.mChannelsPerFrame >= 2;
    Autotrimmer::setRecordToStereoSource([stereo] { return stereo; });
    auto trimmer = forExport ? Autotrimmer::initForExport() : Autotrimmer::initDefault();
    trimmer->autoTrimBeginAndEnd(true);
    const uint32_t start = trimmer->trimStart(), length = trimmer->trimLength();
    trimmer->releaseAutotrimmr();
    Autotrimmer::setRecordToStereoSource(nullptr);

    // The trimmed file must hold exactly the kept frames (a full disk shows here).
    AudioStreamDescription trimmedFormat{};
    uint64_t trimmedFrames = 0;
    if (!AudioFileLoaderOperation::infoForFileAtURL(scratch, &trimmedFormat, &trimmedFrames, &error) ||
        trimmedFrames != length) {
        std::fprintf(stderr, "quillo-cli: trimming %s failed: %s\n", in.c_str(),
                     error.localizedDescription.empty() ? "the trimmed sound could not be written"
                                                        : error.localizedDescription.c_str());
        Filer::deleteFileAtPath(scratch);
        return 1;
    }
    if (!Filer::renameFileFromPath(scratch, *out)) {
        std::fprintf(stderr, "quillo-cli: cannot save %s: %s\n", out->c_str(), std::strerror(errno));
        Filer::deleteFileAtPath(scratch);
        return 1;
    }
    std::printf("kept frames %u to %u of %llu (%.3f s) in %s\n", start, start + length,
                static_cast<unsigned long long>(frames), length / 44100.0, out->c_str());
    return 0;
}
