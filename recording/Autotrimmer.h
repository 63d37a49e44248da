#pragma once
// Cuts the silence off the beginning, and optionally the end, of the scratch
// recording "tempRecording.wav" in the temporary folder, in place.
//
// The sound editor trims every microphone recording (initDefault, both ends)
// when auto-trim is on; the export screen trims captured loops and tracks
// (initForExport, the end only when no movie is made). The whole file is read
// into memory in the engine format, the first (and last) frame whose left
// sample is louder than the threshold is found, and the file is written again
// with only the frames to keep, as a 16-bit WAVE file whose channel count
// follows the "record to stereo" setting at the time of trimming.
//
// Calling order, on the main thread: a create function, autoTrimBeginAndEnd,
// releaseAutotrimmr; then drop the object.
#include <cstdint>
#include <functional>
#include <memory>

struct AudioBufferList;
class AudioFileLoaderOperation;

// The frames to keep of a recording: `length` frames from `start`. The range
// may reach past the end of a very short recording (see autotrimRange).
struct AutotrimRange {
    uint32_t start = 0;
    uint32_t length = 0;
};

// The trimming decision over the left channel of a recording of `frames`
// frames. A sample is sound when its magnitude is strictly greater than
// minVal; the magnitude is |s| read back as a 16-bit value, so -32768 counts
// as silence. Keeps startOff frames before the first sound (not before frame
// 0). With trimEnd, the kept range ends endOff frames after the last sound,
// or at the last frame when that is nearer; the end frame itself is not kept.
// When the recording is shorter than endOff + 1 frames the end can lie past
// the last frame; those frames are written as silence. An end past 2^32 - 1
// (a huge endOff) stops there.
AutotrimRange autotrimRange(const int16_t* left, uint32_t frames, int16_t minVal, uint32_t startOff, uint32_t endOff,
                            bool trimEnd);

class Autotrimmer {
public:
    // Microphone recordings: threshold 1000, keep 10 frames before the first
    // sound and 100 after the last.
    static std::unique_ptr<Autotrimmer> initDefault();
    // Rendered loops and tracks: everything from the first non-zero sample.
    static std::unique_ptr<Autotrimmer> initForExport();
    static std::unique_ptr<Autotrimmer> initWithMinVal(int16_t minVal, uint32_t startOff, uint32_t endOff);
    Autotrimmer(int16_t minVal, uint32_t startOff, uint32_t endOff);
    // Frees whatever releaseAutotrimmr has not.
    ~Autotrimmer();
    Autotrimmer(const Autotrimmer&) = delete;
    Autotrimmer& operator=(const Autotrimmer&) = delete;

    // Loads the scratch recording, decides what to keep and rewrites it. A
    // file that does not load is left untouched (the loader logs
    // "load error: ...").
    void autoTrimBeginAndEnd(bool trimEnd);
    // Writes the kept frames over the scratch recording.
    void rewriteTrimmedFile();
    // Frees the trimmed and the loaded samples.
    void releaseAutotrimmr();

    // Where the channel count of the rewritten file comes from: the
    // application installs its "record to stereo" setting; without it the
    // file is mono, as at every launch.
    static void setRecordToStereoSource(std::function<bool()> source);
    static bool recordToStereo();

    int16_t minVal() const { return minVal_; }
    uint32_t startOff() const { return startOff_; }
    uint32_t endOff() const { return endOff_; }
    uint32_t trimStart() const { return range_.start; }
    uint32_t trimLength() const { return range_.length; }

private:
    void dropLoadedFile();
    void releaseTrimmedBuffer();

    int16_t minVal_;
    uint32_t startOff_;
    uint32_t endOff_;
    AutotrimRange range_;
    std::shared_ptr<AudioFileLoaderOperation> loadedFile_;
    // The frames to keep: a view into the loaded samples, or (for a
    // recording shorter than the end offset) a padded copy of its own.
    AudioBufferList* trimmedBuffer_ = nullptr;
    bool trimmedIsView_ = false;
};
