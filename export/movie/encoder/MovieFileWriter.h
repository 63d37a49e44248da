#pragma once
// Writes one QuickTime movie with a single H.264 video track from 32-bit ARGB
// frames appended at media times of the caller's choosing.
//
// The file is what common players and browsers open: yuv420p, even
// dimensions, no B-frames (so a frame's decode time is its presentation time
// and a movie of one frame is one sample at time zero), and every sample's
// duration set: each frame lasts until the next one, the last until the end
// time given to finishWriting.
//
// Plain C++ on FFmpeg; not thread-safe: use one writer from one thread at a time.
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "export/movie/MediaTime.h"

// A picture in memory: 32-bit pixels 0xAARRGGBB in the machine's word order
// (alpha premultiplied), rows `bytesPerRow` apart.
struct ArgbFrame {
    const uint8_t* pixels = nullptr;
    int width = 0;
    int height = 0;
    int bytesPerRow = 0;
};

struct MovieWriterSettings {
    int width = 0;   // odd sizes are rounded up to even ones; frames of another size are scaled
    int height = 0;
    int32_t timescale = 600;  // the ticks the track counts time in
    bool fastStart = false;   // index at the front of the file (for streaming)
    int threads = 1;          // encoder threads
};

class MovieFileWriter {
public:
    enum class Status { Unknown, Writing, Completed, Failed };

    // Creates the file at `path` (an existing file is replaced) and opens the
    // encoder. Null, with `error` set, when either fails.
    static std::unique_ptr<MovieFileWriter> create(const std::string& path, const MovieWriterSettings& settings,
                                                   std::string* error);
    ~MovieFileWriter();
    MovieFileWriter(const MovieFileWriter&) = delete;
    MovieFileWriter& operator=(const MovieFileWriter&) = delete;

    // Writes the movie's header; frames may be appended afterwards.
    bool startWriting();
    // True while writing and until markAsFinished.
    bool isReadyForMoreMediaData() const;
    // Encodes `frame` shown from `time` on. Times must increase from frame to
    // frame (after rounding to the track's ticks); a frame that does not
    // follow its predecessor is refused. Returns false and sets error() on
    // failure; a refused frame leaves the writer writing, an encoder or file
    // error fails it.
    bool appendFrame(const ArgbFrame& frame, MediaTime time);
    void markAsFinished();
    // Flushes the encoder and completes the file. The last frame lasts until
    // `endTime` when that is later than its start, else one tick.
    bool finishWriting(std::optional<MediaTime> endTime = std::nullopt);

    Status status() const { return status_; }
    const std::string& error() const { return error_; }
    int width() const;
    int height() const;
    int framesWritten() const { return framesWritten_; }

private:
    struct Impl;
    explicit MovieFileWriter(std::unique_ptr<Impl> impl);
    bool fail(const std::string& message);
    bool drainPackets(bool flushing);
    bool writePending(int64_t nextPts);

    std::unique_ptr<Impl> impl_;
    Status status_ = Status::Unknown;
    bool inputFinished_ = false;
    int framesWritten_ = 0;
    std::string error_;
};
