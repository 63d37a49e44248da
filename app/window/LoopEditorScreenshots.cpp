#include "app/window/LoopEditorScreenshots.h"

#include <QQmlContext>
#include <QQmlError>
#include <QQmlExpression>
#include <QQuickItem>
#include <QQuickWindow>

#include "app/window/QuilloWindow.h"
#include "app/window/RootScreens.h"
#include "app/window/ScreenshotRunner.h"
#include "library/util/Log.h"
#include "screens/loopeditor/OneLoopVC.h"

namespace {

QQuickItem* screenStack(QuilloWindow* w) {
    return w->window()->findChild<QQuickItem*>(QStringLiteral("screenStack"));
}

// The editor on top of the stack, opened on a built-in loop the first time.
OneLoopVC* editor(QuilloWindow* w) {
    QQuickItem* stack = screenStack(w);
    if (!stack) return nullptr;
    auto* top = stack->property("currentItem").value<QQuickItem*>();
    auto* vc = top ? top->property("controller").value<OneLoopVC*>() : nullptr;
    if (vc) return vc;
    QQmlExpression push(qmlContext(stack), stack,
                        QStringLiteral("push(\"qrc:/qt/qml/Quillo/LoopEditor/OneLoopView.qml\", "
                                       "{loopName: \"Easy beat 95\"}, StackView.Immediate)"));
    push.evaluate();
    if (push.hasError()) qlog("loop editor shots: %s", qPrintable(push.error().toString()));
    top = stack->property("currentItem").value<QQuickItem*>();
    return top ? top->property("controller").value<OneLoopVC*>() : nullptr;
}

}  // namespace

void addLoopEditorScreenshots(ScreenshotRunner& runner, QuilloWindow& window) {
    QuilloWindow* w = &window;
    auto shot = [&runner, w](const char* name, std::function<void(OneLoopVC*)> state) {
        runner.add({QString::fromLatin1(name), [w, state] {
                        w->rootScreens()->resetTopView();
                        if (OneLoopVC* vc = editor(w)) state(vc);
                        return w->window();
                    }});
    };
    shot("loop-editor", [](OneLoopVC* vc) {
        // A step of the bar lit, as while playing.
        vc->animateTact(4);
        vc->animateStartPlaying(0);
    });
    shot("loop-editor-volume", [](OneLoopVC* vc) { vc->doubleTouch(); });
    shot("loop-editor-photos", [](OneLoopVC* vc) { vc->doubleTouch(); });
    shot("loop-editor-instrument", [](OneLoopVC* vc) {
        vc->doubleTouch();
        vc->instrPressed(vc->tiles().indexOf(vc->tileAtSlot(0)));
        vc->animateTact(6);
    });
    shot("loop-editor-sound-panel", [](OneLoopVC* vc) { vc->editInstrPressed(); });
    shot("loop-editor-deleting", [](OneLoopVC* vc) {
        vc->removeSoundView();
        vc->removeInstrView();
        vc->trashOkPressed();
        vc->instrPressed(vc->tiles().indexOf(vc->tileAtSlot(2)));
    });
    shot("loop-editor-add-choices", [](OneLoopVC* vc) {
        vc->trashOkPressed();  // the marked instrument goes
        vc->newInstrumentPressed();
    });
    shot("loop-editor-name-panel", [](OneLoopVC* vc) {
        vc->hideAndThenDeleteAllTypesOfNewInstrButtons();
        vc->navBarTapped();
    });
    shot("loop-editor-left", [w](OneLoopVC* vc) {
        vc->closeNameFolderPanel();
        vc->menuButtonTapped();
        Q_UNUSED(w);
    });
}
