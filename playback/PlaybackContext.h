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

    // The application's context. Tests may install their own.
    static PlaybackContext& shared();
    static void setShared(PlaybackContext* context);
};
