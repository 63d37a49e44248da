#pragma once
// Tracks of existing media files placed side by side, each from time zero and
// for its own whole length, and written into one QuickTime movie without
// re-encoding: compressed video and PCM audio are copied sample for sample.
// The result is as long as its longest track; nothing is stretched.
#include <string>
#include <vector>

#include "export/movie/MediaTime.h"

class MediaAsset;

class MovieComposition {
public:
    // Adds the whole of `track` of `asset` at time zero. Each track must come
    // from a different asset; assets must outlive the export.
    bool insertTrack(MediaAsset& asset, int track, std::string* error);
    MediaTime duration() const;
    bool empty() const { return tracks_.empty(); }

    // Writes the movie at `path`, replacing what was there. With
    // `optimizeForNetworkUse` its index comes first, so playing can start
    // before the whole file is read. On failure nothing is left at `path`.
    bool exportPassthrough(const std::string& path, bool optimizeForNetworkUse, std::string* error) const;

private:
    struct Track {
        MediaAsset* asset;
        int index;
    };
    std::vector<Track> tracks_;
};
