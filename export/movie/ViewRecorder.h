#pragma once
// Films a live view: a snapshot every 50 ms while the view plays, then the
// snapshots written as "tempGlvid.mov" by a ViewRecorderAssetWriter.
//
// Snapshots are taken on the main thread, from a precise timer that first
// fires at once; if the main thread is busy, a tick waits for it (missed
// ticks are not made up), so the number of frames is the number of ticks.
// Main thread only.
#include <QImage>
#include <QPointer>
#include <QQuickItem>
#include <QTimer>
#include <QUrl>
#include <functional>
#include <memory>

#include "export/movie/ViewRecorderAssetWriter.h"

class MovieClock;

class ViewRecorder {
public:
    static constexpr int kSnapshotIntervalMs = 50;
    // Receives a null URL; the movie is "tempGlvid.mov" in the temporary folder.
    using Completion = std::function<void(const QUrl&)>;

    ViewRecorder(QSizeF size, float bpm, ViewRecorderAssetWriterDelegate* delegate);
    ViewRecorder(QSizeF size, float bpm, ViewRecorderAssetWriterDelegate* delegate, MovieClock& clock);
    // A recorder dropped while its movie is written lets the writing finish
    // but calls neither its completion nor its delegate.
    ~ViewRecorder();
    ViewRecorder(const ViewRecorder&) = delete;
    ViewRecorder& operator=(const ViewRecorder&) = delete;

    // Starts filming `view`: records the start date (logged as
    // "writer.startDate ...") and starts the snapshot timer.
    void startRecordingView(QQuickItem* view, Completion onCompletion);
    // Stops the timer, records the end date, writes the movie and then calls
    // the completion (on the main thread).
    void stop();
    // Stops the timer only; nothing is written.
    void cancelViewRecorder();

    // The view as it is on screen now, running animations included, at its
    // size in pixels. A null image when the view is not in a window.
    static QImage imageFromView(QQuickItem* view);

    std::shared_ptr<ViewRecorderAssetWriter> writer;
    QPointer<QQuickItem> sourceView;
    Completion callback;
    const QUrl& fileOutput() const { return fileOutput_; }
    void setFileOutput(const QUrl& url) { fileOutput_ = url; }

private:
    void takeSnapshot();

    MovieClock& clock_;
    QTimer timer_;
    QUrl fileOutput_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};
