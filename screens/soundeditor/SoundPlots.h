#pragma once
// The sound panel's drawings: the waveform (filled and mirrored about the
// middle), the live input trace (one polyline under a fading mask) and a
// square photo from an image in memory.
#include <QColor>
#include <QImage>
#include <QList>
#include <QPointF>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

class WaveformPlot : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    // Per column, -1..1; the plot draws the larger magnitude of each column
    // both up and down from the middle.
    Q_PROPERTY(QList<qreal> minima MEMBER m_minima NOTIFY changed)
    Q_PROPERTY(QList<qreal> maxima MEMBER m_maxima NOTIFY changed)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY changed)

public:
    explicit WaveformPlot(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

signals:
    void changed();

private:
    QList<qreal> m_minima, m_maxima;
    QColor m_color = Qt::white;
};

class InputTracePlot : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QList<QPointF> points MEMBER m_points NOTIFY changed)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY changed)
    // Points are laid out for this size (the trace's own frame) and scaled to the item.
    Q_PROPERTY(QSizeF layoutSize MEMBER m_layoutSize NOTIFY changed)

public:
    explicit InputTracePlot(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

signals:
    void changed();

private:
    QList<QPointF> m_points;
    QColor m_color = Qt::white;
    QSizeF m_layoutSize;
};

class PhotoImage : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QImage image MEMBER m_image NOTIFY changed)
    Q_PROPERTY(bool round MEMBER m_round NOTIFY changed)

public:
    explicit PhotoImage(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

signals:
    void changed();

private:
    QImage m_image;
    bool m_round = false;
};
