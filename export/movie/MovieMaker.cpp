#include "export/movie/MovieMaker.h"

#include <filesystem>

#include "export/movie/MainQueue.h"
#include "export/movie/MovieFiles.h"
#include "export/movie/SerialQueue.h"
#include "export/movie/encoder/MediaAsset.h"
#include "export/movie/encoder/MovieFileWriter.h"
#include "library/util/Log.h"

namespace {

MediaTime capturedAudioLength() {
    std::string error;
    auto audio = MediaAsset::open(movie_files::temporaryPath(movie_files::kCapturedAudio), &error);
    if (!audio) return MediaTime::zero();
    return audio->trackDuration(audio->firstTrack(MediaKind::Audio));
}

}  // namespace

VideoSettings MovieMaker::videoSettingsWithCodec(const std::string& codec, int width, int height) {
    if (width % 16 != 0) qlog("Warning: video settings width must be divisible by 16.");
    return VideoSettings{codec, width, height};
}

MovieMaker::MovieMaker(const VideoSettings& settings) : videoSettings_(settings) {
    const std::string path = movie_files::temporaryPath(movie_files::kFilmedMovie);
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    fileURL_ = QUrl::fromLocalFile(QString::fromStdString(path));
    frameTime_ = capturedAudioLength();

    std::string error;
    if (settings.codec != kVideoCodecH264) {
        error = "unsupported video codec " + settings.codec;
    } else {
        MovieWriterSettings writerSettings;
        writerSettings.width = settings.width;
        writerSettings.height = settings.height;
        writerSettings.timescale = frameTime_.timescale > 0 ? frameTime_.timescale : 600;
        assetWriter_ = MovieFileWriter::create(path, writerSettings, &error);
    }
    if (!assetWriter_) qlog("Error: %s", error.c_str());
}

MovieMaker::~MovieMaker() { queue_.reset(); }

PixelBuffer MovieMaker::newPixelBufferFromCGImage(const QImage& image) const {
    return PixelBuffer::withImage(image, QSize(videoSettings_.width, videoSettings_.height));
}

void MovieMaker::createMovieFromImages(std::vector<QImage> images, Completion completion) {
    completionBlock_ = std::move(completion);
    if (assetWriter_ && !assetWriter_->startWriting()) qlog("Error: %s", assetWriter_->error().c_str());
    queue_ = std::make_unique<SerialQueue>(kQueueName);
    std::weak_ptr<bool> alive = alive_;
    queue_->async([this, alive, writer = assetWriter_, images = std::move(images)] {
        MediaTime lastTime = MediaTime::zero();
        for (size_t i = 0; i < images.size() && writer && writer->isReadyForMoreMediaData(); ++i) {
            const MediaTime time =
                i == 0 ? MediaTime::make(0, frameTime_.timescale)
                       : MediaTime::make(static_cast<int64_t>(i), frameTime_.timescale) + frameTime_;
            PixelBuffer buffer = newPixelBufferFromCGImage(images[i]);
            if (!writer->appendFrame(buffer.frame(), time)) qlog("Error: %s", writer->error().c_str());
            lastTime = time;
        }
        if (writer) {
            writer->markAsFinished();
            // The last image stays up until the audio ends, or one tick past its start.
            MediaTime end = MediaTime::make(lastTime.value + 1, lastTime.timescale);
            if (end < frameTime_) end = frameTime_;
            if (!writer->finishWriting(end)) qlog("Error: %s", writer->error().c_str());
        }
        postToMainThread([this, alive] {
            if (alive.expired()) return;
            assetWriter_.reset();
            if (completionBlock_) completionBlock_(fileURL_);
        });
    });
}
