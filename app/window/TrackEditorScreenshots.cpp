#include "app/window/TrackEditorScreenshots.h"

#include <QQmlContext>
#include <QQmlExpression>
#include <QQuickItem>
#include <QQuickWindow>

#include "app/window/QuilloWindow.h"
#include "app/window/RootScreens.h"
#include "app/window/ScreenshotRunner.h"
#include "app/window/VisualTree.h"
#include "screens/trackeditor/OneTrackVC.h"

namespace {

// The editor on top of the stack, pushed the way the tracks list pushes it.
OneTrackVC* editor(QuilloWindow* w) {
    QQuickItem* stack = findItem(w->window()->contentItem(), QStringLiteral("screenStack"));
    if (!stack) return nullptr;
    auto* top = stack->property("currentItem").value<QQuickItem*>();
    if (!top || !top->property("controller").value<OneTrackVC*>()) {
        QQmlExpression push(qmlContext(stack), stack,
                            QStringLiteral("push(\"qrc:/qt/qml/Quillo/TrackEditor/OneTrackView.qml\", "
                                           "{ trackName: \"Dorn Ashby Hotel\" }, StackView.Immediate)"));
        push.evaluate();
        top = stack->property("currentItem").value<QQuickItem*>();
    }
    return top ? top->property("controller").value<OneTrackVC*>() : nullptr;
}

}  // namespace

void addTrackEditorScreenshots(ScreenshotRunner& runner, QuilloWindow& window) {
    QuilloWindow* w = &window;
    runner.add({QStringLiteral("track-editor"), [w] {
                    w->window()->resize(390, 844);
                    w->rootScreens()->resetTopView();
                    editor(w);
                    return w->window();
                }, 1500});
    runner.add({QStringLiteral("track-editor-rows-hidden"), [w] {
                    if (OneTrackVC* c = editor(w)) c->doubleTouch();
                    return w->window();
                }});
    runner.add({QStringLiteral("track-editor-row-open"), [w] {
                    if (OneTrackVC* c = editor(w)) {
                        c->doubleTouch();
                        c->trackLoopPressed(1);
                    }
                    return w->window();
                }});
    runner.add({QStringLiteral("track-editor-row-colour"), [w] {
                    if (OneTrackVC* c = editor(w))
                        if (TrackLoopView* row = c->trackloopView()) row->colorPressed();
                    return w->window();
                }});
    runner.add({QStringLiteral("track-editor-deleting"), [w] {
                    if (OneTrackVC* c = editor(w)) {
                        c->trashOkPressed();  // closes the row and its colour chooser
                        c->trashOkPressed();  // starts deleting
                        c->trashButtonsPressed(2);
                    }
                    return w->window();
                }});
    runner.add({QStringLiteral("track-editor-squares-number"), [w] {
                    if (OneTrackVC* c = editor(w)) {
                        c->trashOkPressed();  // deletes the marked row
                        c->trackSquaresPressed();
                        if (c->squaresNumOpen()) {
                            c->sqNumView()->setValue(24);
                            c->updateSquaresNum(c->sqNumView());
                        }
                    }
                    return w->window();
                }});
}
