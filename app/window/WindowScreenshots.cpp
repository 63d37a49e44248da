#include "app/window/WindowScreenshots.h"

#include <QQmlContext>
#include <QQmlExpression>
#include <QQuickItem>
#include <QQuickWindow>

#include "app/window/LoopEditorScreenshots.h"
#include "app/window/QuilloWindow.h"
#include "app/window/ScreenshotRunner.h"

namespace {
// Back to the list alone, whatever earlier shots left pushed.
void popToList(QuilloWindow* w) {
    if (auto* stack = w->window()->findChild<QQuickItem*>(QStringLiteral("screenStack")))
        QQmlExpression(qmlContext(stack), stack, QStringLiteral("pop(null, StackView.Immediate)")).evaluate();
}
}  // namespace

void addWindowScreenshots(ScreenshotRunner& runner, QuilloWindow& window) {
    QuilloWindow* w = &window;
    runner.add({QStringLiteral("window-loops-list"), [w] {
                    w->rootScreens()->resetTopView();
                    popToList(w);
                    return w->window();
                }});
    runner.add({QStringLiteral("window-side-menu"), [w] {
                    w->rootScreens()->anchorTopViewToRight();
                    return w->window();
                }});
    addLoopEditorScreenshots(runner, window);
    // A desktop-sized window: the menu keeps its width, the list takes the rest.
    runner.add({QStringLiteral("window-wide-side-menu"), [w] {
                    w->window()->resize(1280, 800);
                    popToList(w);
                    w->rootScreens()->anchorTopViewToRight();
                    return w->window();
                }});
}
