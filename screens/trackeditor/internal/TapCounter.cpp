#include "screens/trackeditor/internal/TapCounter.h"

#include <QGuiApplication>
#include <QStyleHints>

TapCounter::TapCounter(QObject* parent) : QObject(parent) {
    timer_.setSingleShot(true);
    timer_.setInterval(qGuiApp ? QGuiApplication::styleHints()->mouseDoubleClickInterval() : 400);
    connect(&timer_, &QTimer::timeout, this, &TapCounter::settle);
}

void TapCounter::tap(QPointF point) {
    // All taps of one count act where the first one landed.
    if (count_ == 0) first_ = point;
    if (++count_ == 3) {
        timer_.stop();
        count_ = 0;
        emit tappedTrice(first_);
        return;
    }
    timer_.start();
}

void TapCounter::settle() {
    const int n = count_;
    count_ = 0;
    if (n == 1) emit tappedOnce(first_);
    if (n == 2) emit tappedTwice(first_);
}
