#pragma once
// A loop view whose tiles pulse with the loop: the loop player's reports
// (through its main-thread bridge, as the loop editor gets them) mark an
// instrument sounding until its note stops. LoopViewItem shrinks a sounding
// tile to the kit's sounding size. The export films this for a loop video.
#include <QList>

#include "screens/loopeditor/LoopView.h"

class SoundingLoopView : public LoopView {
    Q_OBJECT
    QML_ELEMENT
    // Per instrument, in order: whether its sound is sounding now.
    Q_PROPERTY(QList<bool> sounding READ sounding NOTIFY soundingChanged)

public:
    explicit SoundingLoopView(QObject* parent = nullptr);

    QList<bool> sounding() const { return m_sounding; }
    // The loop player's note reports, by instrument slot (main thread).
    void animateStartPlaying(int slot);
    void animateStopPlaying(int slot);
    // Every tile back to its full size (playback stopped).
    void stopAllSounding();

signals:
    void soundingChanged();

private:
    void setSounding(int slot, bool sounding);
    QList<bool> m_sounding;
    const Loop* m_loopShown = nullptr;
};
