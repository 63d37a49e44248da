// libFuzzer target for the file loader and the WAV writer.
//
// The first byte picks what the rest is:
//   even: a file handed to the loader (any format libsndfile knows); when it
//         loads, the sound is written back as a 16-bit WAV and loaded again,
//         and the two loads must be sample for sample the same;
//   odd:  raw 16-bit stereo samples appended to a WAV writer in uneven pieces
//         (asynchronously and synchronously), read back and compared.
// Any crash, sanitizer report or mismatch (a trap) is a finding.
#include <sndfile.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "engine/AudioController.h"
#include "engine/AudioFileLoaderOperation.h"
#include "engine/AudioFileWriter.h"
#include "library/util/Log.h"

namespace {

const AudioStreamDescription kEngine = AudioController::nonInterleaved16BitStereoAudioDescription();

std::string scratchPath(const char* name) {
    return "/tmp/quillo-fuzz-" + std::to_string(getpid()) + "-" + name;
}

void check(bool ok) {
    if (!ok) __builtin_trap();
}

void fuzzLoader(const uint8_t* data, size_t size) {
    const std::string in = scratchPath("in");
    FILE* f = std::fopen(in.c_str(), "wb");
    if (!f) return;
    std::fwrite(data, 1, size, f);
    std::fclose(f);

    AudioFileLoaderOperation op(in, kEngine);
    op.start();
    if (op.error()) {
        check(op.bufferList() == nullptr);
        return;
    }
    AudioBufferList* first = op.bufferList();
    const uint32_t frames = op.lengthInFrames();
    check(first != nullptr && first->mNumberBuffers == 2);
    check(first->mBuffers[0].mDataByteSize == frames * 2);

    const std::string out = scratchPath("out.wav");
    AudioFileWriter writer(kEngine);
    AudioError error;
    if (frames > 0 && writer.beginWritingToFileAtPath(out, kAudioFileWAVEType, &error)) {
        check(AudioFileWriterAddAudioSynchronously(&writer, first, frames) == 0);
        writer.finishWriting();
        AudioFileLoaderOperation again(out, kEngine);
        again.start();
        check(!again.error() && again.lengthInFrames() == frames);
        for (int b = 0; b < 2; ++b)
            check(std::memcmp(again.bufferList()->mBuffers[b].mData, first->mBuffers[b].mData, size_t(frames) * 2) == 0);
        freeBufferList(again.bufferList());
    }
    freeBufferList(first);
}

void fuzzWriter(const uint8_t* data, size_t size) {
    const uint32_t frames = uint32_t(size / 4);
    if (frames == 0) return;
    std::vector<int16_t> left(frames), right(frames);
    for (uint32_t k = 0; k < frames; ++k) {
        std::memcpy(&left[k], data + 4 * k, 2);
        std::memcpy(&right[k], data + 4 * k + 2, 2);
    }
    const std::string out = scratchPath("samples.wav");
    AudioFileWriter writer(kEngine);
    AudioError error;
    check(writer.beginWritingToFileAtPath(out, kAudioFileWAVEType, &error));
    uint32_t at = 0;
    for (uint32_t piece = 1; at < frames; piece = piece * 3 % 997 + 1) {
        const uint32_t n = std::min(piece, frames - at);
        AudioBufferList list{2, {{1, n * 2, left.data() + at}, {1, n * 2, right.data() + at}}};
        if (piece % 2) check(AudioFileWriterAddAudio(&writer, &list, n) == 0);
        else check(AudioFileWriterAddAudioSynchronously(&writer, &list, n) == 0);
        at += n;
    }
    writer.finishWriting();
    SF_INFO info{};
    SNDFILE* f = sf_open(out.c_str(), SFM_READ, &info);
    check(f != nullptr && info.frames == frames && info.channels == 2);
    std::vector<int16_t> back(size_t(frames) * 2);
    check(sf_readf_short(f, back.data(), frames) == frames);
    sf_close(f);
    for (uint32_t k = 0; k < frames; ++k) check(back[2 * k] == left[k] && back[2 * k + 1] == right[k]);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    quillo_log::setSink([](const std::string&) {});  // failing calls are logged; keep the output readable
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    if (data[0] % 2 == 0) fuzzLoader(data + 1, size - 1);
    else fuzzWriter(data + 1, size - 1);
    return 0;
}
