#include "export/movie/ViewRecorder.h"

#include <QQuickWindow>

#include "export/movie/MovieClock.h"
#include "library/util/Log.h"

ViewRecorder::ViewRecorder(QSizeF size, float bpm, ViewRecorderAssetWriterDelegate* delegate)
    : ViewRecorder(size, bpm, delegate, MovieClock::system()) {}

ViewRecorder::ViewRecorder(QSizeF size, float bpm, ViewRecorderAssetWriterDelegate* delegate, MovieClock& clock)
    : writer(ViewRecorderAssetWriter::create(size, bpm, delegate, clock)), clock_(clock) {
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.setInterval(kSnapshotIntervalMs);
    QObject::connect(&timer_, &QTimer::timeout, [this] { takeSnapshot(); });
}

ViewRecorder::~ViewRecorder() {
    timer_.stop();
    writer->setDelegate(nullptr);
}

void ViewRecorder::startRecordingView(QQuickItem* view, Completion onCompletion) {
    sourceView = view;
    callback = std::move(onCompletion);
    writer->startDate = clock_.now();
    qlog("writer.startDate %f", writer->startDate);
    takeSnapshot();  // the first tick is at once
    timer_.start();
}

void ViewRecorder::takeSnapshot() { writer->writeFrameWithImage(imageFromView(sourceView)); }

void ViewRecorder::stop() {
    timer_.stop();
    writer->endDate = clock_.now();
    std::weak_ptr<bool> alive = alive_;
    writer->writeVideoFromImageFrames([this, alive](const QUrl& url) {
        if (alive.expired()) return;  // the recorder was dropped meanwhile
        if (callback) callback(url);
    });
}

void ViewRecorder::cancelViewRecorder() { timer_.stop(); }

QImage ViewRecorder::imageFromView(QQuickItem* view) {
    if (!view || !view->window()) return QImage();
    QQuickWindow* window = view->window();
    // Renders the scene as it stands now, synchronously, on this thread.
    const QImage scene = window->grabWindow();
    if (scene.isNull()) return QImage();
    const qreal ratio = scene.devicePixelRatio();
    const QRectF inScene = view->mapRectToScene(view->boundingRect());
    const QRect pixels(qRound(inScene.x() * ratio), qRound(inScene.y() * ratio), qRound(inScene.width() * ratio),
                       qRound(inScene.height() * ratio));
    QImage image = scene.copy(pixels);
    image.setDevicePixelRatio(1.0);
    return image;
}
