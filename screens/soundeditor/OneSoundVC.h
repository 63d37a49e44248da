#pragma once
// The stand-alone sound screen that the sounds list opens: it shows the sound
// panel for one sound (or a new one) and leaves as soon as the panel closes.
// The list reloads by itself, so the outcome needs no further handling here.
#include <QRectF>
#include <QtQml/qqmlregistration.h>

#include "screens/soundeditor/PhotoDelegatVC.h"

class OneSoundVC : public PhotoDelegatVC {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString soundName READ soundName WRITE setSoundName NOTIFY soundNameChanged)
    Q_PROPERTY(QRectF startFrame READ startFrame WRITE setStartFrame NOTIFY startFrameChanged)

public:
    explicit OneSoundVC(QObject* parent = nullptr);

    QString soundName() const { return m_soundName; }
    void setSoundName(const QString& name);
    QRectF startFrame() const { return m_startFrame; }
    void setStartFrame(const QRectF& frame);

    // Opens the panel: the named sound, or a new recording when the name is
    // empty or no sound has it. Returns the panel, which this screen owns.
    Q_INVOKABLE SoundView* viewDidLoad();

signals:
    void soundNameChanged();
    void startFrameChanged();
    // The panel closed: the screen pops itself without animation.
    void popRequested();

private:
    void removeSoundView();

    QString m_soundName;
    QRectF m_startFrame;
};
