#pragma once
// The volume adjuster, 0 to 100, shown as a fill of its circle.
#include "screens/kit/LAAdjustView.h"

class VolumeView;

class VolumeViewDelegate {
public:
    virtual ~VolumeViewDelegate() = default;
    virtual void updateVolume(VolumeView* view) = 0;
    virtual void volumeViewPressed(VolumeView* view) = 0;
};

class VolumeView : public LAAdjustView {
    Q_OBJECT
    QML_ELEMENT

public:
    static constexpr double kMinVolume = 0;
    static constexpr double kMaxVolume = 100;

    explicit VolumeView(QObject* parent = nullptr)
        : LAAdjustView(kMinVolume, kMaxVolume, Indicator::Fill, parent) {}

    void setDelegate(VolumeViewDelegate* delegate) { m_delegate = delegate; }

protected:
    QRectF indicatorFor(const QRectF& circle) const override;
    void tellDragged() override;
    void tellPressed() override;

private:
    VolumeViewDelegate* m_delegate = nullptr;
};
