#include "app/window/QtMainThread.h"

#include <QMetaObject>
#include <QThread>

QtMainThread::QtMainThread() = default;

void QtMainThread::post(std::function<void()> task) {
    QMetaObject::invokeMethod(&context_, std::move(task), Qt::QueuedConnection);
}

bool QtMainThread::isCurrent() const { return QThread::currentThread() == context_.thread(); }
