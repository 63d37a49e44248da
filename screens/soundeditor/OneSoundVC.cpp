#include "screens/soundeditor/OneSoundVC.h"

#include "library/CoreDater.h"
#include "screens/soundeditor/SoundView.h"

OneSoundVC::OneSoundVC(QObject* parent) : PhotoDelegatVC(parent) {}

void OneSoundVC::setSoundName(const QString& name) {
    if (name == m_soundName) return;
    m_soundName = name;
    emit soundNameChanged();
}

void OneSoundVC::setStartFrame(const QRectF& frame) {
    if (frame == m_startFrame) return;
    m_startFrame = frame;
    emit startFrameChanged();
}

SoundView* OneSoundVC::viewDidLoad() {
    if (soundV()) return soundV();
    Sound* sound = m_soundName.isEmpty() ? nullptr : CoreDater::shIns().findSoundWithName(m_soundName.toStdString());
    SoundView* view = sound ? SoundView::addExistingSound(sound, this, m_startFrame)
                            : SoundView::addNewSoundViewTo(this, m_startFrame);
    connect(view, &SoundView::removeSoundView, this, &OneSoundVC::removeSoundView);
    setSoundV(view);
    return view;
}

// The panel stays alive (its view may still be drawing) until this screen
// is popped and takes it along.
void OneSoundVC::removeSoundView() { emit popRequested(); }
