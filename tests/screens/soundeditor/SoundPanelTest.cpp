// The sound screen as the sounds list opens it: pushed on a stack in an
// offscreen window, driven by taps at the places its views take, checked in
// the store.
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

#include "library/model/Model.h"
#include "screens/kit/KitSetup.h"
#include "screens/kit/internal/ManualAnimationClock.h"
#include "tests/screens/soundeditor/SoundEditorTestSupport.h"

Q_IMPORT_QML_PLUGIN(Quillo_ListsPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_SoundEditorPlugin)

using namespace soundeditortest;

namespace {

class SoundPanelTest : public SoundEditorTest {
protected:
    void TearDown() override {
        delete root;
        root = nullptr;
        SoundEditorTest::TearDown();
    }
    QQuickItem* load() {
        quillo::kit::addTo(engine);
        window.resize(390, 844);
        QQmlComponent component(&engine);
        component.setData(R"(
import QtQuick
import QtQuick.Controls
import Quillo.Kit
StackView {
    width: 390; height: 844
    initialItem: Item { objectName: "list" }
    function openSound(name) {
        push("qrc:/qt/qml/Quillo/SoundEditor/OneSoundView.qml", { soundName: name }, StackView.Immediate)
    }
})", QUrl(QStringLiteral("qrc:/test/Stack.qml")));
        root = qobject_cast<QQuickItem*>(component.create());
        if (!root) {
            ADD_FAILURE() << component.errorString().toStdString();
            return nullptr;
        }
        root->setParentItem(window.contentItem());
        window.show();
        window.requestActivate();
        clock.ensureInstalled();
        QObject* framr = engine.singletonInstance<QObject*>(qmlTypeId("Quillo.Kit", 1, 0, "Framr"));
        if (!framr) {
            ADD_FAILURE() << "no Framr";
            return nullptr;
        }
        framr->setProperty("window", QVariant::fromValue(&window));
        return root;
    }
    QQuickItem* find(const char* name) { return root->findChild<QQuickItem*>(QString::fromLatin1(name)); }
    // Runs the animations (the circle grows, choosers pop) to their end.
    void settle() {
        clock.advanceBy(1000);
        QCoreApplication::processEvents();
    }
    void tapOn(QQuickItem* item) {
        ASSERT_TRUE(item);
        const QPointF centre = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
        QTest::mouseClick(&window, Qt::LeftButton, {}, centre.toPoint());
        settle();
    }
    int depth() { return root->property("depth").toInt(); }

    quillo::kit::ManualAnimationClock clock;
    QQmlEngine engine;
    QQuickWindow window;
    QQuickItem* root = nullptr;
};

TEST_F(SoundPanelTest, RecolouringASoundThroughTheChooserSavesItAndPopsTheScreen) {
    Sound* beat = userSound("Beat", 5);
    ASSERT_TRUE(load());
    QMetaObject::invokeMethod(root, "openSound", Q_ARG(QVariant, QVariant(QStringLiteral("Beat"))));
    settle();
    ASSERT_EQ(depth(), 2);
    ASSERT_TRUE(find("recordButton"));
    EXPECT_FALSE(find("recordButton")->isVisible());  // an existing sound is not recorded again

    tapOn(find("colorButton"));
    ASSERT_TRUE(find("soundColorView"));
    QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(389, 843));  // the bottom-right corner
    settle();
    EXPECT_FALSE(find("soundColorView"));  // the chooser closed
    EXPECT_EQ(beat->color(), 5);         // only Done stores it

    tapOn(find("doneButton"));
    EXPECT_EQ(beat->color(), 143);
    EXPECT_EQ(depth(), 1);
}

TEST_F(SoundPanelTest, EscapeCancelsANewRecordingAndLeavesTheLibraryAsItWas) {
    ASSERT_TRUE(load());
    const size_t before = soundCount();
    QMetaObject::invokeMethod(root, "openSound", Q_ARG(QVariant, QVariant(QString())));
    settle();
    ASSERT_EQ(depth(), 2);
    ASSERT_TRUE(find("recordButton") && find("doneButton"));
    EXPECT_TRUE(find("recordButton")->isVisible());
    EXPECT_LT(find("doneButton")->scale(), 0.01);  // nothing to save before a take

    tapOn(find("settingsButton"));
    QQuickItem* trim = find("autotrimSwitch");
    ASSERT_TRUE(trim);
    EXPECT_GE(trim->mapToScene(QPointF(0, 0)).y(), 0.0);  // the settings page slid into view
    tapOn(trim);
    EXPECT_FALSE(app->autotrimRecords);
    tapOn(find("okSettingsButton"));

    QTest::keyClick(&window, Qt::Key_Escape);
    settle();
    EXPECT_EQ(depth(), 1);
    EXPECT_EQ(soundCount(), before);
}

}  // namespace
