#include "screens/kit/TintedIcon.h"

#include <QFile>
#include <QPainter>
#include <QQuickWindow>
#include <QSvgRenderer>

#include "screens/kit/KitColorer.h"

TintedIcon::TintedIcon(QQuickItem* parent) : QQuickPaintedItem(parent), m_color(KitColorer::mainColor()) {
    setAntialiasing(true);
    connect(this, &QQuickItem::widthChanged, this, [this] { m_cache = {}; });
    connect(this, &QQuickItem::heightChanged, this, [this] { m_cache = {}; });
}

void TintedIcon::setName(const QString& name) {
    if (name == m_name) return;
    m_name = name;
    m_cache = {};
    emit nameChanged();
    update();
}

void TintedIcon::setColor(const QColor& color) {
    if (color == m_color) return;
    m_color = color;
    m_cache = {};
    emit colorChanged();
    update();
}

bool TintedIcon::valid() const { return !pathForName(m_name).isEmpty(); }

QString TintedIcon::pathForName(const QString& name) {
    QString stem = name;
    if (stem.endsWith(QLatin1String(".png")) || stem.endsWith(QLatin1String(".svg"))) stem.chop(4);
    const QString path = QStringLiteral(":/quillo/icons/%1.svg").arg(stem);
    return QFile::exists(path) ? path : QString();
}

QImage TintedIcon::render(const QString& name, const QSize& size, const QColor& color) {
    const QString path = pathForName(name);
    if (path.isEmpty() || size.isEmpty()) return {};
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QSvgRenderer svg(path);
    svg.render(&p, QRectF(QPointF(0, 0), QSizeF(size)));
    // Keep the drawing's coverage, replace its colour.
    p.setCompositionMode(QPainter::CompositionMode_SourceIn);
    p.fillRect(image.rect(), color);
    return image;
}

void TintedIcon::paint(QPainter* painter) {
    const qreal dpr = window() ? window()->effectiveDevicePixelRatio() : 1.0;
    const QSize pixels(qRound(width() * dpr), qRound(height() * dpr));
    if (m_cache.size() != pixels) m_cache = render(m_name, pixels, m_color);
    if (m_cache.isNull()) return;
    painter->drawImage(QRectF(0, 0, width(), height()), m_cache);
}
