#include "app/window/WindowScreenshots.h"

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
}
