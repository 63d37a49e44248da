#pragma once
// Collects the snapshots of a filmed view and writes them as a movie,
// "tempGlvid.mov", replaying them at the pace they were taken.
//
// Writing runs on the serial queue "viewrecorder.asset.writer.queue". The
// first snapshot is written at time zero; then every snapshot, the first one
// again, is written one filming interval after the previous one, at the time
// elapsed since the movie writer was created scaled by 5/6 (500 ticks of
// 1/600 s per second): the movie is a little faster than the filming, and the
// tempo plays no part in the timing. Progress and the completion arrive on
// the main thread.
#include <QImage>
#include <QSizeF>
#include <QUrl>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "export/movie/MediaTime.h"
#include "export/movie/PixelBuffer.h"

class MovieClock;
class MovieFileWriter;
class SerialQueue;

class ViewRecorderAssetWriterDelegate {
public:
    // Fraction of the frames written, 0..1; 1.0 once the movie is complete.
    virtual void percentComplete(float fraction) = 0;

protected:
    ~ViewRecorderAssetWriterDelegate() = default;
};

class ViewRecorderAssetWriter : public std::enable_shared_from_this<ViewRecorderAssetWriter> {
public:
    static constexpr const char* kQueueName = "viewrecorder.asset.writer.queue";
    // Frame times: truncate(seconds since the writer's creation x 500) ticks of 1/600 s.
    static constexpr int32_t kTimescale = 600;
    static constexpr double kTicksPerSecond = 500.0;
    // Receives a null URL: the movie is always "tempGlvid.mov" in the temporary folder.
    using Completion = std::function<void(const QUrl&)>;

    // Main thread. `delegate` is not owned; clear it with setDelegate(nullptr)
    // before it goes away.
    static std::shared_ptr<ViewRecorderAssetWriter> create(QSizeF size, float bpm,
                                                           ViewRecorderAssetWriterDelegate* delegate);
    static std::shared_ptr<ViewRecorderAssetWriter> create(QSizeF size, float bpm,
                                                           ViewRecorderAssetWriterDelegate* delegate,
                                                           MovieClock& clock);
    ~ViewRecorderAssetWriter();
    ViewRecorderAssetWriter(const ViewRecorderAssetWriter&) = delete;
    ViewRecorderAssetWriter& operator=(const ViewRecorderAssetWriter&) = delete;

    // Main thread: collecting.
    void writeFrameWithImage(const QImage& image);
    // Main thread: hands the collected frames to the writer's queue, which
    // writes them; returns at once, leaving the frame list empty.
    void writeVideoFromImageFrames(Completion completion);

    // Deletes an existing "tempGlvid.mov", logs "OUTPUT: <path>" and returns its URL.
    QUrl fileOutputURL();
    // The image as a frame of its own pixel size.
    static PixelBuffer pixelBufferForImage(const QImage& image);
    // The movie writer, created on first use (the writing start is taken then).
    // Null when the file cannot be created. Writer's queue only.
    MovieFileWriter* writer();

    ViewRecorderAssetWriterDelegate* delegate() const { return delegate_; }
    void setDelegate(ViewRecorderAssetWriterDelegate* delegate) { delegate_ = delegate; }
    float bpm() const { return bpm_; }
    QSizeF size() const { return size_; }
    int framesPerSecond() const { return framesPerSecond_; }
    const std::vector<QImage>& frameBuffer() const { return frameBuffer_; }
    double startDate = 0.0;  // seconds since 2001-01-01, when filming started
    double endDate = 0.0;    // and stopped

private:
    ViewRecorderAssetWriter(QSizeF size, float bpm, ViewRecorderAssetWriterDelegate* delegate, MovieClock& clock);
    void writeFrames(std::vector<QImage>& frames, double interval, Completion completion);
    MediaTime timeSinceWritingStart();
    void reportProgress(float fraction);

    ViewRecorderAssetWriterDelegate* delegate_;  // read and written on the main thread only
    float bpm_;
    QSizeF size_;
    int framesPerSecond_ = 16;  // informative: the timing follows the filming, not a rate
    std::vector<QImage> frameBuffer_;
    MovieClock& clock_;
    double writingStart_ = 0.0;
    std::unique_ptr<MovieFileWriter> writer_;
    bool writerTried_ = false;
    std::unique_ptr<SerialQueue> queue_;
};
