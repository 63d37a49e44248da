// Panels growing into the full-screen circle: frame and corner radius move
// together, and what sits on the panel keeps its place from the centre.
#include "export/Framr.h"
#include "screens/kit/LAAnimatedView.h"
#include "tests/screens/kit/KitScene.h"

using quillo::kit::testing::KitScene;

namespace {

TEST(AnimatedViewTest, CircleMoveFromASmallSquareEndsRoundAtTheTarget) {
    LAAnimatedView panel;
    KitScene scene;
    QQuickItem* root = scene.load("Item { width: 390; height: 844; required property LAAnimatedView thePanel\n"
                                  "  LAAnimatedViewItem { objectName: \"panel\"; panel: thePanel } }",
                                  {{QStringLiteral("thePanel"), QVariant::fromValue(&panel)}});
    ASSERT_TRUE(root);
    QQuickItem* view = scene.find("panel");
    ASSERT_TRUE(view);

    const QRectF start(60, 500, 40, 40);
    const QRectF target(20, 200, 300, 300);
    panel.moveToCircle(target, start);
    QCoreApplication::processEvents();
    EXPECT_NEAR(view->width(), 40, 1e-6);
    EXPECT_NEAR(view->property("radius").toDouble(), 20, 1e-6);

    scene.clock.advanceBy(150);
    const double midWidth = view->width();
    const double midRadius = view->property("radius").toDouble();
    EXPECT_GT(midWidth, 40);
    EXPECT_LT(midWidth, 300);
    EXPECT_NEAR(midRadius, midWidth / 2, 1.0) << "the radius moves with the frame";

    scene.clock.advanceBy(200);
    EXPECT_NEAR(view->x(), 20, 1e-6);
    EXPECT_NEAR(view->y(), 200, 1e-6);
    EXPECT_NEAR(view->width(), 300, 1e-6);
    EXPECT_NEAR(view->property("radius").toDouble(), 150, 1e-6);
    EXPECT_DOUBLE_EQ(panel.cornerRadius(), 150);
}

TEST(AnimatedViewTest, PanelButtonsPopInAtTheBottomPanelPlacesOfTheFullScreenCircle) {
    LAAnimatedView panel;
    KitScene scene;
    ASSERT_TRUE(scene.load("Item { width: 390; height: 844; required property LAAnimatedView thePanel\n"
                           "  LAAnimatedViewItem { panel: thePanel } }",
                           {{QStringLiteral("thePanel"), QVariant::fromValue(&panel)}}));
    bool cancelled = false, done = false;
    QObject::connect(&panel, &LAAnimatedView::cancelled, [&] { cancelled = true; });
    QObject::connect(&panel, &LAAnimatedView::done, [&] { done = true; });

    panel.addCancelButton();
    panel.addDoneButton();
    panel.moveToCircle(Framr::fullScrnCircle(), QRectF(175, 400, 40, 40), 0.3);
    scene.clock.advanceBy(400);
    EXPECT_NEAR(panel.cornerRadius(), 0.3 * Framr::fullScrnCircle().width(), 1e-9);

    scene.tap(Framr::ffBottomButtonAtCol(0, false).center());
    EXPECT_TRUE(cancelled);
    EXPECT_FALSE(done);
    scene.tap(Framr::ffBottomButtonAtCol(2, false).center());
    EXPECT_TRUE(done);
}

TEST(AnimatedViewTest, SubviewKeepsItsPlaceFromTheCentre) {
    AnimatedView view;
    view.setFrame({0, 0, 100, 100});
    // 10 points left of and above the centre before, and after.
    const QRectF moved = view.setOneSubview({30, 30, 10, 10}, {0, 0, 300, 200});
    EXPECT_EQ(moved, QRectF(130, 80, 10, 10));
}

}  // namespace
