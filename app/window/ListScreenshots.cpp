#include "app/window/ListScreenshots.h"

#include <QQuickItem>
#include <QQuickWindow>

#include "app/window/QuilloWindow.h"
#include "app/window/ScreenshotRunner.h"
#include "app/window/VisualTree.h"
#include "library/CoreDater.h"
#include "screens/lists/BaseTVC.h"

namespace {

QQuickItem* topScreen(QQuickWindow* window) {
    QQuickItem* stack = findItem(window->contentItem(), QStringLiteral("screenStack"));
    return stack ? stack->property("currentItem").value<QQuickItem*>() : nullptr;
}

BaseTVC* topList(QQuickWindow* window) {
    QQuickItem* top = topScreen(window);
    return top ? top->findChild<BaseTVC*>() : nullptr;
}

void showList(QuilloWindow* w, int menuRow) {
    w->rootScreens()->resetTopView();
    if (QQuickItem* menu = findItem(w->window()->contentItem(), QStringLiteral("globalMenu")))
        QMetaObject::invokeMethod(menu, "choose", Q_ARG(QVariant, menuRow));
}

int rowNamed(BaseTVC* list, const QString& name) {
    for (int k = 0; list && k < list->rows()->count(); ++k)
        if (list->rows()->rowAt(k)->name == name) return k;
    return -1;
}

}  // namespace

void addListScreenshots(ScreenshotRunner& runner, QuilloWindow& window) {
    QuilloWindow* w = &window;
    runner.add({QStringLiteral("lists-tracks"), [w] {
                    w->window()->resize(390, 844);  // back to phone size after the wide shot
                    showList(w, 0);
                    return w->window();
                }});
    runner.add({QStringLiteral("lists-sounds"), [w] {
                    showList(w, 2);
                    return w->window();
                }});
    // A loop row swiped open to its share and copy buttons.
    runner.add({QStringLiteral("lists-loops-swiped"), [w] {
                    showList(w, 1);
                    QCoreApplication::processEvents();
                    BaseTVC* loops = topList(w->window());
                    QQuickItem* table = findItem(topScreen(w->window()), QStringLiteral("loopsTable"));
                    const int row = rowNamed(loops, QStringLiteral("Easy beat 95"));
                    if (table && row >= 0) QMetaObject::invokeMethod(table, "openSwipe", Q_ARG(QVariant, row), Q_ARG(QVariant, 0));
                    return w->window();
                }, 900});
    // Renaming a user's folder.
    runner.add({QStringLiteral("lists-rename-folder"), [w] {
                    CoreDater::shIns().loopFolder("Late night");
                    CoreDater::shIns().save();
                    showList(w, 0);
                    QCoreApplication::processEvents();
                    showList(w, 1);
                    QCoreApplication::processEvents();
                    BaseTVC* loops = topList(w->window());
                    if (loops) {
                        loops->setItemsAndReloadTable();
                        loops->editFolderAtRow(rowNamed(loops, QStringLiteral("Late night")), QRectF(40, 120, 40, 40));
                    }
                    return w->window();
                }, 900});
}
