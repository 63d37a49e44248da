// The drag-to-adjust controls in an offscreen window with their real
// controllers, driven by synthetic mouse drags and taps.
#include <vector>

#include "export/Framr.h"
#include "screens/kit/BpmView.h"
#include "screens/kit/VolumeView.h"
#include "tests/screens/kit/KitScene.h"

using quillo::kit::testing::KitScene;

namespace {

struct BpmDelegate : BpmViewDelegate {
    void updateBpm(float bpm) override { updates.push_back(bpm); }
    void bpmViewPressed() override { ++presses; }
    std::vector<float> updates;
    int presses = 0;
};

struct VolumeDelegate : VolumeViewDelegate {
    void updateVolume(VolumeView* view) override { updated.push_back(view); }
    void volumeViewPressed(VolumeView* view) override { pressed.push_back(view); }
    std::vector<VolumeView*> updated, pressed;
};

constexpr QRectF kSmall(100, 300, 100, 100);  // a 100-point control
const QPointF kCentre = kSmall.center();

// A control drawn by its view, placed at kSmall in a phone-sized window.
QQuickItem* showAdjuster(KitScene& scene, LAAdjustView& adjuster) {
    adjuster.setInitialFrame(kSmall);
    return scene.load("Item { width: 390; height: 844; required property LAAdjustView control\n"
                      "  LAAdjustViewItem { objectName: \"adjuster\"; adjuster: control } }",
                      {{QStringLiteral("control"), QVariant::fromValue(&adjuster)}});
}

// Presses at the centre and moves just past the drag threshold, so that the drag is on.
void startDrag(KitScene& scene, LAAdjustView& adjuster) {
    scene.press(kCentre);
    scene.moveTo(kCentre + QPointF(0, -15));
    scene.moveTo(kCentre + QPointF(0, -20));
    ASSERT_TRUE(adjuster.nowswipe());
}

TEST(AdjustersTest, TempoDraggedPastEitherEndStaysAtThatEnd) {
    BpmView bpm;
    BpmDelegate delegate;
    KitScene scene;  // destroyed first: the view never outlives its controller
    bpm.setDelegate(&delegate);
    bpm.setValue(280);
    ASSERT_TRUE(showAdjuster(scene, bpm));

    startDrag(scene, bpm);
    for (int y = 150; y <= 350; y += 25) scene.moveTo(kCentre + QPointF(0, -y));  // 15 to 35 per event upwards
    EXPECT_DOUBLE_EQ(bpm.value(), 300);
    EXPECT_EQ(bpm.label(), QStringLiteral("300"));
    ASSERT_FALSE(delegate.updates.empty());
    EXPECT_FLOAT_EQ(delegate.updates.back(), 300);
    scene.release(kCentre + QPointF(0, -350));
    EXPECT_FALSE(bpm.nowswipe());

    delegate.updates.clear();
    startDrag(scene, bpm);
    // Held three heights down: -30 on every event (the position jitters by a point).
    for (int i = 0; i < 12; ++i) scene.moveTo(kCentre + QPointF(i % 2, 300));
    scene.release(kCentre + QPointF(0, 300));
    EXPECT_DOUBLE_EQ(bpm.value(), 10);
    ASSERT_FALSE(delegate.updates.empty());
    EXPECT_FLOAT_EQ(delegate.updates.back(), 10);
    EXPECT_EQ(delegate.presses, 0) << "a drag is not a tap";
}

// Each movement event adds the whole translation since the drag began: two
// events one control height up add 10 twice; their opposite sideways parts cancel.
TEST(AdjustersTest, EveryMovementEventAddsTheWholeDistanceDraggedSoFar) {
    BpmView bpm;
    BpmDelegate delegate;
    KitScene scene;  // destroyed first: the view never outlives its controller
    bpm.setDelegate(&delegate);
    bpm.setValue(100);
    ASSERT_TRUE(showAdjuster(scene, bpm));

    startDrag(scene, bpm);
    const double before = bpm.value();
    const size_t told = delegate.updates.size();
    scene.moveTo(kCentre + QPointF(5, -100));
    scene.moveTo(kCentre + QPointF(-5, -100));
    EXPECT_NEAR(bpm.value() - before, 20.0, 1e-9);
    EXPECT_EQ(delegate.updates.size(), told + 2);
    // To the right by one height adds 1 per event.
    scene.moveTo(kCentre + QPointF(100, 0));
    EXPECT_NEAR(bpm.value() - before, 21.0, 1e-9);
    scene.release(kCentre + QPointF(100, 0));
}

TEST(AdjustersTest, VolumeThatMayNotEnlargeOnlyReportsItsTap) {
    for (bool canEnlarge : {false, true}) {
        SCOPED_TRACE(canEnlarge ? "may enlarge" : "may not enlarge");
        VolumeView volume;
        VolumeDelegate delegate;
        KitScene scene;
        volume.setDelegate(&delegate);
        volume.setValue(40);
        volume.setCanEnlarge(canEnlarge);
        ASSERT_TRUE(showAdjuster(scene, volume));
        QQuickItem* item = scene.find("adjuster");

        scene.tap(kCentre);
        scene.clock.advanceBy(400);
        ASSERT_EQ(delegate.pressed.size(), 1u);
        EXPECT_EQ(delegate.pressed[0], &volume);
        EXPECT_TRUE(delegate.updated.empty());
        EXPECT_EQ(volume.fullscr(), canEnlarge);
        const QRectF expected = canEnlarge ? Framr::fullScrnCircle() : kSmall;
        EXPECT_NEAR(item->width(), expected.width(), 1e-6);
        EXPECT_NEAR(item->x(), expected.x(), 1e-6);
        EXPECT_NEAR(item->property("radius").toDouble(), expected.width() / 2, 1e-6);
        EXPECT_DOUBLE_EQ(volume.value(), 40);
    }
}

TEST(AdjustersTest, TapWhileDraggingIsIgnoredAndATappedEnlargedControlShrinksBack) {
    VolumeView volume;
    VolumeDelegate delegate;
    volume.setDelegate(&delegate);
    volume.setInitialFrame(kSmall);
    volume.panBegan();
    volume.pressed();
    EXPECT_TRUE(delegate.pressed.empty());
    EXPECT_FALSE(volume.fullscr());
    volume.panEnded();

    volume.pressed();
    EXPECT_TRUE(volume.fullscr());
    EXPECT_EQ(volume.frame(), Framr::fullScrnCircle());
    volume.pressed();
    EXPECT_FALSE(volume.fullscr());
    EXPECT_EQ(volume.frame(), kSmall);
    EXPECT_EQ(delegate.pressed.size(), 2u);
}

TEST(AdjustersTest, LabelTruncatesAndIndicatorsFollowValueAndStep) {
    VolumeView volume;
    volume.setInitialFrame(kSmall);
    volume.setValue(99.9);
    EXPECT_EQ(volume.label(), QStringLiteral("99"));
    volume.setValue(25);
    const QRectF circle = volume.circleFrame();
    EXPECT_NEAR(volume.indicatorFrame().height(), circle.height() / 4, 1e-9);
    EXPECT_NEAR(volume.indicatorFrame().bottom(), circle.bottom(), 1e-9);

    BpmView bpm;
    bpm.setInitialFrame(kSmall);
    const QRectF atStep0 = bpm.indicatorFrame();
    bpm.updateIndicatorViewForTact(8);
    EXPECT_GT(bpm.indicatorFrame().center().y(), bpm.circleFrame().center().y());
    bpm.updateIndicatorViewForTact(16);
    EXPECT_EQ(bpm.indicatorFrame(), atStep0);

    // Enlarged, the inner circle and the indicator stay within half the screen width.
    bpm.enlargAdjustView();
    EXPECT_LE(bpm.circleFrame().width(), Framr::scrnWid() / 2 + 1e-9);
    EXPECT_TRUE(bpm.circleFrame().adjusted(-1e-6, -1e-6, 1e-6, 1e-6).contains(bpm.indicatorFrame()));
}

}  // namespace
