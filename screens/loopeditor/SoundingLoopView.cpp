#include "screens/loopeditor/SoundingLoopView.h"

SoundingLoopView::SoundingLoopView(QObject* parent) : LoopView(parent) {
    // Another loop: its tiles start at rest. (A new photo or colour keeps them.)
    connect(this, &LoopView::tilesChanged, this, [this] {
        if (loop() == m_loopShown && m_sounding.size() == count()) return;
        m_loopShown = loop();
        m_sounding = QList<bool>(count(), false);
        emit soundingChanged();
    });
}

void SoundingLoopView::animateStartPlaying(int slot) { setSounding(slot, true); }
void SoundingLoopView::animateStopPlaying(int slot) { setSounding(slot, false); }

void SoundingLoopView::stopAllSounding() {
    if (!m_sounding.contains(true)) return;
    m_sounding.fill(false);
    emit soundingChanged();
}

void SoundingLoopView::setSounding(int slot, bool sounding) {
    // Reports for a slot with no tile (an empty instrument place) show nothing.
    if (slot < 0 || slot >= m_sounding.size() || m_sounding[slot] == sounding) return;
    m_sounding[slot] = sounding;
    emit soundingChanged();
}
