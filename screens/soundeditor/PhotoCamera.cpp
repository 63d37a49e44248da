#include "screens/soundeditor/PhotoCamera.h"

#include <QCamera>
#include <QImageCapture>
#include <QMediaCaptureSession>
#include <QMediaDevices>
#include <QVideoFrame>
#include <QVideoSink>

PhotoCamera::PhotoCamera(QObject* parent) : QObject(parent) {}

PhotoCamera::~PhotoCamera() { stop(); }

bool PhotoCamera::available() const { return !QMediaDevices::videoInputs().isEmpty(); }

void PhotoCamera::start() {
    if (m_active) return;
    if (!available()) {
        m_errorText = tr("No camera");
        emit activeChanged();
        return;
    }
    m_session = std::make_unique<QMediaCaptureSession>();
    m_camera = std::make_unique<QCamera>(QMediaDevices::defaultVideoInput());
    m_capture = std::make_unique<QImageCapture>();
    m_sink = std::make_unique<QVideoSink>();
    m_session->setCamera(m_camera.get());
    m_session->setImageCapture(m_capture.get());
    m_session->setVideoSink(m_sink.get());
    connect(m_sink.get(), &QVideoSink::videoFrameChanged, this, [this](const QVideoFrame& frame) {
        m_preview = frame.toImage();
        emit previewChanged();
    });
    connect(m_capture.get(), &QImageCapture::imageCaptured, this,
            [this](int, const QImage& image) { emit captured(image); });
    connect(m_camera.get(), &QCamera::errorOccurred, this, [this](QCamera::Error, const QString& text) {
        m_errorText = text;
        emit activeChanged();
    });
    m_camera->start();
    m_errorText.clear();
    m_active = true;
    emit activeChanged();
}

void PhotoCamera::capture() {
    if (m_active && m_capture && m_capture->isReadyForCapture()) m_capture->capture();
}

void PhotoCamera::stop() {
    if (m_camera) m_camera->stop();
    m_session.reset();
    m_capture.reset();
    m_camera.reset();
    m_sink.reset();
    if (m_active) {
        m_active = false;
        emit activeChanged();
    }
}
