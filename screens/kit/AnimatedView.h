#pragma once
// A view that moves to rounded frames: panels grow out of the control that
// opened them into the full-screen circle. The controller decides frames and
// corner radii; its QML view (AnimatedViewItem) follows them, animating a
// change when `animating` is set and jumping otherwise.
#include <QColor>
#include <QObject>
#include <QRectF>
#include <QtQml/qqmlregistration.h>

class AnimatedView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QRectF frame READ frame WRITE setFrame NOTIFY frameChanged)
    Q_PROPERTY(double cornerRadius READ cornerRadius WRITE setCornerRadius NOTIFY cornerRadiusChanged)
    Q_PROPERTY(bool animating READ animating NOTIFY animatingChanged)
    Q_PROPERTY(double moveDuration READ moveDuration NOTIFY animatingChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

public:
    static constexpr double kMoveTime = 0.3;          // seconds, every move of the kit
    static constexpr double kDefaultCornerKoeff = 0.5;  // a square frame becomes a circle

    explicit AnimatedView(QObject* parent = nullptr);

    QRectF frame() const { return m_frame; }
    // Jumps to the frame (a resize or a first placement).
    void setFrame(const QRectF& frame);
    double cornerRadius() const { return m_cornerRadius; }
    void setCornerRadius(double radius);
    bool animating() const { return m_animating; }
    double moveDuration() const { return m_moveDuration; }
    QColor color() const { return m_color; }
    void setColor(const QColor& color);

    // Lays out for the start frame at once, with corner radius k x its width,
    // then moves over 0.3 s to the target with corner radius k x the target's width.
    Q_INVOKABLE void moveToCircle(const QRectF& target, const QRectF& start, double startCRkoeff = kDefaultCornerKoeff);
    // Animates the frame alone to the target over the given time.
    Q_INVOKABLE void moveTo(const QRectF& target, double seconds = kMoveTime);

    // Where a subview laid out for the current frame goes when this view takes
    // the new frame: it keeps its place relative to the view's centre.
    QRectF setOneSubview(const QRectF& subview, const QRectF& selfNewFrame) const;

signals:
    void frameChanged();
    void cornerRadiusChanged();
    void animatingChanged();
    void colorChanged();

protected:
    // Subclasses place their subviews for a frame about to be taken.
    virtual void layoutSubviewsFor(const QRectF& frame) { Q_UNUSED(frame); }

private:
    void setAnimating(bool animating, double seconds);
    void takeFrame(const QRectF& frame);

    QRectF m_frame;
    double m_cornerRadius = 0;
    bool m_animating = false;
    double m_moveDuration = kMoveTime;
    QColor m_color;
};
