#include "export/movie/PixelBuffer.h"

#include <QPainter>

PixelBuffer PixelBuffer::withImage(const QImage& image, QSize size) {
    if (size.isEmpty()) return PixelBuffer();
    QImage buffer(size, QImage::Format_ARGB32_Premultiplied);
    buffer.fill(Qt::transparent);
    if (!image.isNull()) {
        QPainter painter(&buffer);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawImage(QPoint(0, 0), image);
    }
    return PixelBuffer(std::move(buffer));
}

PixelBuffer PixelBuffer::withImage(const QImage& image) {
    if (image.isNull()) return PixelBuffer();
    // Same layout already (Qt's 32-bit ARGB formats are 0xAARRGGBB words): no copy.
    if (image.format() == QImage::Format_ARGB32_Premultiplied || image.format() == QImage::Format_RGB32) {
        return PixelBuffer(image);
    }
    return PixelBuffer(image.convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

ArgbFrame PixelBuffer::frame() const {
    if (image_.isNull()) return ArgbFrame{};
    return ArgbFrame{image_.constBits(), image_.width(), image_.height(), static_cast<int>(image_.bytesPerLine())};
}
