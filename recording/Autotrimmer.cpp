#include "recording/Autotrimmer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "engine/AudioController.h"
#include "engine/AudioFileLoaderOperation.h"
#include "engine/AudioFileWriter.h"
#include "library/media/Filer.h"
#include "library/util/Log.h"
#include "recording/Recorder.h"

namespace {

std::function<bool()>& stereoSource() {
    static std::function<bool()> source;
    return source;
}

}  // namespace

std::unique_ptr<Autotrimmer> Autotrimmer::initDefault() { return initWithMinVal(1000, 10, 100); }
std::unique_ptr<Autotrimmer> Autotrimmer::initForExport() { return initWithMinVal(0, 0, 0); }
std::unique_ptr<Autotrimmer> Autotrimmer::initWithMinVal(int16_t minVal, uint32_t startOff, uint32_t endOff) {
    return std::make_unique<Autotrimmer>(minVal, startOff, endOff);
}

Autotrimmer::Autotrimmer(int16_t minVal, uint32_t startOff, uint32_t endOff)
    : minVal_(minVal), startOff_(startOff), endOff_(endOff) {}

Autotrimmer::~Autotrimmer() { releaseAutotrimmr(); }

void Autotrimmer::setRecordToStereoSource(std::function<bool()> source) { stereoSource() = std::move(source); }

bool Autotrimmer::recordToStereo() { return stereoSource() ? stereoSource()() : false; }

void Autotrimmer::dropLoadedFile() {
    releaseTrimmedBuffer();  // it may look into the loaded samples
    if (loadedFile_) Filer::freeBufList(loadedFile_->bufferList());
    loadedFile_.reset();
}

void Autotrimmer::autoTrimBeginAndEnd(bool trimEnd) {
    dropLoadedFile();
    loadedFile_ = Filer::operationWithFileURL(Filer::pathToTemporaryDocument(Recorder::kScratchFileName));
    if (!loadedFile_) return;  // the loader has logged why; the file stays as it was

    const uint32_t n = loadedFile_->lengthInFrames();
    const AudioBufferList* loaded = loadedFile_->bufferList();
    const auto* left = n > 0 && loaded ? static_cast<const int16_t*>(loaded->mBuffers[0].mData) : nullptr;
    range_ = left ? autotrimRange(left, n, minVal_, startOff_, endOff_, trimEnd) : AutotrimRange{0, 0};
    rewriteTrimmedFile();
}

void Autotrimmer::rewriteTrimmedFile() {
    const AudioStreamDescription engine = AudioController::nonInterleaved16BitStereoAudioDescription();
    const std::string path = Filer::pathToTemporaryDocument(Recorder::kScratchFileName);
    const uint32_t length = range_.length;
    const AudioBufferList* loaded = loadedFile_ ? loadedFile_->bufferList() : nullptr;
    const uint32_t loadedFrames = loaded ? loadedFile_->lengthInFrames() : 0;

    // The frames to keep. When they all exist (every recording but one
    // shorter than the end offset) they are the loaded samples themselves,
    // seen from the trim start: a ten-minute take is not copied once more.
    // Otherwise they are copied into a buffer of their own whose frames past
    // the end of the recording stay silent. The samples come first, so if
    // memory runs out the recording stays as it was.
    releaseTrimmedBuffer();
    if (loaded && range_.start <= loadedFrames && length <= loadedFrames - range_.start) {
        trimmedBuffer_ = static_cast<AudioBufferList*>(std::calloc(1, sizeof(AudioBufferList)));
        if (trimmedBuffer_) {
            *trimmedBuffer_ = *loaded;
            for (uint32_t b = 0; b < 2; ++b) {
                trimmedBuffer_->mBuffers[b].mData = static_cast<int16_t*>(loaded->mBuffers[b].mData) + range_.start;
                trimmedBuffer_->mBuffers[b].mDataByteSize = length * uint32_t(sizeof(int16_t));
            }
        }
        trimmedIsView_ = true;
    } else {
        trimmedBuffer_ = allocateBufferList(engine, length);
        trimmedIsView_ = false;
        const uint32_t available = range_.start < loadedFrames ? std::min(length, loadedFrames - range_.start) : 0;
        for (uint32_t b = 0; trimmedBuffer_ && b < 2 && available > 0; ++b) {
            const auto* from = static_cast<const int16_t*>(loaded->mBuffers[b].mData) + range_.start;
            std::memcpy(trimmedBuffer_->mBuffers[b].mData, from, size_t(available) * sizeof(int16_t));
        }
    }
    if (!trimmedBuffer_) {
        qlog("ERROR: %s", "not enough memory to trim the recording");
        return;
    }

    AudioFileWriter writer(engine);
    AudioError error;
    if (!writer.beginWritingToFileAtPath(path, kAudioFileWAVEType, 16, recordToStereo() ? 2 : 1, &error) &&
        error.code != 0)
        qlog("ERROR: %s", error.localizedDescription.c_str());

    // Appended in pieces, so that the writer's conversion buffer stays small.
    constexpr uint32_t kPiece = 1u << 16;
    AudioBufferList piece = *trimmedBuffer_;
    for (uint32_t done = 0; done < length;) {
        const uint32_t n = std::min(kPiece, length - done);
        for (uint32_t b = 0; b < 2; ++b) {
            piece.mBuffers[b].mData = static_cast<int16_t*>(trimmedBuffer_->mBuffers[b].mData) + done;
            piece.mBuffers[b].mDataByteSize = n * uint32_t(sizeof(int16_t));
        }
        AudioFileWriterAddAudioSynchronously(&writer, &piece, n);
        done += n;
    }
    writer.finishWriting();
}

void Autotrimmer::releaseTrimmedBuffer() {
    if (!trimmedBuffer_) return;
    if (trimmedIsView_) std::free(trimmedBuffer_);  // the samples belong to the loaded file
    else Filer::freeBufList(trimmedBuffer_);
    trimmedBuffer_ = nullptr;
}

void Autotrimmer::releaseAutotrimmr() {
    releaseTrimmedBuffer();
    dropLoadedFile();
}
