#include "screens/loopeditor/LoopView.h"

#include <QUrl>
#include <algorithm>

#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "screens/kit/KitColorer.h"

LoopView::LoopView(QObject* parent) : QObject(parent) {}

QString LoopView::loopName() const { return m_loop ? QString::fromStdString(m_loop->name()) : QString(); }

void LoopView::setLoopName(const QString& name) {
    changeInstrumentsForNewLoop(static_cast<Loop*>(CoreDater::shIns().findEntity("Loop", name.toStdString())));
}

void LoopView::changeInstrumentsForNewLoop(Loop* loop) {
    m_loop = loop;
    m_colors.clear();
    stopAllSounding();
    if (loop) {
        const auto& instruments = loop->instruments();
        const size_t n = std::min<size_t>(instruments.size(), kSlots);
        for (size_t i = 0; i < n; ++i) {
            const Sound* sound = instruments[i]->sound();
            m_colors << (sound ? KitColorer::colorForNumber(sound->color()) : toQColor(Colorer::grayColor()));
        }
    }
    refreshAllPhotos(m_photosShown);  // also tells the view
}

void LoopView::refreshAllPhotos(bool show) {
    m_photosShown = show;
    m_photos.clear();
    for (int i = 0; m_loop && i < count(); ++i) {
        const Sound* sound = m_loop->instruments()[static_cast<size_t>(i)]->sound();
        const bool has = show && sound && Filer::jpgFileExistsForSound(sound);
        m_photos << (has ? QUrl::fromLocalFile(QString::fromStdString(Filer::pathToJpgFileForSound(sound))).toString()
                         : QString());
    }
    emit tilesChanged();
}

void LoopView::changeInstrColorToDarkerIfSameAs(int colorNumber) {
    if (!m_loop) return;
    for (int i = 0; i < count(); ++i) {
        const Sound* sound = m_loop->instruments()[static_cast<size_t>(i)]->sound();
        if (!sound || sound->color() != colorNumber) continue;
        const auto darker = Colorer::changedColorForColor(fromQColor(m_colors[i]), kClashDelta);
        if (darker) m_colors[i] = toQColor(*darker);
    }
    emit tilesChanged();
}

void LoopView::setTileSounding(int instrument, bool sounding) {
    if (instrument < 0 || instrument >= count()) return;  // no tile there
    const int mask = sounding ? m_sounding | (1 << instrument) : m_sounding & ~(1 << instrument);
    if (mask == m_sounding) return;
    m_sounding = mask;
    emit soundingChanged();
}

void LoopView::stopAllSounding() {
    if (m_sounding == 0) return;
    m_sounding = 0;
    emit soundingChanged();
}
