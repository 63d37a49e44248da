#include "screens/soundeditor/SoundPlots.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

WaveformPlot::WaveformPlot(QQuickItem* parent) : QQuickPaintedItem(parent) {
    connect(this, &WaveformPlot::changed, this, [this] { update(); });
}

void WaveformPlot::paint(QPainter* painter) {
    const qsizetype n = std::min(m_minima.size(), m_maxima.size());
    if (n == 0 || width() <= 0) return;
    const double mid = height() / 2.0;
    const double step = width() / double(n);
    // Upper edge left to right, then the mirrored lower edge back.
    QPainterPath path(QPointF(0, mid));
    for (qsizetype i = 0; i < n; ++i) {
        const double level = std::max(std::abs(m_minima[i]), std::abs(m_maxima[i]));
        const double y = mid - std::min(1.0, level) * mid;
        path.lineTo(i * step, y);
        path.lineTo((i + 1) * step, y);
    }
    for (qsizetype i = n - 1; i >= 0; --i) {
        const double level = std::max(std::abs(m_minima[i]), std::abs(m_maxima[i]));
        const double y = mid + std::min(1.0, level) * mid;
        path.lineTo((i + 1) * step, y);
        path.lineTo(i * step, y);
    }
    path.closeSubpath();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->fillPath(path, m_color);
    // A hairline through the middle keeps a silent stretch visible.
    painter->fillRect(QRectF(0, mid - 0.5, width(), 1.0), m_color);
}

InputTracePlot::InputTracePlot(QQuickItem* parent) : QQuickPaintedItem(parent) {
    connect(this, &InputTracePlot::changed, this, [this] { update(); });
}

void InputTracePlot::paint(QPainter* painter) {
    if (m_points.size() < 2) return;
    const double sx = m_layoutSize.width() > 0 ? width() / m_layoutSize.width() : 1.0;
    const double sy = m_layoutSize.height() > 0 ? height() / m_layoutSize.height() : 1.0;
    QPolygonF line;
    line.reserve(m_points.size());
    for (const QPointF& p : m_points) line << QPointF(p.x() * sx, p.y() * sy);
    // The mask fades the trace from full strength at the top right towards the
    // bottom left, so the newest samples stand out.
    QLinearGradient mask(QPointF(width(), 0), QPointF(0.7 * width() - width(), 0.3 * height() + height()));
    QColor strong = m_color, faint = m_color;
    faint.setAlphaF(0.15);
    mask.setColorAt(0, strong);
    mask.setColorAt(1, faint);
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setPen(QPen(QBrush(mask), 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->drawPolyline(line);
}

PhotoImage::PhotoImage(QQuickItem* parent) : QQuickPaintedItem(parent) {
    connect(this, &PhotoImage::changed, this, [this] { update(); });
}

void PhotoImage::paint(QPainter* painter) {
    if (m_image.isNull()) return;
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF target(0, 0, width(), height());
    if (m_round) {
        QPainterPath clip;
        clip.addEllipse(target);
        painter->setClipPath(clip);
    }
    // Fill the square, cropping the longer side.
    const double side = std::min(m_image.width(), m_image.height());
    const QRectF source((m_image.width() - side) / 2.0, (m_image.height() - side) / 2.0, side, side);
    painter->drawImage(target, m_image, source);
}
