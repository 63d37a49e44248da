#include "screens/soundeditor/PhotoDelegatVC.h"

#include <QImageReader>
#include <QPainter>
#include <QStandardPaths>

#include "screens/soundeditor/SoundPhotoView.h"
#include "screens/soundeditor/SoundView.h"

PhotoDelegatVC::PhotoDelegatVC(QObject* parent) : QObject(parent) {}

void PhotoDelegatVC::setSoundV(SoundView* view) {
    if (view == m_soundV) return;
    if (m_soundV) disconnect(m_soundV, nullptr, this, nullptr);
    m_soundV = view;
    if (view)
        connect(view, &SoundView::cameraOrPhotoPickerPressedOnSp, this, &PhotoDelegatVC::showImagePickerForCamera);
    emit soundVChanged();
}

QUrl PhotoDelegatVC::picturesFolder() const {
    return QUrl::fromLocalFile(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
}

QStringList PhotoDelegatVC::imageNameFilters() const {
    const QList<QByteArray> readable = QImageReader::supportedImageFormats();
    QStringList patterns;
    for (const char* format : {"jpg", "jpeg", "png", "webp", "heic", "heif"})
        if (readable.contains(format)) patterns << QStringLiteral("*.") + QLatin1String(format);
    return {tr("Images (%1)").arg(patterns.join(' '))};
}

QImage PhotoDelegatVC::scaleAndCropImage(const QImage& image) {
    if (image.isNull()) return {};
    const int side = std::min(image.width(), image.height());
    const QImage square = image.copy((image.width() - side) / 2, (image.height() - side) / 2, side, side);
    QImage result(kPhotoSide, kPhotoSide, QImage::Format_RGB32);
    result.fill(Qt::white);
    QPainter painter(&result);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRect(0, 0, kPhotoSide, kPhotoSide), square);
    return result;
}

bool PhotoDelegatVC::applyImageFile(const QUrl& file) {
    QImageReader reader(file.isLocalFile() ? file.toLocalFile() : file.toString());
    reader.setAutoTransform(true);  // photos from phones carry their rotation
    const QImage image = reader.read();
    if (image.isNull()) {
        emit message(tr("Not a picture: %1").arg(reader.errorString()));
        return false;
    }
    return applyImage(image, false);
}

bool PhotoDelegatVC::applyImage(const QImage& image, bool fromCamera) {
    SoundPhotoView* chooser = m_soundV ? m_soundV->soundPhotoV() : nullptr;
    if (!chooser || image.isNull()) return false;
    chooser->updateImage(scaleAndCropImage(image), fromCamera);
    return true;
}
