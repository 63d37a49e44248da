#include "screens/loopeditor/InstrumentView.h"

#include <QUrl>

#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "library/patterns/Tacter.h"
#include "screens/kit/KitColorer.h"

InstrumentView::InstrumentView(Instrument* instrument, InstrumentViewDelegate* delegate, QObject* parent)
    : WithPickerView("SoundFolder", "Sound", true, parent),
      m_instrument(instrument),
      m_delegate(delegate),
      m_volumeV(new VolumeView(this)) {
    m_volumeV->setDelegate(this);
    m_volumeV->setCanEnlarge(false);
    setupInstrumentView();
}

void InstrumentView::setInstrument(Instrument* instrument) {
    m_instrument = instrument;
    setupInstrumentView();
}

void InstrumentView::setupInstrumentView() {
    m_volumeV->setValue(m_instrument ? m_instrument->volume() : 0);
    m_volumeV->setTitleColor(KitColorer::backgColor());
    addPickerWithUpdatedItems();
    emit instrumentChanged();
    emit tactsChanged();
}

QString InstrumentView::title() const {
    const Sound* s = m_instrument ? m_instrument->sound() : nullptr;
    return s ? QString::fromStdString(s->name()) : QString();
}

QColor InstrumentView::color() const {
    const Sound* s = m_instrument ? m_instrument->sound() : nullptr;
    return s ? KitColorer::colorForNumber(s->color()) : toQColor(Colorer::grayColor());
}

QString InstrumentView::photoSource() const {
    const Sound* s = m_instrument ? m_instrument->sound() : nullptr;
    if (!s || !Filer::jpgFileExistsForSound(s)) return {};
    return QUrl::fromLocalFile(QString::fromStdString(Filer::pathToJpgFileForSound(s))).toString();
}

int InstrumentView::tacts() const { return m_instrument ? m_instrument->tactsMask() : 0; }

QColor InstrumentView::colorForTact(int step) const {
    const bool on = step >= 0 && step < kSteps && (tacts() >> (15 - step) & 1);
    return on ? KitColorer::veryDarkerColorForColor(color()) : color();
}

void InstrumentView::tactPressed(int step) {
    if (step < 0 || step >= kSteps || !m_instrument) return;
    // A built-in loop is copied before anything in it changes; the copy's
    // instrument at the same place comes back through setInstrument.
    m_delegate->somethingWillBeChanged();
    const uint16_t mask = m_instrument->tactsMask();
    const auto i = static_cast<uint32_t>(step);
    const bool on = mask >> (15 - step) & 1;
    m_instrument->setTactsMask(on ? Tacter::deselectTact(i, mask) : Tacter::selectTact(i, mask));
    emit tactsChanged();
    CoreDater::shIns().save();
    m_delegate->tactsWasChanged();
}

void InstrumentView::editButtonPressed() { m_delegate->editInstrPressed(); }

void InstrumentView::shareButtonPressed() {
    if (m_instrument && m_instrument->sound()) m_delegate->shareSound(m_instrument->sound());
}

void InstrumentView::animateTact(int step) {
    if (step == m_playingTact) return;
    m_playingTact = step;
    emit playingTactChanged();
}

ManagedObject* InstrumentView::currentItem() const { return m_instrument ? m_instrument->sound() : nullptr; }

void InstrumentView::itemChosen(ManagedObject* item) {
    if (item->entity() == Entity::Sound) updateInstrumentWithSound(static_cast<Sound*>(item));
}

void InstrumentView::updateInstrumentWithSound(Sound* sound) {
    if (!m_instrument || !sound) return;
    if (sound != m_instrument->sound()) {
        m_delegate->somethingWillBeChanged();
        m_instrument->setSound(sound);
        CoreDater::shIns().save();
        m_delegate->soundWasChanged(m_instrument);
    }
    emit instrumentChanged();
    emit tactsChanged();
    m_delegate->updateColorOfPanelAndInstrB(m_instrument);
}

void InstrumentView::updateVolume(VolumeView* view) {
    if (!m_instrument) return;
    m_delegate->somethingWillBeChanged();
    m_instrument->setVolume(static_cast<int16_t>(view->value()));  // truncated toward zero
    CoreDater::shIns().save();
    m_delegate->volumWasChanged();
}
