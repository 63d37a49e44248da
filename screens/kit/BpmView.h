#pragma once
// The tempo adjuster, 10 to 300 BPM. Its indicator is the playing step, not the value.
#include <cstdint>

#include "screens/kit/LAAdjustView.h"

class BpmViewDelegate {
public:
    virtual ~BpmViewDelegate() = default;
    virtual void updateBpm(float bpm) = 0;
    virtual void bpmViewPressed() = 0;
};

class BpmView : public LAAdjustView {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int tact READ tact NOTIFY tactChanged)

public:
    static constexpr double kMinBpm = 10;
    static constexpr double kMaxBpm = 300;

    explicit BpmView(QObject* parent = nullptr) : LAAdjustView(kMinBpm, kMaxBpm, Indicator::Step, parent) {}

    void setDelegate(BpmViewDelegate* delegate) { m_delegate = delegate; }
    int tact() const { return m_tact; }
    // Moves the indicator to the step's place on the rim.
    Q_INVOKABLE void updateIndicatorViewForTact(int tact);

signals:
    void tactChanged();

protected:
    QRectF indicatorFor(const QRectF& circle) const override;
    void tellDragged() override;
    void tellPressed() override;

private:
    BpmViewDelegate* m_delegate = nullptr;
    uint16_t m_tact = 0;
};
