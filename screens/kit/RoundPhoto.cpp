#include "screens/kit/RoundPhoto.h"

#include <QPainter>
#include <QPainterPath>

#include "screens/kit/KitColorer.h"

RoundPhoto::RoundPhoto(QQuickItem* parent) : QQuickPaintedItem(parent), m_borderColor(KitColorer::backgColor()) {
    setAntialiasing(true);
}

void RoundPhoto::setSource(const QString& source) {
    if (source == m_source) return;
    m_source = source;
    const QUrl url(source);
    const QString file = url.isLocalFile() ? url.toLocalFile() : source;
    m_image = file.isEmpty() ? QImage() : QImage(file);  // no photo: nothing to read
    emit sourceChanged();
    update();
}

void RoundPhoto::setBorderColor(const QColor& color) {
    if (color == m_borderColor) return;
    m_borderColor = color;
    emit borderColorChanged();
    update();
}

void RoundPhoto::paint(QPainter* painter) {
    const qreal side = std::min(width(), height());
    if (side <= 0) return;
    const QRectF circle((width() - side) / 2, (height() - side) / 2, side, side);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    QPainterPath clip;
    clip.addEllipse(circle);
    painter->setClipPath(clip);
    if (!m_image.isNull()) {
        // Fill the circle with the photo's centred square.
        const qreal s = std::min(m_image.width(), m_image.height());
        const QRectF from((m_image.width() - s) / 2, (m_image.height() - s) / 2, s, s);
        painter->drawImage(circle, m_image, from);
    }
    painter->setClipping(false);
    const qreal border = kBorderFactor * side;
    painter->setPen(QPen(m_borderColor, border));
    painter->setBrush(Qt::NoBrush);
    painter->drawEllipse(circle.adjusted(border / 2, border / 2, -border / 2, -border / 2));
}
