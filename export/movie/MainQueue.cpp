#include "export/movie/MainQueue.h"

#include <QCoreApplication>
#include <QMetaObject>

void postToMainThread(std::function<void()> task) {
    QCoreApplication* app = QCoreApplication::instance();
    if (!app) {
        task();
        return;
    }
    QMetaObject::invokeMethod(app, std::move(task), Qt::QueuedConnection);
}
