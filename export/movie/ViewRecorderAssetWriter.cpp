#include "export/movie/ViewRecorderAssetWriter.h"

#include <cmath>
#include <filesystem>
#include <utility>

#include "export/movie/MainQueue.h"
#include "export/movie/MovieClock.h"
#include "export/movie/MovieFiles.h"
#include "export/movie/SerialQueue.h"
#include "export/movie/encoder/MovieFileWriter.h"
#include "library/util/Log.h"

std::shared_ptr<ViewRecorderAssetWriter> ViewRecorderAssetWriter::create(QSizeF size, float bpm,
                                                                         ViewRecorderAssetWriterDelegate* delegate) {
    return create(size, bpm, delegate, MovieClock::system());
}

std::shared_ptr<ViewRecorderAssetWriter> ViewRecorderAssetWriter::create(QSizeF size, float bpm,
                                                                         ViewRecorderAssetWriterDelegate* delegate,
                                                                         MovieClock& clock) {
    return std::shared_ptr<ViewRecorderAssetWriter>(new ViewRecorderAssetWriter(size, bpm, delegate, clock));
}

ViewRecorderAssetWriter::ViewRecorderAssetWriter(QSizeF size, float bpm, ViewRecorderAssetWriterDelegate* delegate,
                                                 MovieClock& clock)
    : delegate_(delegate), bpm_(bpm), size_(size), clock_(clock), queue_(std::make_unique<SerialQueue>(kQueueName)) {}

ViewRecorderAssetWriter::~ViewRecorderAssetWriter() = default;

void ViewRecorderAssetWriter::writeFrameWithImage(const QImage& image) { frameBuffer_.push_back(image); }

QUrl ViewRecorderAssetWriter::fileOutputURL() {
    const std::string path = movie_files::temporaryPath(movie_files::kFilmedMovie);
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    qlog("OUTPUT: %s", path.c_str());
    return QUrl::fromLocalFile(QString::fromStdString(path));
}

PixelBuffer ViewRecorderAssetWriter::pixelBufferForImage(const QImage& image) { return PixelBuffer::withImage(image); }

MovieFileWriter* ViewRecorderAssetWriter::writer() {
    if (!writerTried_) {
        writerTried_ = true;
        MovieWriterSettings settings;
        settings.width = static_cast<int>(size_.width());
        settings.height = static_cast<int>(size_.height());
        settings.timescale = kTimescale;
        std::string error;
        writer_ = MovieFileWriter::create(fileOutputURL().toLocalFile().toStdString(), settings, &error);
        if (!writer_) qlog("Error: %s", error.c_str());
        writingStart_ = clock_.now();
    }
    return writer_.get();
}

MediaTime ViewRecorderAssetWriter::timeSinceWritingStart() {
    const double elapsed = clock_.now() - writingStart_;
    return MediaTime::make(static_cast<int64_t>(std::trunc(elapsed * kTicksPerSecond)), kTimescale);
}

void ViewRecorderAssetWriter::reportProgress(float fraction) {
    postToMainThread([self = shared_from_this(), fraction] {
        if (self->delegate_) self->delegate_->percentComplete(fraction);
    });
}

void ViewRecorderAssetWriter::writeVideoFromImageFrames(Completion completion) {
    const double now = clock_.now();
    double interval = 0.0;
    if (!frameBuffer_.empty()) {
        // The real filming time per frame.
        interval = ((endDate - now) - (startDate - now)) / static_cast<double>(frameBuffer_.size());
    }
    if (!(interval > 0.0)) interval = 0.0;
    // The snapshots move to the queue, which lets each go once written: a
    // long filming holds hundreds of full-size images.
    queue_->async([self = shared_from_this(), frames = std::move(frameBuffer_), interval,
                   completion = std::move(completion)]() mutable {
        self->writeFrames(frames, interval, std::move(completion));
    });
    frameBuffer_.clear();
}

void ViewRecorderAssetWriter::writeFrames(std::vector<QImage>& frames, double interval, Completion completion) {
    MovieFileWriter* movie = writer();
    if (movie && !movie->startWriting()) qlog("Error: %s", movie->error().c_str());

    if (!frames.empty() && movie && movie->isReadyForMoreMediaData()) {
        PixelBuffer first = pixelBufferForImage(frames.front());
        if (!movie->appendFrame(first.frame(), MediaTime::make(0, kTimescale))) {
            qlog("Failed to write image: %s", movie->error().c_str());
        }
    }
    clock_.sleepFor(interval);

    size_t written = 0;
    for (QImage& image : frames) {
        if (movie && movie->isReadyForMoreMediaData()) {
            ++written;
            const MediaTime time = timeSinceWritingStart();
            PixelBuffer buffer = pixelBufferForImage(std::exchange(image, QImage()));
            if (!movie->appendFrame(buffer.frame(), time)) qlog("Failed to write image: %s", movie->error().c_str());
            reportProgress(static_cast<float>(written) / static_cast<float>(frames.size()));
        } else {
            qlog("Input error");
        }
        clock_.sleepFor(interval);
    }

    qlog("markAsFinished");
    if (movie) {
        movie->markAsFinished();
        // The last frame lasts until now, by the same clock as the others.
        if (!movie->finishWriting(timeSinceWritingStart())) qlog("Error: %s", movie->error().c_str());
    }
    qlog("finishWritingWithCompletionHandler");
    reportProgress(1.0f);
    postToMainThread([completion = std::move(completion)] {
        if (completion) completion(QUrl());
    });
}
