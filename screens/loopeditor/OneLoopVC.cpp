#include "screens/loopeditor/OneLoopVC.h"

#include <QUrl>
#include <algorithm>

#include "engine/AudioFileLoaderOperation.h"
#include "export/Framr.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "library/patterns/Tacter.h"
#include "library/text/Localized.h"
#include "library/text/Utly.h"
#include "library/util/Log.h"
#include "playback/Loopplayer.h"
#include "playback/PlaybackContext.h"
#include "screens/kit/KitColorer.h"


namespace {

QColor colorOfSound(const Sound* sound) {
    return sound ? KitColorer::colorForNumber(sound->color()) : toQColor(Colorer::grayColor());
}

QString photoOfSound(const Sound* sound) {
    if (!sound || !Filer::jpgFileExistsForSound(sound)) return {};
    return QUrl::fromLocalFile(QString::fromStdString(Filer::pathToJpgFileForSound(sound))).toString();
}

}  // namespace

OneLoopVC::OneLoopVC(QObject* parent) : OneLoopOrTrackVC(parent) {
    for (int i = 0; i < kMaxInstruments; ++i) {
        auto* tile = new LoopTile(this, this);
        tile->setObjectName(QStringLiteral("tile%1").arg(i));
        m_tileObjects.append(tile);
    }
    addFromDeleterTimer.setSingleShot(true);
    addFromDeleterTimer.setInterval(kChoiceButtonsMs);
    connect(&addFromDeleterTimer, &QTimer::timeout, this, &OneLoopVC::hideAndThenDeleteAllTypesOfNewInstrButtons);
}

OneLoopVC::~OneLoopVC() {
    stopReceivingReports();
    stopPlayer();
}

void OneLoopVC::initWithArrowAndDelegat(OneLoopVCDelegate* d) {
    delegate = d;
    setBackBtnArrow(true);
}

QString OneLoopVC::loopName() const { return m_loop ? QString::fromStdString(m_loop->name()) : QString(); }

void OneLoopVC::setLoopName(const QString& name) {
    if (m_loop && name == loopName()) return;
    auto* loop = static_cast<Loop*>(CoreDater::shIns().findEntity("Loop", name.toStdString()));
    if (!loop) {
        qlog("no loop named %s", name.toUtf8().constData());
        return;
    }
    openLoop(loop);
}

bool OneLoopVC::loopPreloaded() const { return m_loop && m_loop->preloaded(); }

QString OneLoopVC::loopFolderName() const {
    return m_loop && m_loop->inFolder() ? QString::fromStdString(m_loop->inFolder()->name()) : QString();
}

int OneLoopVC::instrumentCount() const { return m_loop ? static_cast<int>(m_loop->instruments().size()) : 0; }

Instrument* OneLoopVC::instrumentAt(int slot) const {
    if (!m_loop || slot < 0 || slot >= instrumentCount()) return nullptr;
    return m_loop->instruments()[static_cast<size_t>(slot)];
}

int OneLoopVC::slotOfTile(int tileIndex) const {
    if (tileIndex < 0 || tileIndex >= m_tileObjects.size()) return -1;
    const LoopTile* tile = m_tileObjects[tileIndex];
    for (int s = 0; s < kMaxInstruments; ++s)
        if (_instrButtons[static_cast<size_t>(s)] == tile) return s;
    return -1;
}

void OneLoopVC::placeTile(LoopTile* tile, int slot) {
    tile->setCell(slot);
    tile->setMarked(false);
    tile->setSounding(false);
    tile->setPresent(true);
    _instrButtons[static_cast<size_t>(slot)] = tile;
    refreshTile(slot);
}

LoopTile* OneLoopVC::freeTile() const {
    for (LoopTile* o : m_tileObjects)
        if (std::find(_instrButtons.begin(), _instrButtons.end(), o) == _instrButtons.end()) return o;
    return nullptr;
}

void OneLoopVC::openLoop(Loop* loop) {
    stopPlayer();
    removeInstrView();
    m_loop = loop;
    setUpBase(static_cast<float>(loop->bpm()));
    m_displayMode = Plain;
    m_choiceButtonsShown = false;
    _instrButtons.fill(nullptr);
    for (LoopTile* o : m_tileObjects) o->setPresent(false);
    const int count = std::min(instrumentCount(), kMaxInstruments);
    for (int slot = 0; slot < count; ++slot) {
        placeTile(m_tileObjects[slot], slot);
    }
    setAddTile(count < kMaxInstruments ? count : -1, true);

    PlaybackContext& context = PlaybackContext::shared();
    if (context.audioController)
        m_bridge = std::make_unique<LoopplayerMainThreadDelegate>(context.audioController, this);
    _loopplayer = Loopplayer::create(loop, m_bridge.get());
    setTitle(loopName());
    emit displayModeChanged();
    emit loopChanged();
}

void OneLoopVC::stopPlayer() {
    if (!_loopplayer) return;
    Loopplayer::stopLoop(_loopplayer);
    // The changed sounds live in the shared cache, which frees them here;
    // our own reference must go first or they would only be set aside.
    _tempFile.reset();
    _loopplayer->reallyFreeLoadedFiles();
    _loopplayer.reset();
    m_bridge.reset();
}

void OneLoopVC::willLeave() {
    stopPlayer();
    if (delegate) delegate->loopChanged(m_loop);
}

void OneLoopVC::setPlayerPaused(bool paused) {
    if (_loopplayer) _loopplayer->setPausd(paused);
    if (paused)
        for (LoopTile* o : m_tileObjects) o->setSounding(false);
}

void OneLoopVC::setAddTile(int cell, bool shown) {
    if (cell == m_addTileCell && shown == m_addTileShown) return;
    m_addTileCell = cell;
    m_addTileShown = shown;
    emit tilesChanged();
}

void OneLoopVC::refreshTile(int slot) {
    LoopTile* tile = tileAtSlot(slot);
    const Instrument* instrument = instrumentAt(slot);
    if (!tile || !instrument) return;
    const Sound* sound = instrument->sound();
    tile->setColor(colorOfSound(sound));
    tile->volumeView()->setValue(instrument->volume());
    tile->volumeView()->setTitleColor(KitColorer::backgColor());
    tile->setPhotoSource(m_displayMode == Photos ? photoOfSound(sound) : QString());
}

void OneLoopVC::refreshAllTiles() {
    for (int slot = 0; slot < kMaxInstruments; ++slot) refreshTile(slot);
}

// ---- Layout

QRectF OneLoopVC::tileFrame(int cell) const {
    constexpr double kGap = 10;
    const double top = Framr::navBarHei();
    const double bottom = Framr::ffBottomPanel().y();
    const double w = (Framr::scrnWid() - 3 * kGap) / 2;
    const double h = (bottom - top - 5 * kGap) / 4;
    const int row = cell / 2, col = cell % 2;
    QRectF frame(kGap + col * (w + kGap), top + kGap + row * (h + kGap), w, h);
    // While the tempo adjuster fills the screen the grid waits above it.
    return m_tilesAboveNav ? frame.translated(0, -Framr::scrnHei()) : frame;
}

QRectF OneLoopVC::choiceButtonFrame(int type) const {
    const QRectF cell = tileFrame(std::max(m_addTileCell, 0));
    const double side = std::min(cell.width() / 2, cell.height()) * 0.8;
    const double cx = cell.x() + cell.width() * (type == 0 ? 0.25 : 0.75);
    return {cx - side / 2, cell.center().y() - side / 2, side, side};
}

// ---- Copy on first edit

void OneLoopVC::copyLoopIfPreloadedForEditAndUpdateDate() {
    if (!m_loop) return;
    if (m_loop->preloaded()) {
        // The copy has the same content, so the player plays on unchanged.
        const int openSlot = _instrV ? static_cast<int>(std::find(m_loop->instruments().begin(), m_loop->instruments().end(),
                                                                    _instrV->instrument()) - m_loop->instruments().begin())
                                     : -1;
        Loop* copy = CoreDater::shIns().createUsersLoopThatCopyOfPreloadedLoop(m_loop);
        if (!copy) return;
        m_loop = copy;
        setTitle(loopName());
        if (_instrV && openSlot >= 0) _instrV->setInstrument(instrumentAt(openSlot));
        emit loopChanged();
    }
    CoreDater::updateDateOfLoop(m_loop);
}

// ---- Instruments

void OneLoopVC::instrPressed(int tileIndex) {
    if (_instrV) return;
    const int slot = slotOfTile(tileIndex);
    if (slot < 0) return;
    if (_deleting) {
        tileAtSlot(slot)->setMarked(true);
        if (std::find(_instrsToDelete.begin(), _instrsToDelete.end(), slot) == _instrsToDelete.end())
            _instrsToDelete.push_back(slot);
        return;
    }
    openInstrumentAtSlot(slot);
}

void OneLoopVC::openInstrumentAtSlot(int slot) {
    Instrument* instrument = instrumentAt(slot);
    if (!instrument) return;
    m_closedInstrV.reset();
    _instrV = std::make_unique<InstrumentView>(instrument, this);
    setPanelColor(_instrV->color());
    _bpmView->setTitleColor(KitColorer::backgColor());
    emit instrumentViewChanged();
    updateTrashImage();
    refreshNavigationBar();
}

void OneLoopVC::removeInstrView() {
    if (!_instrV) return;
    m_closedInstrV = std::move(_instrV);
    emit instrumentViewChanged();
    setPanelColor(KitColorer::backgColor());
    _bpmView->setTitleColor(KitColorer::mainColor());
    updateTrashImage();
    refreshNavigationBar();
}

void OneLoopVC::newInstrumentPressed() {
    if (_deleting || instrumentCount() >= kMaxInstruments) return;
    m_choiceButtonsShown = true;
    m_addTileShown = false;
    addFromDeleterTimer.start();  // showing them again restarts the timer
    emit tilesChanged();
}

QString OneLoopVC::imageNameForTypeOfNewInstrButton(int type) const {
    switch (type) {
    case 0: return QStringLiteral("addFromListButton");
    case 1: return QStringLiteral("micButton");
    default: return QStringLiteral("addButton");
    }
}

void OneLoopVC::hideAndThenDeleteAllTypesOfNewInstrButtons() {
    addFromDeleterTimer.stop();
    if (!m_choiceButtonsShown) return;
    m_choiceButtonsShown = false;
    m_addTileShown = true;
    emit tilesChanged();
}

void OneLoopVC::typeOfNewInstrButtonPressed(int type) {
    if (!m_choiceButtonsShown) return;
    hideAndThenDeleteAllTypesOfNewInstrButtons();
    addNewInstrumentFromMic(type == 1);
}

void OneLoopVC::addNewInstrumentFromMic(bool fromMic) {
    if (!m_loop || instrumentCount() >= kMaxInstruments) return;
    copyLoopIfPreloadedForEditAndUpdateDate();
    CoreDater& dater = CoreDater::shIns();
    Instrument* instrument = dater.createInstrumentWithSound("Kick", Tacter::notacts());
    if (!instrument) return;
    std::vector<Instrument*> instruments = m_loop->instruments();
    instruments.push_back(instrument);
    m_loop->setInstruments(instruments);
    dater.save();

    const int slot = instrumentCount() - 1;
    placeTile(freeTile(), slot);
    setAddTile(instrumentCount() > 7 ? -1 : instrumentCount(), true);
    emit tilesChanged();

    if (_loopplayer) _loopplayer->setTactsAtIndex(slot, Tacter::notacts());
    soundWasChanged(instrument);
    volumWasChanged();
    openInstrumentAtSlot(slot);
    if (fromMic) micPressed();
}

// ---- Deleting

void OneLoopVC::startDeletion() {
    for (LoopTile* o : m_tileObjects) {
        auto* tile = o;
        tile->setSounding(false);
        tile->setMarked(false);
    }
    m_choiceButtonsShown = false;
    addFromDeleterTimer.stop();
    setAddTile(m_addTileCell, false);
    emit tilesChanged();
}

void OneLoopVC::applyDelete() {
    if (!m_loop) return;
    if (_deleting) {  // a cancelled recording deletes without the trash cycle
        _deleting = false;
        emit deletingChanged();
        updateTrashImage();
    }
    copyLoopIfPreloadedForEditAndUpdateDate();
    CoreDater& dater = CoreDater::shIns();
    std::vector<Instrument*> kept;
    std::vector<Instrument*> removed;
    std::map<int, int> newToOld;
    const std::vector<Instrument*> before = m_loop->instruments();
    for (int i = 0; i < static_cast<int>(before.size()); ++i) {
        const bool marked = std::find(_instrsToDelete.begin(), _instrsToDelete.end(), i) != _instrsToDelete.end();
        if (marked) {
            removed.push_back(before[static_cast<size_t>(i)]);
            continue;
        }
        if (LoopTile* tile = tileAtSlot(i)) tile->setMarked(false);
        newToOld[static_cast<int>(kept.size())] = i;
        kept.push_back(before[static_cast<size_t>(i)]);
    }
    m_loop->setInstruments(kept);
    for (Instrument* i : removed) dater.deleteObject(i);
    dater.save();
    someInstrumentsWasDeletedSoChangeVars(newToOld);
    volumWasChanged();
    for (int slot = 0; slot < kMaxInstruments; ++slot)
        if (LoopTile* tile = tileAtSlot(slot)) tile->setCell(slot);
    setAddTile(instrumentCount() < kMaxInstruments ? instrumentCount() : -1, true);
    _instrsToDelete.clear();
    refreshAllTiles();
    emit tilesChanged();
}

void OneLoopVC::someInstrumentsWasDeletedSoChangeVars(const std::map<int, int>& newToOld) {
    const int count = static_cast<int>(newToOld.size());
    if (count < kMaxInstruments) {
        std::array<LoopTile*, kMaxInstruments> moved{};
        for (const auto& [n, o] : newToOld) {
            if (n != o && _loopplayer) _loopplayer->changeItemsAtIndex(n, o);
            moved[static_cast<size_t>(n)] = _instrButtons[static_cast<size_t>(o)];
        }
        for (int slot = count; slot < kMaxInstruments; ++slot) {
            if (_loopplayer) _loopplayer->setTactsAtIndex(slot, Tacter::notacts());
            LoopTile* tile = _instrButtons[static_cast<size_t>(slot)];
            if (tile && std::find(moved.begin(), moved.end(), tile) == moved.end()) tile->setPresent(false);
        }
        _instrButtons = moved;
    }
    fixDeleteAllFuckinSubviews();
}

// Deleted tiles that the moves above did not reach (a deleted tile in a slot
// that a kept one took over) would otherwise stay on screen.
void OneLoopVC::fixDeleteAllFuckinSubviews() {
    for (LoopTile* o : m_tileObjects) {
        auto* tile = o;
        if (!tile->present()) continue;
        if (std::find(_instrButtons.begin(), _instrButtons.end(), tile) != _instrButtons.end()) continue;
        qlog("fixDelete %s color %s", qPrintable(tile->objectName()), qPrintable(tile->color().name()));
        tile->setPresent(false);
        tile->setMarked(false);
    }
}

// ---- Display modes, tempo, pause

void OneLoopVC::doubleTouch() {
    if (instrumentCount() == 0 || _instrV || m_soundPanelOpen || _deleting) return;
    m_displayMode = (m_displayMode + 1) % 3;
    refreshAllTiles();
    emit displayModeChanged();
}

void OneLoopVC::tempoChanged(float bpm) {
    if (_loopplayer) _loopplayer->setNewBpm(bpm);
    copyLoopIfPreloadedForEditAndUpdateDate();
    m_loop->setBpm(static_cast<int16_t>(bpm));  // truncated toward zero
    CoreDater::shIns().save();
}

void OneLoopVC::bpmViewEnlargedChanged(bool enlarged) {
    if (m_tilesAboveNav == enlarged) return;
    m_tilesAboveNav = enlarged;
    emit tilesChanged();
}

// ---- What the player hears

void OneLoopVC::tactsWasChanged() {
    copyLoopIfPreloadedForEditAndUpdateDate();
    if (!_loopplayer) return;
    for (int slot = 0; slot < std::min(instrumentCount(), kMaxInstruments); ++slot)
        _loopplayer->setTactsAtIndex(slot, instrumentAt(slot)->tactsMask());
}

void OneLoopVC::volumWasChanged() {
    if (!_loopplayer) return;
    for (int slot = 0; slot < std::min(instrumentCount(), kMaxInstruments); ++slot)
        _loopplayer->setVolume(static_cast<float>(instrumentAt(slot)->volume() / 100.0), slot);
}

void OneLoopVC::soundWasChanged(Instrument* instrument) {
    updateColorOfPanelAndInstrB(instrument);
    const auto& instruments = m_loop->instruments();
    const auto it = std::find(instruments.begin(), instruments.end(), instrument);
    if (it == instruments.end() || !_loopplayer) return;
    const int slot = static_cast<int>(it - instruments.begin());
    // The load runs here, on the main thread; the player only swaps pointers.
    // Loaded sounds go into the shared cache, so a sound tried twice loads once.
    auto& cache = PlaybackContext::shared().loadedFiles;
    const std::string url = Filer::urlForSound(instrument->sound());
    auto found = cache.find(url);
    std::shared_ptr<AudioFileLoaderOperation> file = found != cache.end() ? found->second : Filer::operationWithFileURL(url);
    if (!file) return;
    cache[url] = file;
    _tempFile = file;
    _loopplayer->changeFileAtIndex(slot, file);
}

void OneLoopVC::updateColorOfPanelAndInstrB(Instrument* instrument) {
    Q_UNUSED(instrument);
    if (_instrV) setPanelColor(_instrV->color());
    refreshAllTiles();
}

// ---- Volume mode tiles

void OneLoopVC::updateVolume(VolumeView* view) {
    for (int slot = 0; slot < kMaxInstruments; ++slot) {
        LoopTile* tile = tileAtSlot(slot);
        if (!tile || tile->volumeView() != view) continue;
        copyLoopIfPreloadedForEditAndUpdateDate();
        instrumentAt(slot)->setVolume(static_cast<int16_t>(view->value()));
        CoreDater::shIns().save();
        volumWasChanged();
        return;
    }
}

void OneLoopVC::volumeViewPressed(VolumeView* view) {
    for (int i = 0; i < m_tileObjects.size(); ++i)
        if (static_cast<LoopTile*>(m_tileObjects[i])->volumeView() == view) instrPressed(i);
}

// ---- Player reports

void OneLoopVC::animateTact(uint16_t step) {
    _bpmView->updateIndicatorViewForTact(step);
    if (_instrV) _instrV->animateTact(step);
}

void OneLoopVC::animateStartPlaying(int slot) {
    if (_deleting || slot < 0 || slot >= kMaxInstruments) return;
    if (LoopTile* tile = tileAtSlot(slot)) tile->setSounding(true);
}

void OneLoopVC::animateStopPlaying(int slot) {
    if (_deleting || slot < 0 || slot >= kMaxInstruments) return;
    if (LoopTile* tile = tileAtSlot(slot)) tile->setSounding(false);
}

// ---- The sound editor panel

void OneLoopVC::setSoundPanelAvailable(bool available) {
    if (m_soundPanelAvailable == available) return;
    m_soundPanelAvailable = available;
    emit soundPanelChanged();
}

void OneLoopVC::micPressed() {
    if (!m_soundPanelAvailable) return;  // without the recorder the new instrument just stays open
    if (!_paused) pausePressed();
    m_soundPanelOpen = true;
    m_soundPanelSoundName.clear();
    emit soundPanelChanged();
    refreshNavigationBar();
}

void OneLoopVC::editInstrPressed() {
    if (!m_soundPanelAvailable || !_instrV || !_instrV->instrument()->sound()) return;
    if (!_paused) pausePressed();
    m_soundPanelOpen = true;
    m_soundPanelSoundName = QString::fromStdString(_instrV->instrument()->sound()->name());
    emit soundPanelChanged();
    refreshNavigationBar();
}

void OneLoopVC::soundWasAddedOrEdited(const QString& soundName) {
    Sound* sound = CoreDater::shIns().findSoundWithName(soundName.toStdString());
    if (!_instrV || !sound) return;
    _instrV->updateInstrumentWithSound(sound);
    _instrV->addPickerWithUpdatedItems();
}

void OneLoopVC::soundRecordingWasCancelled() {
    // Only a recording for a new sound takes its fresh instrument away.
    if (!_instrV || !m_soundPanelOpen || !m_soundPanelSoundName.isEmpty()) return;
    const auto& instruments = m_loop->instruments();
    const auto it = std::find(instruments.begin(), instruments.end(), _instrV->instrument());
    if (it == instruments.end()) return;
    _instrsToDelete = {static_cast<int>(it - instruments.begin())};
    applyDelete();
    removeInstrView();
}

void OneLoopVC::removeSoundView() {
    if (!m_soundPanelOpen) return;
    m_soundPanelOpen = false;
    emit soundPanelChanged();
    // Playback always runs again once the panel closes, even if it was paused before.
    if (_paused) pausePressed();
    refreshNavigationBar();
}

// ---- Sharing, name and folder

void OneLoopVC::shareButtonTapped() {
    if (!m_loop) return;
    if (!_paused) pausePressed();
    _exportOpen = true;
    refreshNavigationBar();
    emit exportRequested(QStringLiteral("loop"), loopName(), KitColorer::mainColor());
}

void OneLoopVC::shareSound(Sound* sound) {
    if (!_paused) pausePressed();
    _exportOpen = true;
    refreshNavigationBar();
    emit exportRequested(QStringLiteral("sound"), QString::fromStdString(sound->name()), colorOfSound(sound));
}

void OneLoopVC::navBarTapped() {
    if (!m_loop || m_loop->preloaded()) return;
    if (_loopEditV) return;
    m_closedLoopEditV.reset();
    _loopEditV = std::make_unique<LoopOrFolderEditView>(loopName(), loopFolderName(), QStringLiteral("LoopFolder"), this);
    emit nameFolderPanelChanged();
    refreshNavigationBar();
}

void OneLoopVC::removEditView() {
    if (!_loopEditV) return;
    // The panel calls this from its own Done or Cancel: it must outlive the call.
    m_closedLoopEditV = std::move(_loopEditV);
    emit nameFolderPanelChanged();
    refreshNavigationBar();
}

void OneLoopVC::applyName(const QString& name, const QString& folderName) {
    if (!m_loop) return;
    const std::string wanted = name.toStdString();
    const std::string folder = folderName.toStdString();
    const bool nameDiffers = wanted != m_loop->name();
    const bool folderDiffers = folder != loopFolderName().toStdString();
    if (nameDiffers || folderDiffers) copyLoopIfPreloadedForEditAndUpdateDate();
    if (nameDiffers) m_loop->setName(Utly::changeNameOf("Loop", wanted));
    if (folderDiffers) {
        if (folder == localized("Built-in loops"))
            qlog("a loop cannot move into the built-in loops");
        else if (LoopFolder* f = CoreDater::shIns().loopFolder(folder))
            m_loop->setInFolder(f);
    }
    CoreDater::shIns().save();
    setTitle(loopName());
    emit loopChanged();
}
