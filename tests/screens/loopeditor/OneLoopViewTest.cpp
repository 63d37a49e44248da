// The loop editor's view offscreen with its real controller: taps at the
// places the layout gives reach the store and the next rendered bar.
#include <QQuickItem>
#include <QtQml/qqmlextensionplugin.h>

#include "tests/screens/kit/KitScene.h"
#include "tests/screens/loopeditor/LoopEditorFixture.h"

Q_IMPORT_QML_PLUGIN(Quillo_ListsPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_LoopEditorPlugin)

namespace {

::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new OffscreenApplication);

class OneLoopViewTest : public LoopEditorFixture {
protected:
    void TearDown() override {
        scene.reset();  // the screen and its player go before the engine
        LoopEditorFixture::TearDown();
    }

    OneLoopVC* load(Loop* loop) {
        scene = std::make_unique<quillo::kit::testing::KitScene>();
        QQuickItem* root = scene->load("import Quillo.LoopEditor\nOneLoopView { width: 390; height: 844; loopName: \"" +
                                       QByteArray::fromStdString(loop->name()) + "\" }");
        return root ? root->property("controller").value<OneLoopVC*>() : nullptr;
    }
    // The visible item of that name, searched through the visual tree (a
    // repeater's items are not its QObject children).
    static QQuickItem* findVisible(QQuickItem* in, const QString& name) {
        for (QQuickItem* child : in->childItems()) {
            if (!child->isVisible()) continue;
            if (child->objectName() == name) return child;
            if (QQuickItem* found = findVisible(child, name)) return found;
        }
        return nullptr;
    }
    QQuickItem* item(const char* name) { return findVisible(scene->window.contentItem(), QString::fromLatin1(name)); }
    // Taps the middle of a named item, wherever it is on screen.
    bool tapItem(const char* name) {
        QQuickItem* found = item(name);
        if (!found) return false;
        scene->tap(found->mapToScene(QPointF(found->width() / 2, found->height() / 2)));
        QCoreApplication::processEvents();
        return true;
    }

    std::unique_ptr<quillo::kit::testing::KitScene> scene;
};

TEST_F(OneLoopViewTest, TappingATileAndItsStepsIsSavedAndHeardOnTheNextBar) {
    Loop* original = builtIn({{"S1", "----------------", 100}, {"S2", "--------1-------", 100}});
    OneLoopVC* vc = load(original);
    ASSERT_NE(vc, nullptr);
    EXPECT_EQ(vc->instrumentCount(), 2);
    EXPECT_EQ(heard(renderBar()), steps({{8, 2}}));

    ASSERT_TRUE(tapItem("tile0"));
    ASSERT_NE(vc->instrumentView(), nullptr) << "the tile opened its instrument";
    EXPECT_EQ(item("tileGrid"), nullptr) << "the tiles make way";
    ASSERT_TRUE(tapItem("step0"));
    ASSERT_TRUE(tapItem("step5"));
    ASSERT_TRUE(tapItem("step5"));
    ASSERT_TRUE(tapItem("step13"));

    Loop* copy = vc->loop();
    ASSERT_NE(copy, original);
    EXPECT_EQ(copy->instruments()[0]->tactsMask(), 0x8004);
    EXPECT_EQ(original->instruments()[0]->tactsMask(), 0) << "the built-in loop is untouched";
    EXPECT_EQ(heard(renderBar()), steps({{0, 1}, {8, 2}, {13, 1}}));

    ASSERT_TRUE(tapItem("trashButton"));  // OK: back to the tiles
    EXPECT_EQ(vc->instrumentView(), nullptr);
    EXPECT_NE(item("tileGrid"), nullptr);
    ASSERT_TRUE(tapItem("pauseButton"));
    EXPECT_TRUE(vc->paused());
    EXPECT_EQ(heard(renderBar()), steps({}));
}

}  // namespace
