// The kit's QML pieces load and do what the screens rely on.
#include "tests/screens/kit/KitScene.h"

using quillo::kit::testing::KitScene;

namespace {

::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new quillo::kit::testing::KitEnvironment);

TEST(KitSceneTest, AnimatorPopsFromAlmostZeroAndShrinksASoundingTile) {
    KitScene scene;
    QQuickItem* root = scene.load(R"(
Item {
    width: 390; height: 844
    Rectangle { id: tile; objectName: "tile"; width: 100; height: 100 }
    function pop() { Kit.Animator.scaleFromZero(tile) }
    function sound() { Kit.Animator.setSmallerSize(tile) }
}
)");
    ASSERT_TRUE(root);
    QQuickItem* tile = scene.find("tile");
    QMetaObject::invokeMethod(root, "pop");
    EXPECT_DOUBLE_EQ(tile->scale(), 0.001);
    scene.clock.advanceBy(150);
    EXPECT_GT(tile->scale(), 0.001);
    EXPECT_LT(tile->scale(), 1.0);
    scene.clock.advanceBy(200);
    EXPECT_DOUBLE_EQ(tile->scale(), 1.0);
    QMetaObject::invokeMethod(root, "sound");
    EXPECT_DOUBLE_EQ(tile->scale(), 0.75);
}

}  // namespace
