#pragma once
// The round drag-to-adjust control. Dragging changes the value by the whole
// distance dragged so far on every movement event (up one control height:
// +10, right one height: +1), so holding a drag keeps changing it and longer
// drags accelerate. A tap enlarges it to the full-screen circle when it may.
// The kinds (BpmView, VolumeView, SquaresNumView) set the range, the
// indicator and whom they tell.
#include <QColor>
#include <QRectF>
#include <QString>

#include "screens/kit/AnimatedView.h"

class LAAdjustView : public AnimatedView {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("one of BpmView, VolumeView, SquaresNumView")
    Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged)
    Q_PROPERTY(double minValue READ minValue CONSTANT)
    Q_PROPERTY(double maxValue READ maxValue CONSTANT)
    Q_PROPERTY(QString label READ label NOTIFY valueChanged)
    Q_PROPERTY(bool fullscr READ fullscr NOTIFY fullscrChanged)
    Q_PROPERTY(bool nowswipe READ nowswipe NOTIFY nowswipeChanged)
    Q_PROPERTY(bool canEnlarge READ canEnlarge WRITE setCanEnlarge NOTIFY canEnlargeChanged)
    Q_PROPERTY(QRectF initialFrame READ initialFrame WRITE setInitialFrame NOTIFY initialFrameChanged)
    // The frame taken when enlarged, in the coordinates of the control's
    // parent; the full-screen circle unless the owner says otherwise.
    Q_PROPERTY(QRectF enlargedFrame READ enlargedFrame WRITE setEnlargedFrame NOTIFY enlargedFrameChanged)
    Q_PROPERTY(QColor titleColor READ titleColor WRITE setTitleColor NOTIFY titleColorChanged)
    // Subviews in the control's own coordinates, laid out for the frame it is taking.
    Q_PROPERTY(QRectF circleFrame READ circleFrame NOTIFY subviewsChanged)
    Q_PROPERTY(QRectF indicatorFrame READ indicatorFrame NOTIFY subviewsChanged)
    Q_PROPERTY(Indicator indicator READ indicator CONSTANT)
    Q_PROPERTY(double labelPixelSize READ labelPixelSize NOTIFY subviewsChanged)
    Q_PROPERTY(double labelMinimumPixelSize READ labelMinimumPixelSize NOTIFY subviewsChanged)
    // The volume fill is the title colour at this alpha.
    Q_PROPERTY(double fillAlpha READ fillAlpha CONSTANT)

public:
    enum class Indicator { None, Fill, Step };
    Q_ENUM(Indicator)

    static constexpr double kUpStepPerHeight = -10.0;  // translation y grows downwards
    static constexpr double kLabelHeightFactor = 0.4;
    static constexpr double kLabelMinimumScale = 0.2;
    static constexpr double kFillAlpha = 0.5;

    double value() const { return m_value; }
    // Clamped to the range; updates the label and the indicator, tells no one.
    void setValue(double value);
    double minValue() const { return m_minValue; }
    double maxValue() const { return m_maxValue; }
    QString label() const;
    bool fullscr() const { return m_fullscr; }
    bool nowswipe() const { return m_nowswipe; }
    bool canEnlarge() const { return m_canEnlarge; }
    void setCanEnlarge(bool can);
    QRectF initialFrame() const { return m_initialFrame; }
    // Also places the control there when it is not enlarged.
    void setInitialFrame(const QRectF& frame);
    QRectF enlargedFrame() const;
    void setEnlargedFrame(const QRectF& frame);
    QColor titleColor() const { return m_titleColor; }
    void setTitleColor(const QColor& color);
    QRectF circleFrame() const { return m_circleFrame; }
    QRectF indicatorFrame() const { return m_indicatorFrame; }
    Indicator indicator() const { return m_indicator; }
    double labelPixelSize() const { return m_labelPixelSize; }
    double labelMinimumPixelSize() const { return m_labelPixelSize * kLabelMinimumScale; }
    static double fillAlpha() { return kFillAlpha; }

    // The pan gesture: began, each movement with the translation since it
    // began, and its end (no touches left).
    Q_INVOKABLE void panBegan();
    Q_INVOKABLE void panChanged(double tx, double ty);
    Q_INVOKABLE void panEnded();
    // Arrow keys on a focused control: one unit up or down, told like a drag step.
    Q_INVOKABLE void nudge(double delta);
    // A tap: ignored while dragging; enlarges or shrinks when it may, then tells the delegate.
    Q_INVOKABLE void pressed();
    Q_INVOKABLE void enlargAdjustView();

signals:
    void valueChanged();
    void fullscrChanged();
    void nowswipeChanged();
    void canEnlargeChanged();
    void initialFrameChanged();
    void enlargedFrameChanged();
    void titleColorChanged();
    void subviewsChanged();
    // For views and QML owners; C++ owners get their delegate's calls.
    void dragged();
    void tapped();

protected:
    LAAdjustView(double minValue, double maxValue, Indicator indicator, QObject* parent);

    void layoutSubviewsFor(const QRectF& frame) override;
    virtual QRectF indicatorFor(const QRectF& circle) const { Q_UNUSED(circle); return {}; }
    virtual void tellDragged() = 0;
    virtual void tellPressed() = 0;
    // Re-places the indicator within the current layout.
    void relayoutIndicator();

private:
    void setNowswipe(bool now);

    double m_value = 0;
    double m_minValue;
    double m_maxValue;
    Indicator m_indicator;
    bool m_fullscr = false;
    bool m_nowswipe = false;
    bool m_canEnlarge = true;
    QRectF m_initialFrame;
    QRectF m_enlargedFrame;  // empty: the full-screen circle
    QColor m_titleColor;
    QRectF m_circleFrame;
    QRectF m_indicatorFrame;
    double m_labelPixelSize = 0;
};
