// The kit's QML pieces load and do what the screens rely on.
#include "export/Framr.h"
#include "screens/kit/TintedIcon.h"
#include "screens/kit/VolumeView.h"
#include "tests/screens/kit/KitScene.h"

using quillo::kit::testing::KitScene;

namespace {

::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new OffscreenApplication);

TEST(KitSceneTest, AnimatorPopsFromAlmostZeroAndShrinksASoundingTile) {
    KitScene scene;
    QQuickItem* root = scene.load(R"(
Item {
    width: 390; height: 844
    Rectangle { id: tile; objectName: "tile"; width: 100; height: 100 }
    function pop() { Kit.Animator.scaleFromZero(tile) }
    function sound() { Kit.Animator.setSmallerSize(tile) }
    property bool gone: false
    function hide() { Kit.Animator.scaleToZero(tile, Kit.Animator.choiceButtonTime, function () { gone = true }) }
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

    QMetaObject::invokeMethod(root, "hide");
    scene.clock.advanceBy(50);
    EXPECT_FALSE(root->property("gone").toBool());
    scene.clock.advanceBy(70);
    EXPECT_DOUBLE_EQ(tile->scale(), 0.001);
    EXPECT_TRUE(root->property("gone").toBool()) << "the completion runs when the 0.1 s shrink ends";
}

TEST(KitSceneTest, ButtonsDarkenAndShrinkWhilePressed) {
    KitScene scene;
    ASSERT_TRUE(scene.load(R"(
Item {
    width: 390; height: 844
    property int clicks: 0
    ColorButton { objectName: "round"; x: 0; y: 0; width: 100; height: 100; baseColor: Qt.rgba(0.5, 0.5, 0.5, 1)
                  onClicked: parent.clicks++ }
    ImageButton { objectName: "image"; x: 200; y: 0; width: 100; height: 100; image: "playButton" }
}
)"));
    QQuickItem* round = scene.find("round");
    EXPECT_DOUBLE_EQ(round->property("radius").toDouble(), 50);
    scene.press({50, 50});
    EXPECT_NEAR(round->property("color").value<QColor>().redF(), 0.4, 0.01);
    scene.release({50, 50});
    EXPECT_NEAR(round->property("color").value<QColor>().redF(), 0.5, 0.01);
    EXPECT_EQ(scene.root->property("clicks").toInt(), 1);

    QQuickItem* icon = scene.find("image")->childItems().value(0);
    ASSERT_TRUE(icon);
    scene.press({250, 50});
    EXPECT_DOUBLE_EQ(icon->scale(), 0.8);
    scene.release({250, 50});
    EXPECT_DOUBLE_EQ(icon->scale(), 1.0);
    EXPECT_EQ(scene.find("image")->property("accessibleName").toString(), QStringLiteral("Play"));
}

TEST(KitSceneTest, FramesFollowTheWindowWhenItIsResized) {
    KitScene scene;
    ASSERT_TRUE(scene.load(R"(
Item {
    width: 390; height: 844
    Rectangle { objectName: "pause"; x: Framr.ffPauseButton.x; y: Framr.ffBottomPanel.y + Framr.ffPauseButton.y
                width: Framr.ffPauseButton.width; height: width }
}
)"));
    QQuickItem* pause = scene.find("pause");
    for (QSize size : {QSize(1280, 800), QSize(320, 568)}) {
        scene.window.resize(size);
        QCoreApplication::processEvents();
        EXPECT_DOUBLE_EQ(Framr::scrnWid(), size.width());
        EXPECT_DOUBLE_EQ(pause->x(), Framr::ffPauseButton().x());
        EXPECT_DOUBLE_EQ(pause->y(), Framr::ffBottomButtonAtCol(1, false).y());
        EXPECT_DOUBLE_EQ(pause->x() + pause->width() / 2, size.width() / 2.0);
    }
}

TEST(KitSceneTest, ArrowKeysChangeTheFocusedAdjuster) {
    VolumeView volume;
    KitScene scene;
    volume.setInitialFrame({100, 100, 100, 100});
    volume.setValue(50);
    ASSERT_TRUE(scene.load("Item { width: 390; height: 844; required property LAAdjustView control\n"
                           "  LAAdjustViewItem { adjuster: control } }",
                           {{QStringLiteral("control"), QVariant::fromValue(&volume)}}));
    volume.setCanEnlarge(false);
    scene.tap({150, 150});  // a tap focuses it
    QTest::keyClick(&scene.window, Qt::Key_Up);
    QTest::keyClick(&scene.window, Qt::Key_Up);
    QTest::keyClick(&scene.window, Qt::Key_Left);
    EXPECT_DOUBLE_EQ(volume.value(), 51);
}

// Every image the screens name exists and is drawn in the colour asked for.
TEST(KitSceneTest, EveryNamedIconDrawsInTheTint) {
    const char* names[] = {"addButton", "micButton", "okButton", "cancelButton", "trashButton", "pauseButton",
                           "playButton", "bigPlayButton", "stopButton", "shareButton", "settingsButton",
                           "formenu", "backarrow", "addFromListButton", "fileIcon", "filesIcon", "folderIcon",
                           "cameraButton", "photoGalleryButton", "playButton256", "stopButton256",
                           "deleteRowButton", "editRowButton", "shareRowButton", "copyRowButton",
                           "tracksGlobal", "loopsGlobal", "soundsGlobal", "settingsGlobal", "logo",
                           "pauseButton.png"};
    const QColor tint(200, 30, 90);
    for (const char* name : names) {
        SCOPED_TRACE(name);
        const QImage image = TintedIcon::render(QString::fromLatin1(name), {48, 48}, tint);
        ASSERT_FALSE(image.isNull());
        int inked = 0, offColour = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const QColor c = image.pixelColor(x, y);
                if (c.alpha() < 250) continue;
                ++inked;
                if (c.rgb() != tint.rgb()) ++offColour;
            }
        EXPECT_GT(inked, 48 * 48 / 20) << "too little drawn";
        EXPECT_EQ(offColour, 0);
    }
    EXPECT_TRUE(TintedIcon::render(QStringLiteral("noSuchIcon"), {48, 48}, tint).isNull());
}

}  // namespace
