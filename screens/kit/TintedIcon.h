#pragma once
// One of Quillo's icons (resources/icons, single-colour SVG) drawn in any
// colour: the one way every view shows an icon. `name` is the image's name
// ("addButton"; a ".png" suffix is ignored).
#include <QColor>
#include <QImage>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

class TintedIcon : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(bool valid READ valid NOTIFY nameChanged)

public:
    explicit TintedIcon(QQuickItem* parent = nullptr);

    QString name() const { return m_name; }
    void setName(const QString& name);
    QColor color() const { return m_color; }
    void setColor(const QColor& color);
    bool valid() const;

    // The resource path of an icon, or an empty string when there is none.
    static QString pathForName(const QString& name);
    // The icon at the given pixel size in the given colour (transparent elsewhere).
    static QImage render(const QString& name, const QSize& size, const QColor& color);

    void paint(QPainter* painter) override;

signals:
    void nameChanged();
    void colorChanged();

private:
    QString m_name;
    QColor m_color;
    QImage m_cache;
};
