#pragma once
// A panel that grows into the full-screen circle and carries Cancel and Done
// buttons at the bottom panel's outer places. Each panel overrides what the
// buttons do; the default tells QML through signals.
#include <QRectF>

#include "screens/kit/AnimatedView.h"

class LAAnimatedView : public AnimatedView {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool hasCancelButton READ hasCancelButton NOTIFY buttonsChanged)
    Q_PROPERTY(bool hasDoneButton READ hasDoneButton NOTIFY buttonsChanged)
    // Button frames relative to the view's centre, so that they keep their
    // place while the view grows or shrinks around it.
    Q_PROPERTY(QRectF cancelButtonPlace READ cancelButtonPlace NOTIFY buttonsChanged)
    Q_PROPERTY(QRectF doneButtonPlace READ doneButtonPlace NOTIFY buttonsChanged)

public:
    using AnimatedView::AnimatedView;

    bool hasCancelButton() const { return m_hasCancel; }
    bool hasDoneButton() const { return m_hasDone; }
    QRectF cancelButtonPlace() const;
    QRectF doneButtonPlace() const;

    Q_INVOKABLE void addCancelButton();
    Q_INVOKABLE void addDoneButton();
    Q_INVOKABLE virtual void cancelPressed() { emit cancelled(); }
    Q_INVOKABLE virtual void donePressed() { emit done(); }

signals:
    void buttonsChanged();
    void cancelled();
    void done();

private:
    bool m_hasCancel = false;
    bool m_hasDone = false;
};
