#include "export/movie/AudioToVideoAdder.h"

#include <filesystem>
#include <string>

#include "export/movie/MainQueue.h"
#include "export/movie/MovieFiles.h"
#include "export/movie/SerialQueue.h"
#include "export/movie/encoder/MediaAsset.h"
#include "export/movie/encoder/MovieComposition.h"
#include "library/util/Log.h"

namespace {

// Returns false when the movie's tracks cannot be read: the join stops there.
bool joinAudioAndMovie() {
    const std::string audioPath = movie_files::temporaryPath(movie_files::kCapturedAudio);
    const std::string videoPath = movie_files::temporaryPath(movie_files::kFilmedMovie);
    const std::string outPath = movie_files::temporaryPath(movie_files::kMuxedMovie);
    std::error_code ec;
    qlog("video exist at path %s = %d", videoPath.c_str(), std::filesystem::exists(videoPath, ec) ? 1 : 0);

    std::string error;
    std::unique_ptr<MediaAsset> video = MediaAsset::open(videoPath, &error);
    if (!video) return false;
    std::string audioError;
    std::unique_ptr<MediaAsset> audio = MediaAsset::open(audioPath, &audioError);

    MovieComposition composition;
    const int audioTrack = audio ? audio->firstTrack(MediaKind::Audio) : -1;
    if (audioTrack < 0) {
        qlog("Error: no audio to add: %s", audio ? audioPath.c_str() : audioError.c_str());
    } else if (!composition.insertTrack(*audio, audioTrack, &error)) {
        qlog("Error: %s", error.c_str());
    }
    const int videoTrack = video->firstTrack(MediaKind::Video);
    if (videoTrack < 0) {
        qlog("Error: no video track in %s", videoPath.c_str());
    } else if (!composition.insertTrack(*video, videoTrack, &error)) {
        qlog("Error: %s", error.c_str());
    }

    std::filesystem::remove(outPath, ec);
    if (!composition.exportPassthrough(outPath, true, &error)) qlog("Error: %s", error.c_str());
    return true;
}

}  // namespace

AudioToVideoAdder::AudioToVideoAdder(AudioToVideoAdderDelegate* delegate)
    : delegate_(delegate), queue_(std::make_unique<SerialQueue>(kQueueName)) {}

AudioToVideoAdder::~AudioToVideoAdder() { queue_.reset(); }

void AudioToVideoAdder::addAudioToVideo() {
    std::weak_ptr<bool> alive = alive_;
    queue_->async([this, alive] {
        if (!joinAudioAndMovie()) return;
        postToMainThread([this, alive] {
            if (!alive.expired() && delegate_) delegate_->audioAddedToVideo();
        });
    });
}
