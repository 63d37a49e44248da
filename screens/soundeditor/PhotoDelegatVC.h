#pragma once
// What every screen that hosts a sound panel does with photos: it answers the
// photo chooser's camera and gallery buttons, and turns a picked image into a
// sound photo (the centred square of its shorter side at 320 x 320) for the
// open chooser. The QML host shows the file dialog on the Pictures folder or
// the camera; this class decides what becomes of the image.
#include <QImage>
#include <QObject>
#include <QPointer>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include "screens/soundeditor/SoundView.h"

class SoundPhotoView;

class PhotoDelegatVC : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(SoundView* soundV READ soundV WRITE setSoundV NOTIFY soundVChanged)
    Q_PROPERTY(QUrl picturesFolder READ picturesFolder CONSTANT)
    Q_PROPERTY(QStringList imageNameFilters READ imageNameFilters CONSTANT)

public:
    static constexpr int kPhotoSide = 320;

    explicit PhotoDelegatVC(QObject* parent = nullptr);

    SoundView* soundV() const { return m_soundV; }
    void setSoundV(SoundView* view);
    QUrl picturesFolder() const;
    // The formats Qt reads here among JPEG, PNG, WebP and HEIC.
    QStringList imageNameFilters() const;

    static QImage scaleAndCropImage(const QImage& image);
    // Reads a picked file; false (and nothing changes) when it is not an image.
    Q_INVOKABLE bool applyImageFile(const QUrl& file);
    // Gives the (scaled and cropped) image to the open photo chooser.
    Q_INVOKABLE bool applyImage(const QImage& image, bool fromCamera = false);

signals:
    void soundVChanged();
    // The host shows the picker: 1 the camera, 0 the file dialog.
    void showImagePickerForCamera(int source);
    void message(const QString& text);

private:
    QPointer<SoundView> m_soundV;
};
