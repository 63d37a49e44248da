#pragma once
// The camera for sound photos: a live preview and one still capture, through
// Qt Multimedia. `available` is false on a machine without a camera; the
// chooser then says so instead of opening it.
#include <QImage>
#include <QObject>
#include <QtQml/qqmlregistration.h>
#include <memory>

class QCamera;
class QImageCapture;
class QMediaCaptureSession;
class QVideoSink;

class PhotoCamera : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool available READ available CONSTANT)
    Q_PROPERTY(bool active READ active NOTIFY activeChanged)
    Q_PROPERTY(QImage preview READ preview NOTIFY previewChanged)
    Q_PROPERTY(QString errorText READ errorText NOTIFY activeChanged)

public:
    explicit PhotoCamera(QObject* parent = nullptr);
    ~PhotoCamera() override;

    bool available() const;
    bool active() const { return m_active; }
    QImage preview() const { return m_preview; }
    QString errorText() const { return m_errorText; }

    Q_INVOKABLE void start();
    Q_INVOKABLE void capture();
    Q_INVOKABLE void stop();

signals:
    void activeChanged();
    void previewChanged();
    void captured(const QImage& image);

private:
    bool m_active = false;
    QImage m_preview;
    QString m_errorText;
    std::unique_ptr<QMediaCaptureSession> m_session;
    std::unique_ptr<QCamera> m_camera;
    std::unique_ptr<QImageCapture> m_capture;
    std::unique_ptr<QVideoSink> m_sink;
};
