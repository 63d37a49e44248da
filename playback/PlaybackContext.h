#pragma once
// The process-wide playback state the application owns: the engine, the shared
// cache of loaded sounds and the lists of live players. Main thread only; the
// render thread never reads these containers.
#include <map>
#include <memory>
#include <string>
#include <vector>

class AudioController;
class AudioFileLoaderOperation;
class Loopplayer;
class Trackplayer;

struct PlaybackContext {
    AudioController* audioController = nullptr;
    // Decoded sounds by file path, shared by every player; freed only by
    // Loopplayer::reallyFreeLoadedFiles.
    std::map<std::string, std::shared_ptr<AudioFileLoaderOperation>> loadedFiles;
    std::vector<std::shared_ptr<Loopplayer>> loopplayers;
    std::vector<std::shared_ptr<Trackplayer>> trackplayers;
    // Sounds taken out of the cache while a playing player still held them:
    // their samples are freed once no player holds them any more.
    std::vector<std::shared_ptr<AudioFileLoaderOperation>> retiredFiles;

    // Frees the retired sounds nobody plays now; returns how many are left.
    size_t freeRetiredFiles();
    PlaybackContext() = default;
    PlaybackContext(const PlaybackContext&) = delete;
    PlaybackContext& operator=(const PlaybackContext&) = delete;
    ~PlaybackContext();

    // The application's context. Tests may install their own.
    static PlaybackContext& shared();
    static void setShared(PlaybackContext* context);
};
