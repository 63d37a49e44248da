#pragma once
// The track length adjuster, 4 to 128 squares; it shows only the number.
#include "screens/kit/LAAdjustView.h"

class SquaresNumView;

class SquaresNumViewDelegate {
public:
    virtual ~SquaresNumViewDelegate() = default;
    virtual void updateSquaresNum(SquaresNumView* view) = 0;
    virtual void squaresNumViewPressed(SquaresNumView* view) = 0;
};

class SquaresNumView : public LAAdjustView {
    Q_OBJECT
    QML_ELEMENT

public:
    static constexpr double kMinSquares = 4;
    static constexpr double kMaxSquares = 128;

    explicit SquaresNumView(QObject* parent = nullptr)
        : LAAdjustView(kMinSquares, kMaxSquares, Indicator::None, parent) {}

    void setDelegate(SquaresNumViewDelegate* delegate) { m_delegate = delegate; }

protected:
    void tellDragged() override {
        if (m_delegate) m_delegate->updateSquaresNum(this);
    }
    void tellPressed() override {
        if (m_delegate) m_delegate->squaresNumViewPressed(this);
    }

private:
    SquaresNumViewDelegate* m_delegate = nullptr;
};
