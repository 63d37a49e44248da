#pragma once
// A media file opened for reading: its tracks, their kinds and lengths.
// Used to read the captured audio's length and as the source of a
// pass-through export (MovieComposition).
#include <memory>
#include <string>

#include "export/movie/MediaTime.h"

struct AVFormatContext;

enum class MediaKind { Audio, Video };

class MediaAsset {
public:
    // Null, with `error` set, when the file is missing or not a media file.
    static std::unique_ptr<MediaAsset> open(const std::string& path, std::string* error);
    ~MediaAsset();
    MediaAsset(const MediaAsset&) = delete;
    MediaAsset& operator=(const MediaAsset&) = delete;

    // Index of the first track of `kind`, or -1.
    int firstTrack(MediaKind kind) const;
    // A track's length in its own ticks (a WAV's in frames at its sample rate).
    MediaTime trackDuration(int track) const;
    // The longest track's length (zero for a file without tracks).
    MediaTime duration() const;

    const std::string& path() const { return path_; }
    AVFormatContext* context() const { return context_; }

private:
    MediaAsset(std::string path, AVFormatContext* context) : path_(std::move(path)), context_(context) {}
    std::string path_;
    AVFormatContext* context_;
};
