#include "app/window/WindowScreenshots.h"

#include <QQuickWindow>

#include "app/window/LoopEditorScreenshots.h"
#include "app/window/QuilloWindow.h"
#include "app/window/ScreenshotRunner.h"

void addWindowScreenshots(ScreenshotRunner& runner, QuilloWindow& window) {
    QuilloWindow* w = &window;
    runner.add({QStringLiteral("window-loops-list"), [w] {
                    w->rootScreens()->resetTopView();
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
                    return w->window();
                }});
}
