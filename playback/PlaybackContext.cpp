#include "playback/PlaybackContext.h"

#include <algorithm>

#include "engine/AudioFileLoaderOperation.h"
#include "library/media/Filer.h"

namespace {
PlaybackContext defaultContext;
PlaybackContext* current = &defaultContext;
}  // namespace

PlaybackContext& PlaybackContext::shared() { return *current; }
void PlaybackContext::setShared(PlaybackContext* context) { current = context ? context : &defaultContext; }

size_t PlaybackContext::freeRetiredFiles() {
    auto unused = [](const std::shared_ptr<AudioFileLoaderOperation>& f) { return f.use_count() == 1; };
    for (auto& f : retiredFiles)
        if (unused(f)) Filer::freeBufList(f->bufferList());
    retiredFiles.erase(std::remove_if(retiredFiles.begin(), retiredFiles.end(), unused), retiredFiles.end());
    return retiredFiles.size();
}

PlaybackContext::~PlaybackContext() {
    // Players still listed stop as they go (a track player stops its rows),
    // while the cache and the retired sounds are still here.
    trackplayers.clear();
    loopplayers.clear();
    freeRetiredFiles();
}
