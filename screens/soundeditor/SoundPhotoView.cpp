#include "screens/soundeditor/SoundPhotoView.h"

SoundPhotoView::SoundPhotoView(QObject* parent) : QObject(parent) {}

void SoundPhotoView::setImageBefore(const QImage& image) {
    m_imageBefore = image;
    emit photoChanged();
}

void SoundPhotoView::cameraPressed() {
    m_fromCamera = true;
    m_fromPhotoPicker = false;
    emit cameraOrPhotoPickerPressed(1);
}

void SoundPhotoView::photoGalleryPressed() {
    m_fromCamera = false;
    m_fromPhotoPicker = true;
    emit cameraOrPhotoPickerPressed(0);
}

void SoundPhotoView::updateImage(const QImage& image, bool fromCamera) {
    if (image.isNull()) return;
    m_pickedImage = image;
    m_fromCamera = fromCamera;
    m_fromPhotoPicker = !fromCamera;
    emit photoChanged();
}

void SoundPhotoView::donePressed() {
    if (!m_pickedImage.isNull()) emit imagePicked(m_pickedImage);
    emit removeSoundPhotoView();
}

void SoundPhotoView::cancelPressed() { emit removeSoundPhotoView(); }
