#pragma once
// A sound's photo in the round style: clipped to a circle with a border of a
// tenth of its width in the background colour.
#include <QColor>
#include <QImage>
#include <QQuickPaintedItem>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

class RoundPhoto : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString source READ source WRITE setSource NOTIFY sourceChanged)
    Q_PROPERTY(QColor borderColor READ borderColor WRITE setBorderColor NOTIFY borderColorChanged)

public:
    static constexpr double kBorderFactor = 0.1;

    explicit RoundPhoto(QQuickItem* parent = nullptr);

    QString source() const { return m_source; }
    void setSource(const QString& source);  // a file path, "file:" URL or ":/" resource
    QColor borderColor() const { return m_borderColor; }
    void setBorderColor(const QColor& color);

    void paint(QPainter* painter) override;

signals:
    void sourceChanged();
    void borderColorChanged();

private:
    QString m_source;
    QImage m_image;
    QColor m_borderColor;
};
