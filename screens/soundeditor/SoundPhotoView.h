#pragma once
// The photo chooser: the sound's photo, a camera button and a gallery button,
// Cancel and Done. The host picks the image (file dialog or camera) and hands
// it back through updateImage; Done with a picked image reports imagePicked.
#include <QImage>
#include <QObject>
#include <QtQml/qqmlregistration.h>

class SoundPhotoView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QImage photo READ photo NOTIFY photoChanged)
    Q_PROPERTY(bool hasPickedImage READ hasPickedImage NOTIFY photoChanged)
    Q_PROPERTY(bool fromCamera READ fromCamera NOTIFY photoChanged)

public:
    explicit SoundPhotoView(QObject* parent = nullptr);

    void setImageBefore(const QImage& image);
    QImage imageBefore() const { return m_imageBefore; }
    QImage pickedImage() const { return m_pickedImage; }
    // What is shown: the picked image, else the photo the sound had.
    QImage photo() const { return m_pickedImage.isNull() ? m_imageBefore : m_pickedImage; }
    bool hasPickedImage() const { return !m_pickedImage.isNull(); }
    bool fromCamera() const { return m_fromCamera; }

    Q_INVOKABLE void cameraPressed();
    Q_INVOKABLE void photoGalleryPressed();
    // A picked image replaces the shown one.
    Q_INVOKABLE void updateImage(const QImage& image, bool fromCamera = false);
    Q_INVOKABLE void donePressed();
    Q_INVOKABLE void cancelPressed();

signals:
    void photoChanged();
    // 1: the camera, 0: the photo library.
    void cameraOrPhotoPickerPressed(int source);
    void imagePicked(const QImage& image);
    void removeSoundPhotoView();

private:
    QImage m_imageBefore;
    QImage m_pickedImage;
    bool m_fromCamera = false;
    bool m_fromPhotoPicker = false;
};
