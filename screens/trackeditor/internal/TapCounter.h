#pragma once
// Counts taps on one area and tells how many there were: a single tap waits
// until a second can no longer come, a double tap until a third can no longer
// come, and a third tap is told at once. Taps more than the wait apart start a
// new count.
#include <QObject>
#include <QPointF>
#include <QTimer>

class TapCounter : public QObject {
    Q_OBJECT

public:
    explicit TapCounter(QObject* parent = nullptr);
    // The longest pause between taps of one count, in milliseconds.
    void setInterval(int ms) { timer_.setInterval(ms); }
    int interval() const { return timer_.interval(); }
    void tap(QPointF point);

signals:
    void tappedOnce(QPointF point);
    void tappedTwice(QPointF point);
    void tappedTrice(QPointF point);

private:
    void settle();

    QTimer timer_;
    int count_ = 0;
    QPointF first_;
};
