#pragma once
// Frame memory for the movie writers: 32-bit ARGB, alpha premultiplied,
// 8 bits per component, rows of width x 4 bytes.
#include <QImage>
#include <QSize>

#include "export/movie/encoder/MovieFileWriter.h"

class PixelBuffer {
public:
    PixelBuffer() = default;
    // A buffer of `size` pixels, transparent, with `image` drawn into it at its
    // own pixel size from the top-left corner.
    static PixelBuffer withImage(const QImage& image, QSize size);
    // A buffer of the image's own pixel size holding the image.
    static PixelBuffer withImage(const QImage& image);

    bool isNull() const { return image_.isNull(); }
    QSize size() const { return image_.size(); }
    ArgbFrame frame() const;
    const QImage& image() const { return image_; }

private:
    explicit PixelBuffer(QImage image) : image_(std::move(image)) {}
    QImage image_;
};
